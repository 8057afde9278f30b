// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

in vec2 vUv;

uniform sampler2D uAlbedo;
uniform sampler2D uNormal;
uniform sampler2D uDepth;
uniform sampler2D uShadowDepth;
uniform sampler2D uTerms;
uniform mat4 uProjection;

out vec4 oDebug;

// Albedo, normals, depth; shadow map, direct light, ambient light. Rows run from the top.
void main()
{
    vec2 at = vUv * vec2(3.0, 2.0);
    vec2 uv = fract(at);
    uv.y = 1.0 - uv.y;
    int tile = int(at.x) + 3 * int(at.y);
    vec3 color;
    if (tile == 0)
        color = texture(uAlbedo, uv).rgb;
    else if (tile == 1)
        color = texture(uNormal, uv).xyz * 0.5 + 0.5;
    else if (tile == 2)
        color = vec3(clamp((12.0 + viewPosition(uv, texture(uDepth, uv).r, uProjection).z) / 10.0,
                           0.0, 1.0));
    else if (tile == 3)
        color = vec3(1.0 - texture(uShadowDepth, uv).r);
    else if (tile == 4)
        color = vec3(texture(uTerms, uv).r);
    else
        color = vec3(texture(uTerms, uv).g);
    oDebug = vec4(color, 1.0);
}
