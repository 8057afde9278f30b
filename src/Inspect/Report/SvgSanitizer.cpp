// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Report/SvgSanitizer.h"

#include "Picture/Markup.h"
#include "Report/ReportNumbers.h"

#include <QtCore/QXmlStreamReader>

#include <algorithm>
#include <iterator>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

const char* const kDrawnElements[] = {"g", "polygon", "polyline", "path", "ellipse", "text"};
const char* const kDrawnAttributes[] = {"class",
                                        "fill",
                                        "stroke",
                                        "stroke-width",
                                        "stroke-dasharray",
                                        "stroke-opacity",
                                        "fill-opacity",
                                        "transform",
                                        "points",
                                        "d",
                                        "cx",
                                        "cy",
                                        "rx",
                                        "ry",
                                        "x",
                                        "y",
                                        "text-anchor",
                                        "font-family",
                                        "font-size",
                                        "font-weight",
                                        "font-style"};

template<std::size_t N>
bool isOneOf(const QStringRef& text, const char* const (&list)[N])
{
    return std::any_of(std::begin(list), std::end(list),
                       [&](const char* entry) { return text == QLatin1String(entry); });
}

QByteArray attributes(const QXmlStreamAttributes& given)
{
    QByteArray text;
    for (const QXmlStreamAttribute& attribute : given) {
        if (!attribute.namespaceUri().isEmpty() || !isOneOf(attribute.name(), kDrawnAttributes)
            || attribute.value().contains(QLatin1String("url"), Qt::CaseInsensitive))
            continue;
        text += " " + attribute.name().toLatin1() + "='"
            + escapedMarkup(attribute.value().toString()) + "'";
    }
    return text;
}

/// A length of SVG in points, or 0 if it is none.
double points(const QStringRef& length)
{
    QString digits = length.toString();
    if (digits.endsWith(QLatin1String("pt")) || digits.endsWith(QLatin1String("px")))
        digits.chop(2);
    const double value = digits.toDouble();
    return value > 0 && value < 1e6 ? value : 0;
}

QByteArray rootElement(const QXmlStreamAttributes& given, const QByteArray& description)
{
    const double width = points(given.value(QLatin1String("width")));
    if (width == 0)
        return QByteArray();
    return "<svg class='graph' role='img' aria-label='" + description + "' viewBox='"
        + escapedMarkup(given.value(QLatin1String("viewBox")).toString())
        + "' style='--w:" + number(width) + "pt'>\n";
}

} // namespace

QByteArray sanitizedSvg(const QByteArray& svg, const QByteArray& description)
{
    QXmlStreamReader reader(svg);
    QByteArray out;
    bool isInside = false;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::DTD:
            if (reader.text().contains(QLatin1Char('[')))
                return QByteArray(); // it declares entities
            break;
        case QXmlStreamReader::StartElement:
            if (!isInside) {
                if (reader.name() != QLatin1String("svg"))
                    return QByteArray();
                out = rootElement(reader.attributes(), description);
                if (out.isEmpty())
                    return QByteArray();
                isInside = true;
            } else if (isOneOf(reader.name(), kDrawnElements)) {
                out += "<" + reader.name().toLatin1() + attributes(reader.attributes()) + ">";
            } else if (reader.name() != QLatin1String("a")) { // the content of a link stays
                reader.skipCurrentElement();
            }
            break;
        case QXmlStreamReader::EndElement:
            if (reader.name() == QLatin1String("svg"))
                out += "</svg>\n";
            else if (reader.name() != QLatin1String("a"))
                out += "</" + reader.name().toLatin1() + ">";
            break;
        case QXmlStreamReader::Characters:
            if (isInside && !reader.isWhitespace())
                out += escapedMarkup(reader.text().toString());
            else if (isInside)
                out += "\n";
            break;
        default:
            break;
        }
    }
    return reader.hasError() ? QByteArray() : out;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
