// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

in vec2 vUv;

uniform sampler2D uColor;

out vec4 oBright;

const float knee = 0.9;

// Keeps the brightest parts. The limit prevents a single bright point from lighting up everything.
void main()
{
    vec3 color = texture(uColor, vUv).rgb;
    float level = max(color.r, max(color.g, color.b));
    oBright = vec4(min(color * max(level - knee, 0.0) / max(level, 1e-4), 6.0), 1.0);
}
