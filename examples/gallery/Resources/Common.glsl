#version 300 es
// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// Functions that all shaders share. In view space, the camera is at the origin and looks along -z.

precision highp float;
precision highp int;
precision highp sampler2D;

const float PI = 3.14159265;

// The view-space position of a texture coordinate at a depth of the depth buffer.
vec3 viewPosition(vec2 uv, float depth, mat4 projection)
{
    vec3 ndc = vec3(uv, depth) * 2.0 - 1.0;
    float z = -projection[3][2] / (ndc.z + projection[2][2]);
    return vec3(-z * ndc.xy / vec2(projection[0][0], projection[1][1]), z);
}

// Noise for dithered sampling that a 4x4 blur removes.
float ditherNoise(vec2 pixel)
{
    vec2 cell = mod(floor(pixel), 4.0);
    return fract(dot(cell, vec2(5.0, 11.0)) * 0.0625 + 0.4 * mod(cell.x * cell.y, 3.0));
}

float luminance(vec3 color)
{
    return dot(color, vec3(0.2126, 0.7152, 0.0722));
}
