// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_VALUETYPES_H
#define GALLERY_VALUETYPES_H

#include <Kestrin/Orv/Inspect/ValueTypes.h>

namespace Gallery {

/// Converters for the values of this program's passes, so that people can read and edit them in
/// documents:
///
///     QColor      "#ff8000"; what a texture input shows when no pass feeds it
///     QVector3D   [0.6, 1, -0.7]
///     QMatrix4x4  "identity", or sixteen numbers row by row
Kestrin::Orv::Inspect::ValueTypes valueTypes();

} // namespace Gallery

#endif
