// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_FINDBYNAME_H
#define KESTRIN_ORV_FINDBYNAME_H

#include <QtCore/QString>
#include <QtCore/QVector>

namespace Kestrin {
namespace Orv {

/// The position of the first record with this name; -1 if there is none.
template<typename Record, typename String>
int findByName(const QVector<Record>& records, const String& name)
{
    for (int i = 0; i < records.size(); ++i) {
        if (records.at(i).name == name)
            return i;
    }
    return -1;
}

} // namespace Orv
} // namespace Kestrin

#endif
