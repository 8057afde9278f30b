// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Model.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/material.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Gallery {

namespace {

QVector3D toVector(const aiVector3D& v)
{
    return {v.x, v.y, v.z};
}

Material readMaterial(const aiMaterial& source)
{
    Material material;
    aiColor4D color(0.8F, 0.8F, 0.8F, 1);
    if (source.Get(AI_MATKEY_BASE_COLOR, color) != AI_SUCCESS)
        source.Get(AI_MATKEY_COLOR_DIFFUSE, color);
    material.baseColor = {color.r, color.g, color.b};
    source.Get(AI_MATKEY_METALLIC_FACTOR, material.metallic);
    float roughness = 0.5F;
    source.Get(AI_MATKEY_ROUGHNESS_FACTOR, roughness);
    // Glossier than in the file: a model in a studio is polished.
    material.roughness = 0.15F + 0.27F * roughness;
    return material;
}

void appendMesh(const aiMesh& mesh, Model& model)
{
    const int firstVertex = model.vertices.size();
    for (unsigned i = 0; i < mesh.mNumVertices; ++i)
        model.vertices.append({toVector(mesh.mVertices[i]),
                               mesh.mNormals ? toVector(mesh.mNormals[i]) : QVector3D(0, 1, 0)});
    Batch batch;
    batch.firstIndex = model.indices.size();
    batch.material = static_cast<int>(mesh.mMaterialIndex);
    for (unsigned i = 0; i < mesh.mNumFaces; ++i) {
        const aiFace& face = mesh.mFaces[i];
        for (unsigned k = 0; k < face.mNumIndices && face.mNumIndices == 3; ++k)
            model.indices.append(static_cast<quint32>(firstVertex) + face.mIndices[k]);
    }
    batch.numIndices = model.indices.size() - batch.firstIndex;
    if (batch.numIndices > 0)
        model.batches.append(batch);
}

/// \return false when the vertices have no finite extent.
bool moveIntoUnitSphere(Model& model)
{
    const float inf = std::numeric_limits<float>::infinity();
    QVector3D low(inf, inf, inf);
    QVector3D high(-inf, -inf, -inf);
    for (const Vertex& vertex : qAsConst(model.vertices)) {
        for (int axis = 0; axis < 3; ++axis) {
            low[axis] = std::min(low[axis], vertex.position[axis]);
            high[axis] = std::max(high[axis], vertex.position[axis]);
        }
    }
    const QVector3D centre = (low + high) / 2;
    float radius = 0;
    for (const Vertex& vertex : qAsConst(model.vertices))
        radius = std::max(radius, (vertex.position - centre).length());
    if (!(radius > 0) || !std::isfinite(radius))
        return false;

    model.radius = 0;
    for (Vertex& vertex : model.vertices) {
        vertex.position = (vertex.position - centre) / radius;
        model.radius = std::max(model.radius, std::hypot(vertex.position.x(), vertex.position.z()));
    }
    model.halfHeight = (high.y() - low.y()) / 2 / radius;
    return true;
}

} // namespace

bool Model::load(const QString& path, QString& error)
{
    if (!QFileInfo(path).isFile()) {
        error = QStringLiteral("no such model file: %1").arg(path);
        return false;
    }
    Assimp::Importer importer;
    // Leave out lines and points: they reflect no light.
    importer.SetPropertyInteger(AI_CONFIG_PP_SBP_REMOVE,
                                aiPrimitiveType_LINE | aiPrimitiveType_POINT);
    importer.SetPropertyFloat(AI_CONFIG_PP_GSN_MAX_SMOOTHING_ANGLE, 60);
    const aiScene* scene =
        importer.ReadFile(QFile::encodeName(path).constData(),
                          aiProcess_Triangulate | aiProcess_SortByPType | aiProcess_GenSmoothNormals
                              | aiProcess_JoinIdenticalVertices | aiProcess_PreTransformVertices);
    if (!scene) {
        error = QStringLiteral("%1 is not a model: %2")
                    .arg(path, QString::fromUtf8(importer.GetErrorString()).simplified());
        return false;
    }

    for (unsigned i = 0; i < scene->mNumMaterials; ++i)
        materials.append(readMaterial(*scene->mMaterials[i]));
    for (unsigned i = 0; i < scene->mNumMeshes; ++i)
        appendMesh(*scene->mMeshes[i], *this);
    if (batches.isEmpty() || !moveIntoUnitSphere(*this)) {
        error = QStringLiteral("%1 holds nothing to draw").arg(path);
        return false;
    }
    return true;
}

} // namespace Gallery
