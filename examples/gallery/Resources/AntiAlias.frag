// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

in vec2 vUv;

uniform sampler2D uColor;
uniform vec3 uTargetSize;

out vec4 oSmooth;

// Blends along the edge that the brightness of the neighbours indicates.
void main()
{
    vec2 texel = 1.0 / uTargetSize.xy;
    vec4 centre = texture(uColor, vUv);
    float nw = texture(uColor, vUv + texel * vec2(-1.0, 1.0)).a;
    float ne = texture(uColor, vUv + texel * vec2(1.0, 1.0)).a;
    float sw = texture(uColor, vUv + texel * vec2(-1.0, -1.0)).a;
    float se = texture(uColor, vUv + texel * vec2(1.0, -1.0)).a;
    float low = min(centre.a, min(min(nw, ne), min(sw, se)));
    float high = max(centre.a, max(max(nw, ne), max(sw, se)));
    oSmooth = vec4(centre.rgb, 1.0);
    if (high - low < max(0.05, high * 0.125))
        return;

    vec2 along = vec2((sw + se) - (nw + ne), (nw + sw) - (ne + se));
    float damping = max((nw + ne + sw + se) * 0.03125, 1.0 / 128.0);
    along = clamp(along / (min(abs(along.x), abs(along.y)) + damping), -8.0, 8.0) * texel;

    vec4 near = 0.5
        * (texture(uColor, vUv + along * (1.0 / 3.0 - 0.5))
           + texture(uColor, vUv + along * (2.0 / 3.0 - 0.5)));
    vec4 far = near * 0.5
        + 0.25 * (texture(uColor, vUv - along * 0.5) + texture(uColor, vUv + along * 0.5));
    // The far samples have left the edge if they are brighter or darker than the surroundings.
    oSmooth = vec4(far.a < low || far.a > high ? near.rgb : far.rgb, 1.0);
}
