// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_MODEL_H
#define GALLERY_MODEL_H

#include <QtCore/QString>
#include <QtCore/QVector>
#include <QtGui/QVector3D>

namespace Gallery {

/// The material of a surface.
struct Material
{
    QVector3D baseColor{0.8F, 0.8F, 0.8F}; ///< linear
    float metallic = 0;
    float roughness = 0.5F;
};

struct Vertex
{
    QVector3D position;
    QVector3D normal;
};

/// A range of triangles with one material.
struct Batch
{
    int firstIndex = 0;
    int numIndices = 0;
    int material = 0;
};

/// The triangles of a file, moved and scaled so that they fit into a sphere of radius 1 about the
/// origin.
struct Model
{
    QVector<Vertex> vertices;
    QVector<quint32> indices;
    QVector<Batch> batches;
    QVector<Material> materials;
    float radius = 1;     ///< of the upright cylinder about the origin that holds the model
    float halfHeight = 1; ///< of that cylinder

    /// Reads any file that assimp can read.
    /// \return false, with the reason in \p error, when it holds no triangles.
    bool load(const QString& path, QString& error);
};

} // namespace Gallery

#endif
