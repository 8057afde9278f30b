// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Diff/ValueDifference.h"

#include "Document/DocumentValues.h"
#include "Model/ValueText.h"

#include <Kestrin/Orv/Inspect/ForeignValue.h>

#include <QtCore/QDataStream>
#include <QtCore/QJsonObject>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

bool isForeign(const QVariant& value)
{
    return value.userType() == qMetaTypeId<ForeignValue>();
}

bool isSameForeign(const QVariant& a, const QVariant& b)
{
    QJsonObject writtenA;
    QJsonObject writtenB;
    return writeValue(a, ValueTypes(), writtenA) == writeValue(b, ValueTypes(), writtenB)
        && writtenA == writtenB;
}

/// The bytes that QDataStream writes; null for a type without stream operators.
QByteArray bytesOf(const QVariant& value)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    return QMetaType::save(stream, value.userType(), value.constData()) ? bytes : QByteArray();
}

/// A value without its type, whatever that is.
QString anyValueText(const QVariant& value)
{
    switch (value.userType()) {
    case QMetaType::QStringList:
    case QMetaType::QVariantList:
    case QMetaType::QVariantMap:
        return compactJson(QJsonValue::fromVariant(value));
    default:
        break;
    }
    QString scalar = scalarText(value);
    if (!scalar.isEmpty())
        return scalar;
    if (value.canConvert(QMetaType::QString) && value.userType() != QMetaType::QByteArray)
        return compactJson(value.toString());
    const int numShown = 64;
    const QByteArray bytes =
        value.userType() == QMetaType::QByteArray ? value.toByteArray() : bytesOf(value);
    return QString::fromLatin1(bytes.left(numShown).toHex())
        + QLatin1String(bytes.size() > numShown ? "..." : "");
}

} // namespace

bool isSameValue(const QVariant& a, const QVariant& b)
{
    if (isForeign(a) || isForeign(b))
        return isSameForeign(a, b);
    if (a.userType() != b.userType())
        return false;
    if (!a.isValid())
        return true;
    // For QVariant, numbers that are nearly equal are equal, and NaN does not equal itself.
    const QByteArray bytes = bytesOf(a);
    if (!bytes.isNull() && bytes == bytesOf(b))
        return true;
    if (bytes.isNull())
        return !QMetaType::hasRegisteredComparators(a.userType()) || a == b;
    // Two equal hashes may be written in different orders.
    return a.userType() == QMetaType::QVariantHash && a == b;
}

QString typedValueText(const QVariant& value)
{
    if (!value.isValid())
        return QLatin1String("invalid");
    if (isForeign(value)) {
        const auto foreign = value.value<ForeignValue>();
        return oneLine(foreign.type) + QLatin1Char(' ') + compactJson(foreign.value);
    }
    return QLatin1String(value.typeName()) + QLatin1Char(' ') + anyValueText(value);
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
