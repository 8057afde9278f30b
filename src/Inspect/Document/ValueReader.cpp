// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Document/ValueReader.h"

#include "Document/DocumentValues.h"
#include "Model/ValueText.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

QVariant ValueReader::read(int object, int depth)
{
    return read(object, syntax.readMembers(object, {"type", "value"}), depth);
}

QVariant ValueReader::read(int object, const DocumentMembers& members, int depth)
{
    const int typeItem = members["type"];
    const int item = members["value"];
    QString type;
    if (typeItem >= 0 && !syntax.readString(typeItem, "\"type\"", type))
        return QVariant();
    if (item < 0) {
        if (typeItem >= 0)
            syntax.reportMissingKey(object, "value");
        return QVariant();
    }
    return typeItem < 0 ? readUntyped(item) : readTyped(type, item, depth);
}

QVariant ValueReader::readUntyped(int item)
{
    switch (syntax.kind(item)) {
    case JsonText::String:
        return syntax.string(item);
    case JsonText::True:
        return true;
    case JsonText::False:
        return false;
    default:
        syntax.report(item, "missing-type",
                      QLatin1String("only strings, true and false need no \"type\""));
        return QVariant();
    }
}

QVariant ValueReader::readTyped(const QString& type, int item, int depth)
{
    if (isValueMap(type) || isValueList(type))
        return readContainer(type, item, depth);
    QVariant value;
    if (!readValue(type, syntax.json().value(item), types, value))
        syntax.report(item, "wrong-value",
                      QLatin1String("this is not a value of type ") + quoted(type));
    return value;
}

/// A list of objects with values, or an object of such objects.
QVariant ValueReader::readContainer(const QString& type, int item, int depth)
{
    const bool isMap = isValueMap(type);
    if (depth >= kMaxValueDepth) {
        syntax.report(item, "too-deep",
                      QLatin1String("lists are nested deeper than ")
                          + QString::number(kMaxValueDepth));
        return QVariant();
    }
    if (!syntax.expect(item, isMap ? JsonText::Object : JsonText::Array,
                       isMap ? "a QVariantMap" : "a QVariantList"))
        return QVariant();
    QVariantList list;
    QVariantMap map;
    const int end = syntax.json().item(item).next;
    for (int next = item + 1; next < end; next = syntax.json().item(next).next) {
        const int key = next;
        if (isMap)
            ++next;
        if (!syntax.expect(next, JsonText::Object, "an element"))
            continue;
        const QVariant value = read(next, depth + 1);
        if (isMap)
            map.insert(syntax.string(key), value);
        else
            list.append(value);
    }
    return isMap ? QVariant(map) : QVariant(list);
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
