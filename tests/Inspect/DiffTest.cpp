// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Diff.h>

#include "Host.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

std::string compared(const Snapshot& before, const Snapshot& after)
{
    return toText(diff(before, after)).toStdString();
}

/// A parameter that feeds A, which feeds B in the group G, which feeds C and so an output.
struct Chain : Host
{
    int angle = parameter("Angle", 1);
    int picture = output("Picture");
    int a = pass("A", "angle", "x");
    int g = group("G", "in", "out");
    int b = pass("B", "x", "y", g);
    int c = pass("C", "y extra", "z");

    Chain()
    {
        down("Angle", a, "angle");
        link(a, "x", g, "in");
        down("in", b, "x");
        up("out", b, "y");
        link(g, "out", c, "y");
        up("Picture", c, "z");
    }
};

} // namespace

TEST(Diff, ASnapshotDoesNotDifferFromItself)
{
    Chain host;
    EXPECT_EQ(compared(host.snapshot(), host.snapshot()), "");
}

TEST(DiffNodes, AnAddedPassIsReported)
{
    Chain host;
    const Snapshot before = host.snapshot();
    host.pass("D", "", "");
    EXPECT_EQ(compared(before, host.snapshot()), "node-added D: nothing -> pass\n");
    EXPECT_EQ(compared(host.snapshot(), before), "node-removed D: pass -> nothing\n");
}

TEST(DiffNodes, ARenamedGroupTakesItsChildrenAlong)
{
    Chain host;
    const Snapshot before = host.snapshot();
    host.graph.setNodeName(host.g, QStringLiteral("H"));
    EXPECT_EQ(compared(before, host.snapshot()), "node-renamed H: G -> H\n");
}
