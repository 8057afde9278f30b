// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Document/DocumentSyntax.h"

#include "Model/ValueText.h"

#include <QtCore/QSet>
#include <QtCore/QStringList>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

const char* kindName(JsonText::Kind kind)
{
    switch (kind) {
    case JsonText::Object:
        return "an object";
    case JsonText::Array:
        return "a list";
    case JsonText::String:
        return "a string";
    case JsonText::Number:
        return "a number";
    case JsonText::True:
        return "true";
    case JsonText::False:
        return "false";
    case JsonText::Null:
        break;
    }
    return "null";
}

} // namespace

int DocumentMembers::operator[](const char* key) const
{
    for (const Member& member : members) {
        if (member.key == QLatin1String(key))
            return member.value;
    }
    return -1;
}

void DocumentSyntax::report(int item, const char* code, const QString& problem)
{
    const int offset = text.item(item).begin;
    found.push_back({offset, {QLatin1String(code), problem, text.place(offset)}});
}

void DocumentSyntax::reportType(int item, const char* what, const char* expected)
{
    report(item, "wrong-type",
           QLatin1String(what) + QLatin1String(" must be ") + QLatin1String(expected)
               + QLatin1String(", not ") + QLatin1String(kindName(kind(item))));
}

void DocumentSyntax::reportMissingKey(int object, const char* key)
{
    report(object, "missing-key",
           QLatin1String("the key ") + quoted(QLatin1String(key)) + QLatin1String(" is missing"));
}

void DocumentSyntax::reportDuplicateKeys()
{
    for (int object = 0; object < text.numItems(); ++object) {
        if (kind(object) != JsonText::Object)
            continue;
        QSet<QString> keys;
        const int end = text.item(object).next;
        for (int key = object + 1; key < end; key = text.item(key + 1).next) {
            const QString name = string(key);
            if (keys.contains(name))
                report(key, "duplicate-key",
                       QLatin1String("the object already has a key ") + quoted(name));
            keys.insert(name);
        }
    }
}

QVector<Problem> DocumentSyntax::problems() const
{
    std::vector<Found> sorted = found;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const Found& a, const Found& b) { return a.offset < b.offset; });
    QVector<Problem> list;
    for (const Found& entry : sorted)
        list.append(entry.problem);
    return list;
}

bool DocumentSyntax::expect(int item, JsonText::Kind expected, const char* what)
{
    if (kind(item) == expected)
        return true;
    reportType(item, what, kindName(expected));
    return false;
}

bool DocumentSyntax::readString(int item, const char* what, QString& value)
{
    if (!expect(item, JsonText::String, what))
        return false;
    value = string(item);
    return true;
}

bool DocumentSyntax::readInt(int item, const char* what, int& number)
{
    const double notWhole = 0.5;
    const double value =
        kind(item) == JsonText::Number ? text.value(item).toDouble(notWhole) : notWhole;
    if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()
        || std::floor(value) != value) {
        report(item, "wrong-type", QLatin1String(what) + QLatin1String(" must be a whole number"));
        return false;
    }
    number = static_cast<int>(value);
    return true;
}

DocumentMembers DocumentSyntax::members(int object, std::initializer_list<const char*> keys) const
{
    DocumentMembers known;
    for (const char* key : keys)
        known.members.push_back({QLatin1String(key), -1});
    const int end = text.item(object).next;
    for (int key = object + 1; key < end; key = text.item(key + 1).next) {
        const QString name = string(key);
        for (DocumentMembers::Member& member : known.members) {
            if (member.value < 0 && member.key == name)
                member.value = key + 1;
        }
    }
    return known;
}

void DocumentSyntax::reportUnknownKeys(int object, const DocumentMembers& known)
{
    const int end = text.item(object).next;
    for (int key = object + 1; key < end; key = text.item(key + 1).next) {
        const QString name = string(key);
        const auto isKey = [&name](const DocumentMembers::Member& m) { return m.key == name; };
        if (std::any_of(known.members.begin(), known.members.end(), isKey))
            continue;
        QStringList names;
        for (const DocumentMembers::Member& member : known.members)
            names.append(member.key);
        report(key, "unknown-key",
               QLatin1String("there is no key ") + quoted(name) + QLatin1String(" here, only ")
                   + names.join(QLatin1String(", ")));
    }
}

DocumentMembers DocumentSyntax::readMembers(int object, std::initializer_list<const char*> keys)
{
    DocumentMembers known = members(object, keys);
    reportUnknownKeys(object, known);
    return known;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
