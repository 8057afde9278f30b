// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_VALUETYPES_H
#define GALLERY_VALUETYPES_H

#include <Kestrin/Orv/Inspect/ValueTypes.h>

namespace Gallery {

/// How documents hold the values that this program's passes take, so that they can be read and
/// edited:
///
///     QColor      "#ff8000"; what a texture input shows when no pass feeds it
///     QVector3D   [0.6, 1, -0.7]
///     QMatrix4x4  "identity", or sixteen numbers row by row
Kestrin::Orv::Inspect::ValueTypes valueTypes();

} // namespace Gallery

#endif
