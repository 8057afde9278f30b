// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_FOREIGNVALUE_H
#define KESTRIN_ORV_INSPECT_FOREIGNVALUE_H

#include <Kestrin/Orv/Inspect/Export.h>

#include <QtCore/QJsonValue>
#include <QtCore/QMetaType>
#include <QtCore/QString>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// A value whose type this program does not know. It is kept as the document has it.
struct ForeignValue
{
    QString type;     ///< the name of its type
    QJsonValue value; ///< the value in the document
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

Q_DECLARE_METATYPE(Kestrin::Orv::Inspect::ForeignValue)

#endif
