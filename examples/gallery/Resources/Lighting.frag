// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

in vec2 vUv;

uniform sampler2D uAlbedo;
uniform sampler2D uNormal;
uniform sampler2D uDepth;
uniform sampler2D uOcclusion;
uniform sampler2D uShadowDepth;
uniform int uShadowDepthLive;
uniform mat4 uView;
uniform mat4 uProjection;
uniform mat4 uLightMatrix;
uniform vec3 uLightDirection;

layout(location = 0) out vec4 oColor;
layout(location = 1) out vec4 oTerms; // red: light that arrives, green: ambient light that arrives

const vec3 sunColor = vec3(3.1, 2.8, 2.35);

vec3 background(vec2 uv)
{
    float vignette = length((uv - vec2(0.5, 0.55)) * vec2(1.1, 1.0));
    return mix(vec3(0.24, 0.27, 0.32), vec3(0.035, 0.042, 0.055), smoothstep(0.0, 0.8, vignette));
}

// The environment is a studio: light from above, two wide lamps, a dim floor.
vec3 environment(vec3 direction, float roughness)
{
    float blur = mix(0.06, 0.7, roughness);
    vec3 light = mix(vec3(0.10, 0.09, 0.08), vec3(0.40, 0.45, 0.54),
                     smoothstep(-0.3 - blur, 0.5 + blur, direction.y));
    float key = dot(direction, normalize(vec3(0.5, 0.55, -0.65)));
    float rim = dot(direction, normalize(vec3(-0.85, 0.25, 0.35)));
    float gain = mix(1.6, 0.35, roughness);
    light += gain * vec3(1.15, 1.08, 1.0) * smoothstep(0.86 - blur, 0.93 + blur * 0.3, key);
    light += gain * vec3(0.7, 0.85, 1.1) * smoothstep(0.80 - blur, 0.90 + blur * 0.3, rim);
    return light;
}

float shadow(vec3 world, vec3 worldNormal, float cosine)
{
    if (uShadowDepthLive == 0)
        return 1.0;
    vec4 light = uLightMatrix * vec4(world + worldNormal * 0.006, 1.0);
    vec3 at = light.xyz * 0.5 + 0.5;
    if (any(greaterThan(abs(at.xy - 0.5), vec2(0.49))))
        return 1.0;
    float bias = 0.0008 + 0.0016 * (1.0 - cosine);
    float noise = fract(52.9829189 * fract(dot(gl_FragCoord.xy, vec2(0.06711056, 0.00583715))));
    float turn = noise * 2.0 * PI;
    float lit = 0.0;
    const int taps = 12;
    for (int i = 0; i < taps; ++i) {
        float along = sqrt((float(i) + 0.5) / float(taps));
        float angle = float(i) * 2.39996 + turn;
        vec2 uv = at.xy + along * 0.0032 * vec2(cos(angle), sin(angle));
        lit += step(at.z - bias, texture(uShadowDepth, uv).r);
    }
    // The shadow ends softly where its map does.
    float border = smoothstep(0.36, 0.48, max(abs(at.x - 0.5), abs(at.y - 0.5)));
    return mix(lit / float(taps), 1.0, border);
}

vec3 specular(vec3 n, vec3 v, vec3 l, vec3 f0, float roughness)
{
    vec3 h = normalize(v + l);
    float nh = max(dot(n, h), 0.0);
    float nl = max(dot(n, l), 1e-3);
    float nv = max(dot(n, v), 1e-3);
    float a2 = pow(roughness, 4.0);
    float d = nh * nh * (a2 - 1.0) + 1.0;
    float k = (roughness + 1.0) * (roughness + 1.0) / 8.0;
    vec3 fresnel = f0 + (1.0 - f0) * pow(1.0 - max(dot(h, v), 0.0), 5.0);
    return fresnel * (a2 / (PI * d * d)) / (4.0 * mix(nl, 1.0, k) * mix(nv, 1.0, k));
}

// The part of the environment that a surface reflects, integrated over its roughness.
vec3 environmentReflectance(vec3 f0, float roughness, float nv)
{
    vec4 r = roughness * vec4(-1.0, -0.0275, -0.572, 0.022) + vec4(1.0, 0.0425, 1.04, -0.04);
    float a = min(r.x * r.x, exp2(-9.28 * nv)) * r.x + r.y;
    return f0 * (-1.04 * a + r.z) + 1.04 * a + r.w;
}

void main()
{
    float depth = texture(uDepth, vUv).r;
    vec3 backdrop = background(vUv);
    if (depth >= 1.0) {
        oColor = vec4(backdrop, 1.0);
        oTerms = vec4(1.0);
        return;
    }
    vec4 albedo = texture(uAlbedo, vUv);
    albedo.rgb *= albedo.rgb;
    vec4 surface = texture(uNormal, vUv);
    float occlusion = texture(uOcclusion, vUv).r;
    float roughness = clamp(surface.w, 0.1, 1.0);
    float metallic = albedo.a;
    vec3 position = viewPosition(vUv, depth, uProjection);
    mat3 worldFromView = transpose(mat3(uView));
    vec3 world = worldFromView * (position - uView[3].xyz);
    vec3 n = worldFromView * normalize(surface.xyz);
    vec3 v = worldFromView * normalize(-position);
    vec3 l = normalize(uLightDirection);
    float nl = max(dot(n, l), 0.0);
    float nv = max(dot(n, v), 1e-3);

    vec3 f0 = mix(vec3(0.04), albedo.rgb, metallic);
    vec3 diffuse = albedo.rgb * (1.0 - metallic);
    float lit = nl > 0.0 ? shadow(world, n, nl) : 0.0;
    vec3 color = lit * nl * sunColor * (diffuse / PI + specular(n, v, l, f0, roughness));

    vec3 skyLight = mix(vec3(0.10, 0.09, 0.085), vec3(0.30, 0.36, 0.47), n.y * 0.5 + 0.5);
    color += occlusion * diffuse * skyLight;
    vec3 reflected = environment(reflect(-v, n), roughness);
    color += mix(1.0, occlusion, 0.8) * environmentReflectance(f0, roughness, nv) * reflected;

    // The ground fades into the backdrop.
    color = mix(color, backdrop, smoothstep(1.3, 4.5, length(world.xz)));
    oColor = vec4(color, 1.0);
    oTerms = vec4(lit * nl, occlusion, 0.0, 1.0);
}
