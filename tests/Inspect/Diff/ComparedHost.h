// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_COMPAREDHOST_H
#define ORV_TESTS_COMPAREDHOST_H

#include <Kestrin/Orv/Inspect/Diff.h>

#include "Inspect/support/Host.h"

#include <string>

/// What changes from the first to the second, one change a line.
inline std::string compared(const Kestrin::Orv::Inspect::Snapshot& before,
                            const Kestrin::Orv::Inspect::Snapshot& after)
{
    return Kestrin::Orv::Inspect::toText(Kestrin::Orv::Inspect::diff(before, after)).toStdString();
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

#endif
