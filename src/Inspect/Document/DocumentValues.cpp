// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Document/DocumentValues.h"

#include "Model/ValueText.h"

#include <Kestrin/Orv/Inspect/ForeignValue.h>

#include <QtCore/QDataStream>
#include <QtCore/QJsonArray>
#include <QtCore/QMetaType>
#include <QtCore/QStringList>

#include <cmath>
#include <limits>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// A double holds every whole number up to this one.
const qint64 kExact = Q_INT64_C(1) << 53;

QString typeName(int type)
{
    return QString::fromLatin1(QMetaType::typeName(type));
}

/// Whether a type has its own written form.
bool isKnown(int type)
{
    switch (type) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double:
    case QMetaType::QString:
    case QMetaType::QStringList:
    case QMetaType::QByteArray:
    case QMetaType::QVariantList:
    case QMetaType::QVariantMap:
        return true;
    default:
        return false;
    }
}

/// Whether the bytes of a type may be read from an untrusted document, and are the same in every
/// run. Such a type is not nested, takes no more memory than its bytes, and has no hash in it.
bool isStreamable(int type)
{
    switch (type) {
    case QMetaType::Long:
    case QMetaType::Short:
    case QMetaType::Char:
    case QMetaType::ULong:
    case QMetaType::UShort:
    case QMetaType::UChar:
    case QMetaType::SChar:
    case QMetaType::QChar:
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime:
    case QMetaType::QBitArray:
    case QMetaType::QUrl:
    case QMetaType::QUuid:
    case QMetaType::QRect:
    case QMetaType::QRectF:
    case QMetaType::QSize:
    case QMetaType::QSizeF:
    case QMetaType::QLine:
    case QMetaType::QLineF:
    case QMetaType::QPoint:
    case QMetaType::QPointF:
    case QMetaType::QColor:
    case QMetaType::QMatrix4x4:
    case QMetaType::QTransform:
    case QMetaType::QVector2D:
    case QMetaType::QVector3D:
    case QMetaType::QVector4D:
    case QMetaType::QQuaternion:
        return true;
    default:
        return type >= QMetaType::User && type != qMetaTypeId<ForeignValue>();
    }
}

QString streamKey()
{
    return QLatin1String("QDataStream");
}

bool toBytes(const QVariant& value, QByteArray& bytes)
{
    if (!isStreamable(value.userType()))
        return false;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_12);
    return QMetaType::save(stream, value.userType(), value.constData())
        && stream.status() == QDataStream::Ok;
}

QVariant fromBytes(int type, const QByteArray& bytes)
{
    if (!isStreamable(type))
        return QVariant();
    QVariant value(type, nullptr);
    QDataStream stream(bytes);
    stream.setVersion(QDataStream::Qt_5_12);
    QByteArray again;
    if (!value.isValid() || !QMetaType::load(stream, type, value.data())
        || stream.status() != QDataStream::Ok || !toBytes(value, again) || again != bytes)
        return QVariant();
    return value;
}

bool fromBase64(const QString& text, QByteArray& bytes)
{
    const QByteArray ascii = text.toLatin1();
    bytes = QByteArray::fromBase64(ascii);
    return QString::fromLatin1(bytes.toBase64()) == text;
}

/// The text of a number that JSON does not have, or that QJsonValue does not keep (-0). Undefined
/// for any other number.
QJsonValue specialNumber(double number)
{
    if (std::isnan(number))
        return QLatin1String("nan");
    if (std::isinf(number))
        return number < 0 ? QLatin1String("-inf") : QLatin1String("inf");
    if (number == 0 && std::signbit(number))
        return QLatin1String("-0");
    return QJsonValue(QJsonValue::Undefined);
}

bool readSpecialNumber(const QString& text, double& number)
{
    if (text == QLatin1String("nan"))
        number = std::numeric_limits<double>::quiet_NaN();
    else if (text == QLatin1String("inf"))
        number = std::numeric_limits<double>::infinity();
    else if (text == QLatin1String("-inf"))
        number = -std::numeric_limits<double>::infinity();
    else if (text == QLatin1String("-0"))
        number = -0.0;
    else
        return false;
    return true;
}

bool writeAny(const QVariant& value, const ValueTypes& types, int depth, QJsonObject& object);

bool writeList(const QVariantList& list, const ValueTypes& types, int depth, QJsonArray& array)
{
    for (const QVariant& element : list) {
        QJsonObject written;
        if (!writeAny(element, types, depth, written))
            return false;
        array.append(written);
    }
    return true;
}

bool writeMap(const QVariantMap& map, const ValueTypes& types, int depth, QJsonObject& object)
{
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
        QJsonObject written;
        if (object.contains(entry.key()) || !writeAny(*entry, types, depth, written))
            return false; // a QVariantMap may have a key twice, a JSON object may not
        object.insert(entry.key(), written);
    }
    return true;
}

/// A value without its type; undefined if it has no written form.
QJsonValue written(const QVariant& value, const ValueTypes& types, int depth)
{
    switch (value.userType()) {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Int:
        return value.toInt();
    case QMetaType::UInt:
        return static_cast<double>(value.toUInt());
    case QMetaType::LongLong: {
        const qint64 number = value.toLongLong();
        if (number > kExact || number < -kExact)
            return QString::number(number);
        return static_cast<double>(number);
    }
    case QMetaType::ULongLong: {
        const quint64 number = value.toULongLong();
        if (number > static_cast<quint64>(kExact))
            return QString::number(number);
        return static_cast<double>(number);
    }
    case QMetaType::Float: {
        const float number = value.toFloat();
        const QJsonValue special = specialNumber(static_cast<double>(number));
        return special.isUndefined() ? QJsonValue(shortestNumber(number)) : special;
    }
    case QMetaType::Double: {
        const QJsonValue special = specialNumber(value.toDouble());
        return special.isUndefined() ? QJsonValue(value.toDouble()) : special;
    }
    case QMetaType::QString:
        return value.toString();
    case QMetaType::QStringList:
        return QJsonArray::fromStringList(value.toStringList());
    case QMetaType::QByteArray:
        return QString::fromLatin1(value.toByteArray().toBase64());
    case QMetaType::QVariantList: {
        QJsonArray list;
        return writeList(value.toList(), types, depth, list) ? QJsonValue(list)
                                                             : QJsonValue(QJsonValue::Undefined);
    }
    case QMetaType::QVariantMap: {
        QJsonObject map;
        return writeMap(value.toMap(), types, depth, map) ? QJsonValue(map)
                                                          : QJsonValue(QJsonValue::Undefined);
    }
    default:
        break;
    }
    const ValueTypes::ToJson convert = types.toJson(typeName(value.userType()));
    if (convert)
        return convert(value);
    QByteArray bytes;
    if (!toBytes(value, bytes))
        return QJsonValue(QJsonValue::Undefined);
    return QJsonObject{{streamKey(), QString::fromLatin1(bytes.toBase64())}};
}

bool writeAny(const QVariant& value, const ValueTypes& types, int depth, QJsonObject& object)
{
    if (!value.isValid())
        return true;
    if (depth > kMaxValueDepth)
        return false;
    const int type = value.userType();
    if (type == qMetaTypeId<ForeignValue>()) {
        const auto foreign = value.value<ForeignValue>();
        const int known = QMetaType::type(foreign.type.toLatin1());
        if (isKnown(known) || foreign.value.isUndefined())
            return false; // a reader would take it for a value of that known type
        object.insert(QLatin1String("type"), foreign.type);
        object.insert(QLatin1String("value"), foreign.value);
        return true;
    }
    const QJsonValue json = written(value, types, depth + 1);
    if (json.isUndefined())
        return false;
    if (type != QMetaType::Bool && type != QMetaType::QString)
        object.insert(QLatin1String("type"), typeName(type));
    object.insert(QLatin1String("value"), json);
    return true;
}

/// Reads a whole number from a number or, for types of 64 bits, from a string.
template<typename Integer>
bool readInteger(const QJsonValue& json, QVariant& value)
{
    using Limits = std::numeric_limits<Integer>;
    if (json.isString() && sizeof(Integer) == 8) {
        bool isNumber = false;
        const QString text = json.toString();
        const auto number = std::is_signed<Integer>::value
            ? static_cast<Integer>(text.toLongLong(&isNumber))
            : static_cast<Integer>(text.toULongLong(&isNumber));
        value = QVariant::fromValue(number);
        return isNumber && QString::number(number) == text;
    }
    const double number = json.toDouble();
    const double most = qMin(static_cast<double>(kExact), static_cast<double>(Limits::max()));
    const double least = qMax(-static_cast<double>(kExact), static_cast<double>(Limits::min()));
    if (!json.isDouble() || !(number >= least && number <= most) || std::floor(number) != number)
        return false;
    value = QVariant::fromValue(static_cast<Integer>(number));
    return true;
}

bool readFloating(const QJsonValue& json, double& number)
{
    if (json.isString())
        return readSpecialNumber(json.toString(), number);
    number = json.toDouble();
    return json.isDouble();
}

bool readDouble(const QJsonValue& json, QVariant& value)
{
    double number = 0;
    const bool isNumber = readFloating(json, number);
    value = number;
    return isNumber;
}

bool readFloat(const QJsonValue& json, QVariant& value)
{
    double number = 0;
    if (!readFloating(json, number))
        return false;
    const bool tooLarge = std::isfinite(number)
        && std::fabs(number) > static_cast<double>(std::numeric_limits<float>::max());
    value = QVariant::fromValue(tooLarge ? 0.0F : static_cast<float>(number));
    return !tooLarge;
}

bool readByteArray(const QJsonValue& json, QVariant& value)
{
    QByteArray bytes;
    const bool isBase64 = json.isString() && fromBase64(json.toString(), bytes);
    value = bytes;
    return isBase64;
}

bool readStringList(const QJsonValue& json, QVariant& value)
{
    QStringList list;
    const QJsonArray array = json.toArray();
    for (const QJsonValue& element : array) {
        if (!element.isString())
            return false;
        list.append(element.toString());
    }
    value = list;
    return json.isArray();
}

/// A value of a type without a converter: from its bytes, if the type is known, otherwise a
/// ForeignValue.
QVariant readOther(const QString& name, int type, const QJsonValue& json)
{
    QByteArray bytes;
    QVariant value;
    const QJsonObject object = json.toObject();
    if (object.size() == 1 && fromBase64(object.value(streamKey()).toString(), bytes))
        value = fromBytes(type, bytes);
    if (!value.isValid() && !json.isUndefined())
        value = QVariant::fromValue(ForeignValue{name, json});
    return value;
}

} // namespace

bool isValueList(const QString& type)
{
    return type == QLatin1String("QVariantList");
}

bool isValueMap(const QString& type)
{
    return type == QLatin1String("QVariantMap");
}

bool writeValue(const QVariant& value, const ValueTypes& types, QJsonObject& object)
{
    return writeAny(value, types, 0, object);
}

bool readValue(const QString& type, const QJsonValue& json, const ValueTypes& types,
               QVariant& value)
{
    const int id = QMetaType::type(type.toLatin1());
    const QString registered = isKnown(id) ? typeName(id) : QString();
    switch (registered == type ? id : QMetaType::UnknownType) {
    case QMetaType::Bool:
        value = json.toBool();
        return json.isBool();
    case QMetaType::Int:
        return readInteger<int>(json, value);
    case QMetaType::UInt:
        return readInteger<uint>(json, value);
    case QMetaType::LongLong:
        return readInteger<qlonglong>(json, value);
    case QMetaType::ULongLong:
        return readInteger<qulonglong>(json, value);
    case QMetaType::Float:
        return readFloat(json, value);
    case QMetaType::Double:
        return readDouble(json, value);
    case QMetaType::QString:
        value = json.toString();
        return json.isString();
    case QMetaType::QByteArray:
        return readByteArray(json, value);
    case QMetaType::QStringList:
        return readStringList(json, value);
    default:
        break;
    }
    if (const ValueTypes::FromJson convert = types.fromJson(type))
        value = convert(json);
    else
        value = readOther(type, id, json);
    return value.isValid();
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
