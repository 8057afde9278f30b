// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_FOREIGNVALUE_H
#define KESTRIN_ORV_INSPECT_FOREIGNVALUE_H

#include <QtCore/QJsonValue>
#include <QtCore/QMetaType>
#include <QtCore/QString>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// A value of a type that this program does not know, as it stands in the document.
struct ForeignValue
{
    QString type;     ///< the name of its type
    QJsonValue value; ///< what stands for it
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

Q_DECLARE_METATYPE(Kestrin::Orv::Inspect::ForeignValue)

#endif
