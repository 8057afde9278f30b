// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_MARKUP_H
#define KESTRIN_ORV_INSPECT_MARKUP_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// A visible replacement for a character that markup cannot hold or that is invisible: the symbol
/// of a control character, or the replacement character. Other characters stay as they are.
inline ushort visible(ushort c)
{
    const bool isBidiControl = (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
    if (c < 0x20)
        return static_cast<ushort>(0x2400 + c);
    if (c == 0x7F)
        return 0x2421;
    if ((c > 0x7F && c < 0xA0) || isBidiControl || c == 0x2028 || c == 0x2029 || c >= 0xFFFE)
        return QChar::ReplacementCharacter;
    return c;
}

/// Any text as content or as a quoted attribute of XML and HTML, in UTF-8.
inline QByteArray escapedMarkup(const QString& text)
{
    QString out;
    out.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c.isSurrogate()) {
            if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
                // The last two code points of each plane are not characters.
                if ((QChar::surrogateToUcs4(c, text.at(i + 1)) & 0xFFFE) == 0xFFFE)
                    out += QChar(QChar::ReplacementCharacter);
                else
                    out += text.midRef(i, 2);
                ++i;
            } else {
                out += QChar(QChar::ReplacementCharacter);
            }
            continue;
        }
        switch (c.unicode()) {
        case '&':
            out += QLatin1String("&amp;");
            break;
        case '<':
            out += QLatin1String("&lt;");
            break;
        case '>':
            out += QLatin1String("&gt;");
            break;
        case '"':
            out += QLatin1String("&quot;");
            break;
        case '\'':
            out += QLatin1String("&#39;");
            break;
        default:
            out += QChar(visible(c.unicode()));
        }
    }
    return out.toUtf8();
}

/// At most `length` characters of a text, with an ellipsis in place of its middle.
inline QString shortened(const QString& text, int length)
{
    if (text.size() <= length)
        return text;
    const int half = length / 2;
    return text.left(half) + QChar(0x2026) + text.right(length - half - 1);
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
