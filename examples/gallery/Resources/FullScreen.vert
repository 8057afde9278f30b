// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

out vec2 vUv;

void main()
{
    vUv = vec2(float((gl_VertexID & 1) << 1), float(gl_VertexID & 2));
    gl_Position = vec4(vUv * 2.0 - 1.0, 0.0, 1.0);
}
