// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Lint/LintedHost.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(LintUserCounts, ReadersBeyondTheEdgesOfThePassGoUncounted)
{
    Grouped host;
    host.reader("R");
    EXPECT_EQ(linted(host), "");
    host.reader("S");
    EXPECT_EQ(linted(host),
              "uncounted-users: G/P.p has 2 users, but the renderer counts 1; not counted: "
              "S.in.\n");
    EXPECT_EQ(lint(host.snapshot()).first().port, (PortRef{host.p, 0, true}));
}

TEST(LintUserCounts, OfManyUncountedReadersThreeAreNamed)
{
    Grouped host;
    for (const char* name : {"R", "S", "T", "U", "V", "W"})
        host.reader(name);
    EXPECT_EQ(linted(host),
              "uncounted-users: G/P.p has 6 users, but the renderer counts 1; not counted: "
              "S.in, T.in, U.in, 2 more.\n");
}

TEST(LintUserCounts, AReaderTwoGroupsAwayGoesUncounted)
{
    // Out of two groups.
    Host outer;
    const int o = outer.group("O", "", "o");
    const int g = outer.group("G", "", "g", o);
    const int p = outer.pass("P", "", "p", g);
    const int r = outer.pass("R", "in", "out");
    outer.output("Picture");
    outer.up("g", p, "p");
    outer.up("o", g, "g");
    outer.link(o, "o", r, "in");
    outer.up("Picture", r, "out");
    EXPECT_EQ(linted(outer),
              "uncounted-users: O/G/P.p has 1 user, but the renderer counts 0; not counted: "
              "R.in.\n");

    // Into two groups.
    Host inner;
    const int a = inner.pass("A", "", "a");
    const int i = inner.group("I", "in", "");
    const int j = inner.group("J", "in", "", i);
    const int q = inner.pass("Q", "in", "", j);
    inner.link(a, "a", i, "in");
    inner.down("in", j, "in");
    inner.down("in", q, "in");
    inner.renderer.setTarget(q);
    EXPECT_EQ(linted(inner),
              "uncounted-users: A.a has 1 user, but the renderer counts 0; not counted: "
              "I/J/Q.in.\n");
}

TEST(LintUserCounts, AReaderInAnotherGroupGoesUncounted)
{
    Grouped host;
    const int h = host.group("H", "in", "");
    const int q = host.pass("Q", "in", "", h);
    host.link(host.g, "g", h, "in");
    host.down("in", q, "in");
    host.renderer.setTarget(q);
    EXPECT_EQ(linted(host),
              "uncounted-users: G/P.p has 1 user, but the renderer counts 0; not counted: "
              "H/Q.in.\n");
}

TEST(LintUserCounts, AnOutputOfTheRendererIsAUserToo)
{
    Grouped host;
    host.reader("R");
    const int index = host.output("Raw");
    host.graph.addUpEdge(index, host.g, 0);
    EXPECT_EQ(linted(host),
              "uncounted-users: G/P.p has 2 users, but the renderer counts 1; not counted: "
              "Raw.\n");
}

TEST(LintUserCounts, AGroupOutputWithFewerReadersThanThePassHasEdgesIsReported)
{
    Grouped host;
    host.reader("R");
    const int q = host.pass("Q", "in", "", host.g);
    EXPECT_EQ(host.link(host.p, "p", q, "in"), -1); // the up edge came first
    host.graph.removeEdge(host.inner);
    host.link(host.p, "p", q, "in");
    host.inner = host.up("g", host.p, "p");
    host.renderer.setTarget(q);
    EXPECT_EQ(linted(host),
              "fewer-readers: G.g has 1 reader, fewer than the 2 edges that leave G/P.p, which "
              "feeds it.\n");
    EXPECT_EQ(lint(host.snapshot()).first().port, (PortRef{host.g, 0, true}));
    EXPECT_EQ(lint(host.snapshot()).first().edge, host.inner);
    host.reader("S");
    EXPECT_EQ(linted(host), "");
}
