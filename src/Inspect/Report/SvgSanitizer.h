// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_SVGSANITIZER_H
#define KESTRIN_ORV_INSPECT_SVGSANITIZER_H

#include <QtCore/QByteArray>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// The shapes and texts of an SVG that is not trusted, as an element for use within a page. Leaves
/// out scripts, events, styles, links and references. Empty if \p svg is not SVG, gives no width
/// or declares entities.
/// \param description what a screen reader says, as markup.
QByteArray sanitizedSvg(const QByteArray& svg, const QByteArray& description);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
