// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_UNLOAD_STRINGS_H
#define ORV_TESTS_UNLOAD_STRINGS_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

/// What the host keeps of a plugin that it unloads: every string that the library answers.
class Strings
{
public:
    virtual void take(const char* what, const QString& text) = 0;
    virtual void take(const char* what, const QByteArray& bytes) = 0;

protected:
    ~Strings() = default;
};

/// The functions of a plugin by name: takeStrings, takeLiteral. False when not all kinds of strings
/// came up, which the plugin has printed.
using TakeStrings = bool (*)(Strings& strings, const char* directory);

#endif
