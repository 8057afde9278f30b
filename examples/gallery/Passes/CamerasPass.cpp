// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "CamerasPass.h"

#include "RenderCallbacks.h"
#include "Scene.h"

#include <QtCore/QtMath>
#include <QtGui/QMatrix4x4>

#include <algorithm>
#include <cmath>

namespace Gallery {

namespace {

const float fieldOfView = 28; // degrees, vertically
const float elevation = 22;   // degrees, of the camera above the horizon
const float margin = 1.06F;   // of the model to the border of the picture

/// The smallest distance at which the upright cylinder around the model fits into the picture at
/// every angle. So the size of the model does not change while it turns.
float fittingDistance(const Model& model, float aspect)
{
    const float tanY = std::tan(qDegreesToRadians(fieldOfView / 2)) / margin;
    const float tanX = tanY * aspect;
    const float sine = std::sin(qDegreesToRadians(elevation));
    const float cosine = std::cos(qDegreesToRadians(elevation));
    float distance = 0;
    for (int step = 0; step < 64; ++step) {
        const float angle = float(M_PI) * float(step) / 32;
        const float across = model.radius * std::cos(angle);
        const float along = model.radius * std::sin(angle); // towards the camera
        for (const float height : {-model.halfHeight, model.halfHeight}) {
            const float towards = along * cosine + height * sine;
            const float up = height * cosine - along * sine;
            distance = std::max(
                {distance, towards + std::abs(across) / tanX, towards + std::abs(up) / tanY});
        }
    }
    return distance;
}

QMatrix4x4 lightMatrix(QVector3D direction)
{
    direction.normalize();
    const QVector3D up = std::abs(direction.y()) > 0.99F ? QVector3D(1, 0, 0) : QVector3D(0, 1, 0);
    const float extent = 1.5F; // the model and most of its shadow
    QMatrix4x4 matrix;
    matrix.ortho(-extent, extent, -extent, extent, 0.1F, 8);
    matrix.lookAt(direction * 4, QVector3D(), up);
    return matrix;
}

} // namespace

CamerasPass::CamerasPass(const QString& name)
    : passName(name)
{
    addInput(QStringLiteral("Angle"), 0.0F);
    addInput(QStringLiteral("LightDirection"), QVector3D(0, 1, 0));
    addOutput(QStringLiteral("View"));
    addOutput(QStringLiteral("Projection"));
    addOutput(QStringLiteral("LightMatrix"));
}

void CamerasPass::start(Kestrin::Orv::RenderCallbacks* callbacks)
{
    callbacks->started.append(passName);
    const QSize size = callbacks->frameSize;
    const float aspect = float(size.width()) / float(size.height());
    const float distance = fittingDistance(callbacks->scene.model(), aspect);

    QMatrix4x4 view;
    view.translate(0, 0, -distance);
    view.rotate(elevation, 1, 0, 0);
    view.rotate(-inputs.at(0).value.toFloat(), 0, 1, 0);
    QMatrix4x4 projection;
    projection.perspective(fieldOfView, aspect, distance * 0.1F, distance * 12);
    outputs[0].value = view;
    outputs[1].value = projection;
    outputs[2].value = lightMatrix(inputs.at(1).value.value<QVector3D>());
}

void CamerasPass::skip(Kestrin::Orv::RenderCallbacks*)
{
    // The matrices of the last frame may stay: no pass that reads them runs in this frame.
}

} // namespace Gallery
