// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_APPENDTOBOTH_H
#define KESTRIN_ORV_APPENDTOBOTH_H

#include <utility>

namespace Kestrin {
namespace Orv {

/// Appends to two lists that grow together. When memory runs out, appends to neither.
template<typename ListA, typename A, typename ListB, typename B>
void appendToBoth(ListA& first, A&& a, ListB& second, B&& b)
{
    first.append(std::forward<A>(a));
    try {
        second.append(std::forward<B>(b));
    } catch (...) {
        first.removeLast();
        throw;
    }
}

} // namespace Orv
} // namespace Kestrin

#endif
