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

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
