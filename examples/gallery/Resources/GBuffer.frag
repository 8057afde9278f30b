// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

in vec3 vNormal;
in vec3 vPosition;

uniform vec3 uBaseColor;
uniform float uMetallic;
uniform float uRoughness;

layout(location = 0) out vec4 oAlbedo;
layout(location = 1) out vec4 oNormal;

void main()
{
    vec3 normal = normalize(vNormal);
    // Surfaces have two sides, whatever the winding of their triangles is.
    if (dot(normal, vPosition) > 0.0)
        normal = -normal;
    oAlbedo = vec4(sqrt(uBaseColor), uMetallic); // dark colours get finer steps
    oNormal = vec4(normal, uRoughness);
}
