// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

in vec2 vUv;

uniform sampler2D uRawOcclusion;
uniform sampler2D uDepth;
uniform mat4 uProjection;
uniform vec3 uTargetSize;

out vec4 oOcclusion;

// Averages over the 4x4 pixels of the dither pattern, but not across the edges of surfaces.
void main()
{
    float centre = viewPosition(vUv, texture(uDepth, vUv).r, uProjection).z;
    float sum = 0.0;
    float weights = 0.0;
    for (int y = -2; y <= 2; ++y) {
        for (int x = -2; x <= 2; ++x) {
            vec2 uv = vUv + vec2(x, y) / uTargetSize.xy;
            float z = viewPosition(uv, texture(uDepth, uv).r, uProjection).z;
            float weight = max(0.0, 1.0 - abs(z - centre) * 12.0)
                * (abs(x) == 2 ? 0.5 : 1.0) * (abs(y) == 2 ? 0.5 : 1.0);
            sum += weight * texture(uRawOcclusion, uv).r;
            weights += weight;
        }
    }
    oOcclusion = vec4(sum / max(weights, 1e-4));
}
