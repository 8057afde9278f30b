// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

in vec2 vUv;

uniform sampler2D uColor;
uniform sampler2D uBloom;
uniform float uExposure;

out vec4 oColor;

// A filmic curve: a toe, a straight part, a shoulder.
vec3 film(vec3 x)
{
    return clamp(x * (2.51 * x + 0.03) / (x * (2.43 * x + 0.59) + 0.14), 0.0, 1.0);
}

vec3 gammaCoded(vec3 x)
{
    return mix(x * 12.92, 1.055 * pow(x, vec3(1.0 / 2.4)) - 0.055, step(0.0031308, x));
}

void main()
{
    vec3 color = (texture(uColor, vUv).rgb + texture(uBloom, vUv).rgb) * uExposure;
    vec3 coded = gammaCoded(film(color * 0.8));
    // Perceived brightness, for the edge search of anti-aliasing.
    oColor = vec4(coded, luminance(coded));
}
