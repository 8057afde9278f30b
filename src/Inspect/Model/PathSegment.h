// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_PATHSEGMENT_H
#define KESTRIN_ORV_INSPECT_PATHSEGMENT_H

#include <QtCore/QString>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// One part of a path, taken apart.
struct PathSegment
{
    static constexpr int kNoOrdinal = -1;

    QString name;
    int ordinal = kNoOrdinal; ///< which of that name, if the path says so
    bool valid = false;
};

PathSegment parsePathSegment(const QString& text);

/// Writes one part of a path, with the number of the name in brackets if there is an ordinal.
QString pathSegmentText(const QString& name, int ordinal);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
