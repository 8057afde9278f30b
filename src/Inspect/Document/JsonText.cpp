// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Document/JsonText.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <algorithm>
#include <utility>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

const int kMilestone = 256;
const char kByteOrderMark[] = "\xEF\xBB\xBF";

bool isContinuation(char c)
{
    return (static_cast<uchar>(c) & 0xC0) == 0x80;
}

/// The length of the UTF-8 sequence at `offset`; 0 if it is not valid.
int sequenceLength(const QByteArray& text, int offset)
{
    const auto byte = [&text](int i) -> uint {
        return i < text.size() ? static_cast<uchar>(text.at(i)) : 0U;
    };
    const uint first = byte(offset);
    if (first < 0x80)
        return 1;
    const int length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4)
        return 0;
    const uint second = byte(offset + 1);
    // No overlong sequence, no half of a surrogate pair, no character after U+10FFFF.
    const uint least = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    const uint most = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    if (second < least || second > most)
        return 0;
    for (int i = 2; i < length; ++i) {
        if ((byte(offset + i) & 0xC0) != 0x80)
            return 0;
    }
    return length;
}

/// As QString::fromUtf8(), but keeps a byte order mark.
QString decoded(const char* begin, const char* end)
{
    const int length = static_cast<int>(end - begin);
    const QString text = QString::fromUtf8(begin, length);
    const bool marked = length >= 3 && std::equal(begin, begin + 3, kByteOrderMark);
    return marked ? QChar(QChar::ByteOrderMark) + text : text;
}

} // namespace

JsonText::JsonText(QByteArray json)
    : text(std::move(json))
{
    pos = text.startsWith(kByteOrderMark) ? 3 : 0;
    if (checkUtf8())
        scan();
}

/// Checks all characters, and notes the lines and columns on the way.
bool JsonText::checkUtf8()
{
    milestones.reserve(static_cast<std::size_t>(text.size() / kMilestone) + 1);
    Place place;
    place.line = 1;
    place.column = 1;
    int next = 0; // where the next character begins
    for (int offset = 0; offset < text.size(); ++offset) {
        if (offset % kMilestone == 0)
            milestones.push_back(place);
        if (offset == next) {
            const int length = sequenceLength(text, offset);
            if (length == 0)
                return fail("invalid-utf8", QLatin1String("the text is not UTF-8 from here on"),
                            offset);
            next = offset + length;
        }
        if (text.at(offset) == '\n') {
            ++place.line;
            place.column = 1;
        } else if (offset >= pos && offset + 1 == next) {
            ++place.column; // the byte order mark before `pos` is not counted
        }
    }
    if (milestones.empty())
        milestones.push_back(place);
    return true;
}

Place JsonText::place(int offset) const
{
    const std::size_t last = milestones.size() - 1;
    const std::size_t milestone =
        std::min(static_cast<std::size_t>(std::max(offset, 0) / kMilestone), last);
    const int start = text.startsWith(kByteOrderMark) ? 3 : 0;
    Place place = milestones[milestone];
    const int end = std::min(offset, text.size());
    for (int i = static_cast<int>(milestone) * kMilestone; i < end; ++i) {
        if (text.at(i) == '\n') {
            ++place.line;
            place.column = 1;
        } else if (i >= start && (i + 1 == end || !isContinuation(text.at(i + 1)))) {
            ++place.column; // after the last byte of a character
        }
    }
    return place;
}

bool JsonText::fail(const char* code, const QString& what, int offset)
{
    failure.code = QLatin1String(code);
    failure.text = what;
    failure.place = place(offset);
    return false;
}

bool JsonText::fail(const char* what)
{
    if (pos >= text.size())
        return fail("syntax", QLatin1String("the text ends too early"), pos);
    return fail("syntax", QLatin1String(what), pos);
}

void JsonText::skipSpace()
{
    while (at(' ') || at('\n') || at('\t') || at('\r'))
        ++pos;
}

void JsonText::add(Kind kind, int begin)
{
    items.push_back({begin, pos, numItems() + 1, kind});
}

bool JsonText::openContainer(Kind kind)
{
    if (open.size() >= kMaxDepth)
        return fail("too-deep",
                    QLatin1String("values are nested deeper than ") + QString::number(kMaxDepth),
                    pos);
    open.push_back(numItems());
    ++pos;
    add(kind, pos - 1);
    return true;
}

void JsonText::closeContainer()
{
    ++pos;
    Item& item = items[static_cast<std::size_t>(open.back())];
    item.end = pos;
    item.next = numItems();
    open.pop_back();
}

void JsonText::scan()
{
    enum { Value, FirstElement, FirstKey, Key, AfterValue } expected = Value;
    for (;;) {
        skipSpace();
        if ((expected == FirstElement && at(']')) || (expected == FirstKey && at('}'))) {
            closeContainer();
            expected = AfterValue;
        } else if (expected == Value || expected == FirstElement) {
            const std::size_t depth = open.size();
            if (!scanValue())
                return;
            expected = open.size() == depth             ? AfterValue
                : items.back().kind == JsonText::Object ? FirstKey
                                                        : FirstElement;
        } else if (expected == FirstKey || expected == Key) {
            if (!at('"')) {
                fail("a key in quotes is expected here");
                return;
            }
            if (!scanString())
                return;
            skipSpace();
            if (!at(':')) {
                fail("a colon is expected here");
                return;
            }
            ++pos;
            expected = Value;
        } else if (open.empty()) {
            if (pos < text.size())
                fail("nothing may follow the document");
            return;
        } else {
            const bool inObject = kind(open.back()) == Object;
            if (at(',')) {
                ++pos;
                expected = inObject ? Key : Value;
            } else if (at(inObject ? '}' : ']')) {
                closeContainer();
            } else {
                fail(inObject ? "a comma or a closing brace is expected here"
                              : "a comma or a closing bracket is expected here");
                return;
            }
        }
    }
}

bool JsonText::scanValue()
{
    if (pos >= text.size())
        return fail("");
    switch (text.at(pos)) {
    case '{':
        return openContainer(Object);
    case '[':
        return openContainer(Array);
    case '"':
        return scanString();
    case 't':
        return scanWord("true", True);
    case 'f':
        return scanWord("false", False);
    case 'n':
        return scanWord("null", Null);
    default:
        if (at('-') || atDigit())
            return scanNumber();
        return fail("a value is expected here");
    }
}

bool JsonText::scanWord(const char* word, Kind kind)
{
    const int begin = pos;
    for (; *word; ++word, ++pos) {
        if (!at(*word))
            return fail("a value is expected here");
    }
    add(kind, begin);
    return true;
}

bool JsonText::skipDigits()
{
    if (!atDigit())
        return fail("a digit is expected here");
    while (atDigit())
        ++pos;
    return true;
}

bool JsonText::scanNumber()
{
    const int begin = pos;
    if (at('-'))
        ++pos;
    if (at('0'))
        ++pos;
    else if (!skipDigits())
        return false;
    if (at('.')) {
        ++pos;
        if (!skipDigits())
            return false;
    }
    if (at('e') || at('E')) {
        ++pos;
        if (at('+') || at('-'))
            ++pos;
        if (!skipDigits())
            return false;
    }
    add(Number, begin);
    return true;
}

bool JsonText::scanString()
{
    const int begin = pos++;
    while (!at('"')) {
        if (pos >= text.size())
            return fail("");
        if (static_cast<uchar>(text.at(pos)) < 0x20)
            return fail("a control character in a string must be escaped");
        if (text.at(pos) == '\\') {
            ++pos;
            if (at('u')) {
                for (int i = 0; i < 4; ++i) {
                    ++pos;
                    const char c = pos < text.size() ? text.at(pos) : 'x';
                    if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f')
                          || (c >= 'A' && c <= 'F')))
                        return fail("four hexadecimal digits are expected here");
                }
            } else if (pos >= text.size() || !QByteArray("\"\\/bfnrt").contains(text.at(pos))) {
                return fail("there is no such escape sequence");
            }
        }
        ++pos;
    }
    ++pos;
    add(String, begin);
    return true;
}

QString JsonText::string(int index) const
{
    const Item& string = item(index);
    const char* const begin = text.constData() + string.begin + 1;
    const char* const end = text.constData() + string.end - 1;
    const char* next = std::find(begin, end, '\\');
    QString result = decoded(begin, next);
    while (next != end) {
        ++next; // the backslash
        const char c = *next++;
        switch (c) {
        case 'b':
            result += QLatin1Char('\b');
            break;
        case 'f':
            result += QLatin1Char('\f');
            break;
        case 'n':
            result += QLatin1Char('\n');
            break;
        case 'r':
            result += QLatin1Char('\r');
            break;
        case 't':
            result += QLatin1Char('\t');
            break;
        case 'u':
            result += QChar(QByteArray(next, 4).toUShort(nullptr, 16));
            next += 4;
            break;
        default:
            result += QLatin1Char(c);
        }
        const char* const escape = std::find(next, end, '\\');
        result += decoded(next, escape);
        next = escape;
    }
    return result;
}

QJsonValue JsonText::value(int index) const
{
    const Item& value = item(index);
    const QByteArray list = '[' + text.mid(value.begin, value.end - value.begin) + ']';
    const QJsonArray array = QJsonDocument::fromJson(list).array();
    return array.isEmpty() ? QJsonValue(QJsonValue::Undefined) : array.at(0);
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
