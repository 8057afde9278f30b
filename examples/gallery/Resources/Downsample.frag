// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

in vec2 vUv;

uniform sampler2D uColor;

out vec4 oColor;

// A tent filter over four bilinear samples of the finer level.
void main()
{
    vec2 texel = 1.0 / vec2(textureSize(uColor, 0));
    vec3 sum = texture(uColor, vUv).rgb * 4.0;
    sum += texture(uColor, vUv + texel * vec2(-1.0, -1.0)).rgb;
    sum += texture(uColor, vUv + texel * vec2(1.0, -1.0)).rgb;
    sum += texture(uColor, vUv + texel * vec2(-1.0, 1.0)).rgb;
    sum += texture(uColor, vUv + texel * vec2(1.0, 1.0)).rgb;
    oColor = vec4(sum / 8.0, 1.0);
}
