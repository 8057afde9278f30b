// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "ValueTypes.h"

#include <QtCore/QJsonArray>
#include <QtGui/QColor>
#include <QtGui/QMatrix4x4>
#include <QtGui/QVector3D>

namespace Gallery {

using Kestrin::Orv::Inspect::ValueTypes;

namespace {

/// A float as the shortest decimal number that reads as the same float: 0.6, not 0.60000002384.
double shortest(float number)
{
    const int digitsOfAny = 9;
    for (int digits = 6; digits < digitsOfAny; ++digits) {
        const double rounded = QString::number(double(number), 'g', digits).toDouble();
        if (float(rounded) == number)
            return rounded;
    }
    return double(number);
}

QJsonArray toArray(const float* numbers, int count)
{
    QJsonArray array;
    for (int i = 0; i < count; ++i)
        array.append(shortest(numbers[i]));
    return array;
}

/// The numbers of an array of this length; none for anything else.
QVector<float> numbersOf(const QJsonValue& json, int count)
{
    const QJsonArray array = json.toArray();
    QVector<float> numbers;
    for (const QJsonValue& number : array) {
        if (number.isDouble())
            numbers.append(float(number.toDouble()));
    }
    return numbers.size() == count && array.size() == count ? numbers : QVector<float>();
}

QJsonValue colorToJson(const QVariant& value)
{
    const auto color = value.value<QColor>();
    return color.name(color.alpha() == 255 ? QColor::HexRgb : QColor::HexArgb);
}

QVariant colorFromJson(const QJsonValue& json)
{
    const QString name = json.toString();
    return QColor::isValidColor(name) ? QVariant(QColor(name)) : QVariant();
}

QJsonValue vectorToJson(const QVariant& value)
{
    const auto vector = value.value<QVector3D>();
    const float numbers[] = {vector.x(), vector.y(), vector.z()};
    return toArray(numbers, 3);
}

QVariant vectorFromJson(const QJsonValue& json)
{
    const QVector<float> numbers = numbersOf(json, 3);
    if (numbers.isEmpty())
        return {};
    return QVector3D(numbers.at(0), numbers.at(1), numbers.at(2));
}

const QString identity = QStringLiteral("identity");

QJsonValue matrixToJson(const QVariant& value)
{
    const auto matrix = value.value<QMatrix4x4>();
    if (matrix.isIdentity())
        return identity;
    float rows[16];
    matrix.copyDataTo(rows);
    return toArray(rows, 16);
}

QVariant matrixFromJson(const QJsonValue& json)
{
    if (json == identity)
        return QMatrix4x4();
    const QVector<float> rows = numbersOf(json, 16);
    return rows.isEmpty() ? QVariant() : QMatrix4x4(rows.constData());
}

} // namespace

ValueTypes valueTypes()
{
    ValueTypes types;
    types.add(QStringLiteral("QColor"), &colorToJson, &colorFromJson);
    types.add(QStringLiteral("QVector3D"), &vectorToJson, &vectorFromJson);
    types.add(QStringLiteral("QMatrix4x4"), &matrixToJson, &matrixFromJson);
    return types;
}

} // namespace Gallery
