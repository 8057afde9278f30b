// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_TABLE_H
#define KESTRIN_ORV_INSPECT_TABLE_H

#include <cstddef>
#include <vector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// A list that is filled in the order of node refs, edge refs or port numbers.
template<typename T>
using Table = std::vector<T>;

template<typename T>
T& at(Table<T>& table, int index)
{
    return table[static_cast<std::size_t>(index)];
}
template<typename T>
const T& at(const Table<T>& table, int index)
{
    return table[static_cast<std::size_t>(index)];
}
template<typename T>
Table<T> tableOf(int size, const T& value)
{
    return Table<T>(static_cast<std::size_t>(size), value);
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
