// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_VALUEREADER_H
#define KESTRIN_ORV_INSPECT_VALUEREADER_H

#include "Document/DocumentSyntax.h"

#include <Kestrin/Orv/Inspect/ValueTypes.h>

#include <QtCore/QVariant>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// Reads values with their types from a document, and reports what is wrong with them. A value that
/// cannot be read is invalid.
class ValueReader
{
public:
    ValueReader(DocumentSyntax& documentSyntax, const ValueTypes& valueTypes)
        : syntax(documentSyntax)
        , types(valueTypes)
    {
    }

    /// The value of an object that has the keys "type" and "value" only.
    QVariant read(int object) { return read(object, 0); }
    /// The value of an object that has other keys, too; invalid if it has neither key.
    QVariant read(int object, const DocumentMembers& members) { return read(object, members, 0); }

private:
    QVariant read(int object, int depth);
    QVariant read(int object, const DocumentMembers& members, int depth);
    QVariant readUntyped(int item);
    QVariant readTyped(const QString& type, int item, int depth);
    QVariant readContainer(const QString& type, int item, int depth);

    DocumentSyntax& syntax;
    const ValueTypes& types;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
