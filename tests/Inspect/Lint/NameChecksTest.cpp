// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Lint/LintedHost.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(LintNames, SiblingsOfOneNameAreReported)
{
    Chain host;
    const int first = host.pass("C", "", "");
    const int second = host.pass("C", "", "");
    host.renderer.setEnabled(first, false);
    host.renderer.setEnabled(second, false);
    EXPECT_EQ(linted(host),
              "duplicate-name: C[1] has the name of an older sibling, C[0]; look-ups by name find "
              "only that one.\n");
    EXPECT_EQ(lint(host.snapshot()).first().node, second);
}

TEST(LintNames, EqualNamesInDifferentGroupsAreAccepted)
{
    Chain host;
    const int g = host.group("G", "", "");
    host.renderer.setEnabled(host.pass("A", "", "", g), false);
    EXPECT_EQ(linted(host), "");
}

TEST(LintNames, PortsOfOneNameAreReportedButNotUnnamedOnes)
{
    Chain host;
    host.renderer.setTarget(host.pass("C", "in in", "out out in"));
    EXPECT_EQ(
        linted(host),
        "duplicate-port: C.in[1] has the name of C.in[0]; look-ups by name find only that one.\n"
        "duplicate-port: C.out[1] has the name of C.out[0]; look-ups by name find only that "
        "one.\n");
    host.graph.setInputName(host.renderer.getTarget(), 0, QString());
    host.graph.setInputName(host.renderer.getTarget(), 1, QString());
    EXPECT_EQ(found(host.snapshot(), "duplicate-port").size(), 1);
}
