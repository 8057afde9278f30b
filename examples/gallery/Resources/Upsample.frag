// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

in vec2 vUv;

uniform sampler2D uColor;
uniform sampler2D uDetail;

out vec4 oColor;

vec3 tent(sampler2D image, vec2 uv)
{
    vec2 texel = 1.0 / vec2(textureSize(image, 0));
    vec3 sum = vec3(0.0);
    for (int y = -1; y <= 1; ++y) {
        for (int x = -1; x <= 1; ++x)
            sum += texture(image, uv + texel * vec2(x, y)).rgb * float((2 - abs(x)) * (2 - abs(y)));
    }
    return sum / 16.0;
}

void main()
{
    oColor = vec4(texture(uDetail, vUv).rgb * 0.5 + tent(uColor, vUv) * 0.75, 1.0);
}
