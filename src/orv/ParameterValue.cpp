// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "ParameterValue.h"

#include <Kestrin/Orv/Inspect/Document.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

namespace Kestrin::Orv::Program {

using Inspect::ForeignValue;

namespace {

/// Undefined if the text is not JSON.
QJsonValue jsonValue(const QString& text)
{
    const QJsonArray array = QJsonDocument::fromJson('[' + text.toUtf8() + ']').array();
    return array.size() == 1 ? array.first() : QJsonValue(QJsonValue::Undefined);
}

QVariant numberOf(QVariant value, int type)
{
    return value.convert(type) ? value : QVariant();
}

} // namespace

QVariant parameterValue(const QString& text, const QVariant& current)
{
    const QJsonValue json = jsonValue(text);
    const int type = current.userType();
    if (type == qMetaTypeId<ForeignValue>())
        return QVariant::fromValue(ForeignValue{current.value<ForeignValue>().type,
                                                json.isUndefined() ? QJsonValue(text) : json});
    switch (type) {
    case QMetaType::UnknownType:
        return json.isUndefined() ? QVariant(text) : json.toVariant();
    case QMetaType::Bool:
        return json.isBool() ? QVariant(json.toBool()) : QVariant();
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double:
        return numberOf(text, type);
    case QMetaType::QString:
        return text;
    case QMetaType::QByteArray:
        return text.toUtf8();
    case QMetaType::QStringList:
    case QMetaType::QVariantList:
        return json.isArray() ? numberOf(json.toVariant(), type) : QVariant();
    case QMetaType::QVariantMap:
        return json.isObject() ? json.toVariant() : QVariant();
    default:
        return numberOf(text, type);
    }
}

} // namespace Kestrin::Orv::Program
