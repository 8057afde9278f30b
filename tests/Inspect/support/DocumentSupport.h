// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_DOCUMENTSUPPORT_H
#define ORV_TESTS_DOCUMENTSUPPORT_H

#include <Kestrin/Orv/Inspect/Document.h>

#include <string>

/// One line for each: where, what, and the text.
inline std::string listed(const QVector<Kestrin::Orv::Inspect::Problem>& problems)
{
    std::string all;
    for (const Kestrin::Orv::Inspect::Problem& problem : problems)
        all += std::to_string(problem.place.line) + ":" + std::to_string(problem.place.column) + " "
            + problem.code.toStdString() + ": " + problem.text.toStdString() + "\n";
    return all;
}

/// A document of these members, which begin in line 2.
inline QByteArray documentOf(const char* members)
{
    return QByteArray("{\"format\":\"orv-graph\",\"version\":1,\n") + members + "}";
}

#endif
