// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Lint/LintedHost.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(LintHierarchy, ARemovedChildThatIsStillListedIsReported)
{
    Chain host;
    const int c = host.pass("C", "", "");
    host.graph.removeChildNode(c);
    EXPECT_EQ(linted(host),
              "removed-but-listed: C[removed 3] has been removed but is still a child of the "
              "root.\n");
    EXPECT_EQ(lint(host.snapshot()).first().node, c);
    host.graph.removeNode(c);
    EXPECT_EQ(linted(host), "");
}

TEST(LintHierarchy, APurgeLeavesParentsAndChildrenThatContradictEachOther)
{
    Chain host;
    EXPECT_EQ(linted(host), "");
    host.graph.purge();
    EXPECT_EQ(linted(host),
              "hierarchy-out-of-step: The root lists a child that has another parent, the root.\n"
              "hierarchy-out-of-step: B[unlisted 2] is not among the children of its parent, the "
              "root.\n");
}

TEST(LintHierarchy, EveryContradictionOfParentsAndChildrenIsReported)
{
    Host host;
    for (const char* name : {"A", "B", "C", "D", "E", "F"})
        host.group(name, "", "");
    Snapshot snapshot = host.snapshot();
    snapshot.nodes[0].children = {1, 1, 2, 9};
    snapshot.nodes[3].parent = 3;
    snapshot.nodes[4].parent = 77;
    snapshot.nodes[2].children = {1};
    snapshot.nodes[6].parent = 5;
    snapshot.nodes[5].removed = true;
    std::string texts;
    for (const Finding& finding : found(snapshot, "hierarchy-out-of-step"))
        texts += finding.text.toStdString() + "\n";
    EXPECT_EQ(texts,
              "The root lists a child twice, A.\n"
              "The root lists a child that does not exist, node 9.\n"
              "B lists a child that has another parent, A.\n"
              "[cycle]/C[unlisted 3] has parents that form a cycle.\n"
              "D[unlisted 4] has no parent: node 77 does not exist.\n"
              "E[removed 5]/F[unlisted 6] has a parent that has been removed, E[removed 5].\n");
}
