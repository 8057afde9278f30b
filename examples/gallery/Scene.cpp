// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Scene.h"

#include "ShaderProgram.h"

#include <cstddef>
#include <utility>

namespace Gallery {

Scene::Scene(Model model)
    : content(std::move(model))
{
    appendGround();
    glGenVertexArrays(1, &vertexArray);
    glBindVertexArray(vertexArray);
    glGenBuffers(2, buffers);
    glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
    glBufferData(GL_ARRAY_BUFFER, content.vertices.size() * GLsizeiptr(sizeof(Vertex)),
                 content.vertices.constData(), GL_STATIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[1]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, content.indices.size() * GLsizeiptr(sizeof(quint32)),
                 content.indices.constData(), GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, sizeof(Vertex), nullptr);
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(1, 3, GL_FLOAT, GL_FALSE, sizeof(Vertex),
                          reinterpret_cast<const void*>(offsetof(Vertex, normal)));
    glBindVertexArray(0);
}

Scene::~Scene()
{
    glDeleteBuffers(2, buffers);
    glDeleteVertexArrays(1, &vertexArray);
}

void Scene::appendGround()
{
    const float extent = 30;
    const auto first = static_cast<quint32>(content.vertices.size());
    for (const float x : {-extent, extent}) {
        for (const float z : {-extent, extent})
            content.vertices.append({{x, -content.halfHeight, z}, {0, 1, 0}});
    }
    content.batches.append({content.indices.size(), 6, content.materials.size()});
    for (const quint32 corner : {0U, 1U, 2U, 2U, 1U, 3U})
        content.indices.append(first + corner);
    Material ground;
    ground.baseColor = {0.11F, 0.11F, 0.115F};
    ground.roughness = 1;
    content.materials.append(ground);
}

void Scene::draw(const ShaderProgram& program) const
{
    glBindVertexArray(vertexArray);
    for (const Batch& batch : content.batches) {
        const Material& material = content.materials.at(batch.material);
        program.set("uBaseColor", material.baseColor);
        program.set("uMetallic", material.metallic);
        program.set("uRoughness", material.roughness);
        glDrawElements(
            GL_TRIANGLES, batch.numIndices, GL_UNSIGNED_INT,
            reinterpret_cast<const void*>(std::size_t(batch.firstIndex) * sizeof(quint32)));
    }
    glBindVertexArray(0);
}

} // namespace Gallery
