// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_TRACEFILEREADER_H
#define ORV_TESTS_TRACEFILEREADER_H

#include <gtest/gtest.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <string>
#include <vector>

inline QJsonObject parsed(const QByteArray& json)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    EXPECT_TRUE(document.isObject());
    return document.object();
}

/// The complete events of a file.
inline std::vector<QJsonObject> completeEvents(const QByteArray& json)
{
    std::vector<QJsonObject> events;
    for (const QJsonValue& value : parsed(json)[QLatin1String("traceEvents")].toArray()) {
        const QJsonObject event = value.toObject();
        if (event[QLatin1String("ph")].toString() == QLatin1String("X"))
            events.push_back(event);
    }
    return events;
}

inline std::string textOf(const QJsonObject& object, const char* key)
{
    return object[QLatin1String(key)].toString().toStdString();
}

inline double numberOf(const QJsonObject& object, const char* key)
{
    return object[QLatin1String(key)].toDouble(-1);
}

#endif
