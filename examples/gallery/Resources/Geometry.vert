// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

layout(location = 0) in vec3 aPosition;
layout(location = 1) in vec3 aNormal;

uniform mat4 uClipFromWorld;
uniform mat4 uViewFromWorld;

out vec3 vNormal;
out vec3 vPosition;

void main()
{
    vNormal = mat3(uViewFromWorld) * aNormal;
    vPosition = (uViewFromWorld * vec4(aPosition, 1.0)).xyz;
    gl_Position = uClipFromWorld * vec4(aPosition, 1.0);
}
