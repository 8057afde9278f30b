// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

in vec2 vUv;

uniform sampler2D uNormal;
uniform sampler2D uDepth;
uniform mat4 uProjection;
uniform vec3 uTargetSize;

out vec4 oOcclusion;

const int numSamples = 16;
const float radius = 0.28; // of a model of radius 1
const float strength = 3.0;

// Samples points on a spiral around the point, and gathers those that lie above the surface.
void main()
{
    float depth = texture(uDepth, vUv).r;
    oOcclusion = vec4(1.0);
    if (depth >= 1.0)
        return;
    vec3 centre = viewPosition(vUv, depth, uProjection);
    vec3 normal = texture(uNormal, vUv).xyz;
    vec2 reach = radius * 0.5 * vec2(uProjection[0][0], uProjection[1][1]) / -centre.z;
    float start = ditherNoise(gl_FragCoord.xy);

    float sum = 0.0;
    for (int i = 0; i < numSamples; ++i) {
        float along = (float(i) + 0.5) / float(numSamples);
        float angle = (start + along * 7.0) * 2.0 * PI;
        vec2 uv = vUv + along * reach * vec2(cos(angle), sin(angle));
        vec3 ray = viewPosition(uv, texture(uDepth, uv).r, uProjection) - centre;
        float distance2 = dot(ray, ray);
        float falloff = max(radius * radius - distance2, 0.0) / (radius * radius);
        sum += falloff * falloff * falloff
            * max(dot(ray, normal) - 0.012, 0.0) / (sqrt(distance2) + 0.01);
    }
    oOcclusion = vec4(max(0.0, 1.0 - strength * 2.0 * sum / float(numSamples)));
}
