// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

in vec2 vUv;

uniform sampler2D uColor;
uniform float uBloomStrength;

out vec4 oBloom;

void main()
{
    vec2 texel = 0.5 / vec2(textureSize(uColor, 0));
    vec3 sum = vec3(0.0);
    for (int y = -1; y <= 1; y += 2) {
        for (int x = -1; x <= 1; x += 2)
            sum += texture(uColor, vUv + texel * vec2(x, y)).rgb;
    }
    oBloom = vec4(sum * 0.25 * uBloomStrength, 1.0);
}
