// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

uniform sampler2D uColor;

out vec4 oLogLuminance;

void main()
{
    const int steps = 48;
    float sum = 0.0;
    for (int y = 0; y < steps; ++y) {
        for (int x = 0; x < steps; ++x) {
            vec2 uv = (vec2(x, y) + 0.5) / float(steps);
            sum += log2(max(luminance(texture(uColor, uv).rgb), 1e-4));
        }
    }
    oLogLuminance = vec4(sum / float(steps * steps));
}
