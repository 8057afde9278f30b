// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Lint.h>

#include "Host.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

/// The findings, one a line, as "code: text".
std::string linted(const Snapshot& snapshot)
{
    std::string all;
    const QVector<Finding> findings = lint(snapshot);
    for (const Finding& finding : findings)
        all += finding.code.toStdString() + ": " + finding.text.toStdString() + "\n";
    return all;
}

std::string linted(Host& host)
{
    return linted(host.snapshot());
}

/// A, which feeds B, which feeds an output: nothing to complain about.
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

} // namespace

TEST(Lint, AnEmptyRendererIsSilent)
{
    EXPECT_EQ(linted(Snapshot()), "");
}

TEST(Lint, AChainThatFeedsAnOutputIsSilent)
{
    Chain host;
    EXPECT_EQ(linted(host), "");
}

TEST(LintDefaults, AnUnfedInputWithAnInvalidDefaultIsReported)
{
    Chain host;
    host.graph.removeEdge(host.edge);
    host.pass("C", "x", "", 0, QVariant());
    host.renderer.setTarget(host.graph.findNode(QStringLiteral("C"), 0));
    EXPECT_EQ(
        linted(host),
        "unneeded-pass: A never runs: neither an output of the renderer nor the target needs "
        "it.\n"
        "invalid-default: C.x takes its default value, which is invalid: nothing feeds it.\n");
}

TEST(LintUserCounts, ReadersBeyondTheEdgesOfThePassGoUncounted)
{
    Grouped host;
    host.reader("R");
    EXPECT_EQ(linted(host), "");
    host.reader("S");
    EXPECT_EQ(linted(host),
              "uncounted-users: G/P.p has 2 users, of whom the renderer counts 1; not counted: "
              "S.in.\n");
}
