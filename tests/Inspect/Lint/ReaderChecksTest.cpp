// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Lint/LintedHost.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(LintReaders, AnOutputThatNobodyReadsIsReported)
{
    Host host;
    const int a = host.pass("A", "", "x y");
    host.output("Picture");
    host.up("Picture", a, "x");
    EXPECT_EQ(linted(host), "unread-output: Nothing reads A.y.\n");
    EXPECT_EQ(lint(host.snapshot()).first().port, (PortRef{a, 1, true}));
}

TEST(LintReaders, AnOutputThatEndsInAGroupIsReportedOnce)
{
    Grouped host;
    host.reader("R");
    const int h = host.group("H", "in", "");
    host.pass("Q", "", "", h);
    host.renderer.setTarget(host.graph.findNode(QStringLiteral("Q"), h));
    const int a = host.pass("A", "", "x y");
    host.output("Other");
    host.graph.addUpEdge(1, a, 0);
    host.link(a, "y", h, "in");
    EXPECT_EQ(linted(host),
              "unread-output: Nothing reads A.y: H.in, which it feeds, leads to no pass.\n");
}

TEST(LintReaders, AFedGroupInputThatNothingInsideReadsIsReported)
{
    Chain host;
    const int g = host.group("G", "in", "");
    host.renderer.setTarget(host.pass("P", "", "", g));
    host.link(host.a, "x", g, "in");
    EXPECT_EQ(linted(host), "unread-group-input: Nothing inside the group reads G.in.\n");
}

TEST(LintReaders, AGroupOutputThatNobodyReadsIsReportedWhereThePassIsReadOtherwise)
{
    Chain host;
    const int g = host.group("G", "", "g");
    const int p = host.pass("P", "", "p", g);
    const int q = host.pass("Q", "p", "", g);
    host.link(p, "p", q, "p");
    host.up("g", p, "p");
    host.renderer.setTarget(q);
    EXPECT_EQ(linted(host), "unread-output: Nothing reads G.g.\n");
}

TEST(LintReaders, TheOutputsOfTheTargetNeedNoReader)
{
    Host host;
    const int a = host.pass("A", "", "x");
    host.renderer.setTarget(a);
    EXPECT_EQ(linted(host), "");
}

TEST(LintReaders, AReaderThatIsDisabledStillReads)
{
    Chain host;
    host.renderer.setEnabled(host.b, false);
    EXPECT_EQ(linted(host), "");
}
