// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_LINTEDHOST_H
#define ORV_TESTS_LINTEDHOST_H

#include <Kestrin/Orv/Inspect/Lint.h>

#include "Inspect/support/Host.h"

#include <string>

/// The findings, one a line, as "code: text".
inline std::string linted(const Kestrin::Orv::Inspect::Snapshot& snapshot)
{
    std::string all;
    const QVector<Kestrin::Orv::Inspect::Finding> findings = Kestrin::Orv::Inspect::lint(snapshot);
    for (const Kestrin::Orv::Inspect::Finding& finding : findings)
        all += finding.code.toStdString() + ": " + finding.text.toStdString() + "\n";
    return all;
}

inline std::string linted(Host& host)
{
    return linted(host.snapshot());
}

/// The findings of one code.
inline QVector<Kestrin::Orv::Inspect::Finding>
found(const Kestrin::Orv::Inspect::Snapshot& snapshot, const char* code)
{
    QVector<Kestrin::Orv::Inspect::Finding> some;
    const QVector<Kestrin::Orv::Inspect::Finding> findings = Kestrin::Orv::Inspect::lint(snapshot);
    for (const Kestrin::Orv::Inspect::Finding& finding : findings) {
        if (finding.code == QLatin1String(code))
            some.append(finding);
    }
    return some;
}

/// A, which feeds B, which feeds an output: lint finds nothing.
struct Chain : Host
{
    int a = pass("A", "", "x");
    int b = pass("B", "x", "y");
    int edge = link(a, "x", b, "x");
    int picture = output("Picture");
    int last = up("Picture", b, "y");
};

/// A pass P in a group G, whose value leads to readers outside.
struct Grouped : Host
{
    int g = group("G", "", "g");
    int p = pass("P", "", "p", g);
    int inner = up("g", p, "p");
    int reader(const char* name)
    {
        const int node = pass(name, "in", "out");
        link(g, "g", node, "in");
        const int index = output(name);
        graph.addUpEdge(index, node, 0);
        return node;
    }
};

#endif
