// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

in vec2 vUv;

uniform sampler2D uSmooth;
uniform sampler2D uColor;
uniform int uSmoothLive;

out vec4 oPicture;

// Uses the anti-aliased picture if there is one. Rows run from the top, as in picture files.
void main()
{
    vec2 uv = vec2(vUv.x, 1.0 - vUv.y);
    oPicture = vec4(uSmoothLive != 0 ? texture(uSmooth, uv).rgb : texture(uColor, uv).rgb, 1.0);
}
