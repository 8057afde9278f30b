// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_LOOKUP_H
#define KESTRIN_ORV_INSPECT_LOOKUP_H

#include <QtCore/QVector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// The entry at `index`, which may be any number: an empty entry where the list has none.
template<typename T>
const T& lookUp(const QVector<T>& list, int index)
{
    static const T none{};
    return index >= 0 && index < list.size() ? list.at(index) : none;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
