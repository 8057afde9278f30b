// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_PAGEPARTS_H
#define ORV_TESTS_PAGEPARTS_H

#include <Kestrin/Orv/Inspect/Report.h>

#include <QtCore/QByteArray>
#include <QtCore/QRegularExpression>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <string>

inline std::string text(const QByteArray& bytes)
{
    return bytes.toStdString();
}

inline QByteArray report(const Kestrin::Orv::Inspect::Snapshot& snapshot,
                         const Kestrin::Orv::Inspect::Trace* trace = nullptr,
                         const QByteArray& picture = QByteArray())
{
    Kestrin::Orv::Inspect::ReportContent content;
    content.snapshot = &snapshot;
    content.trace = trace;
    content.picture = picture;
    return Kestrin::Orv::Inspect::toHtml(content);
}

/// The part of a page from one text up to another.
inline QByteArray between(const QByteArray& page, const char* from, const char* to)
{
    const int begin = page.indexOf(from);
    const int end = page.indexOf(to, begin);
    return begin < 0 || end < 0 ? QByteArray() : page.mid(begin, end - begin);
}

/// What is wrong with how the elements of a page nest; empty if nothing is.
inline std::string nestingProblem(const QByteArray& page)
{
    const QStringList voids = {QStringLiteral("meta"), QStringLiteral("link"), QStringLiteral("hr"),
                               QStringLiteral("input"), QStringLiteral("wbr")};
    QString html = QString::fromUtf8(page);
    html.remove(QRegularExpression(QStringLiteral("<style>.*</style>"),
                                   QRegularExpression::DotMatchesEverythingOption));
    const QRegularExpression tag(QStringLiteral(
        "<(/?)([a-zA-Z0-9]+)((?:\\s+[-a-zA-Z0-9]+(?:=(?:'[^'<>]*'|\"[^\"<>]*\"))?)*)(/?)>|<"));
    QStringList open;
    auto tags = tag.globalMatch(html);
    while (tags.hasNext()) {
        const auto match = tags.next();
        const QString name = match.captured(2);
        if (name.isEmpty()
            && html.mid(match.capturedStart(), 15) == QLatin1String("<!DOCTYPE html>"))
            continue;
        if (name.isEmpty())
            return "a stray < at " + html.mid(match.capturedStart(), 40).toStdString();
        if (voids.contains(name) || !match.captured(4).isEmpty())
            continue;
        if (match.captured(1).isEmpty())
            open.append(name);
        else if (open.isEmpty() || open.takeLast() != name)
            return "</" + name.toStdString() + "> closes nothing";
    }
    return open.isEmpty() ? std::string() : open.last().toStdString() + " stays open";
}

#endif
