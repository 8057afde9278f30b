// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Model/ValueText.h"

#include <Kestrin/Orv/Inspect/Paths.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <cmath>

namespace Kestrin {
namespace Orv {
namespace Inspect {

QString oneLine(const QString& text)
{
    QString line;
    line.reserve(text.size());
    for (const QChar c : text) {
        if (c.unicode() < 0x20 || c.unicode() == 0x7F)
            line += Paths::escaped(c);
        else
            line += c;
    }
    return line;
}

QString quoted(const QString& text)
{
    return QLatin1Char('"') + oneLine(text) + QLatin1Char('"');
}

QString compactJson(const QJsonValue& value)
{
    const QString array =
        QString::fromUtf8(QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact));
    return array.mid(1, array.size() - 2);
}

double shortestNumber(float number)
{
    for (const int digits : {6, 7, 8, 9}) {
        const double candidate =
            QByteArray::number(static_cast<double>(number), 'g', digits).toDouble();
        if (static_cast<float>(candidate) == number)
            return candidate;
    }
    return static_cast<double>(number);
}

QString numberText(const QVariant& value)
{
    const double number =
        value.userType() == QMetaType::Float ? shortestNumber(value.toFloat()) : value.toDouble();
    if (number == 0 && std::signbit(number))
        return QLatin1String("-0");
    return QVariant(number).toString();
}

QString scalarText(const QVariant& value)
{
    switch (value.userType()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return value.toString();
    case QMetaType::Float:
    case QMetaType::Double:
        return numberText(value);
    default:
        return QString();
    }
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
