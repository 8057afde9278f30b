// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/UserCounts.h>

#include "Inspect/support/OddSnapshot.h"
#include "support/LightPass.h"

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Renderer.h>

#include <QtCore/QStringList>

#include <gtest/gtest.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

/// A renderer in which a pass in two groups is read at several levels.
class UserCountsTest : public testing::Test
{
protected:
    UserCountsTest()
    {
        Graph& graph = *renderer.getGraph();
        outer = renderer.addGroup(QStringLiteral("Outer"), 0, 1, Graph::kRootNodeRef);
        inner = renderer.addGroup(QStringLiteral("Inner"), 0, 1, outer);
        source = addPass("Source", inner, 0, 1);
        beside = addPass("Beside", inner, 1, 1);
        outside = addPass("Outside", Graph::kRootNodeRef, 1, 1);
        graph.addEdge(source, 0, beside, 0);
        graph.addUpEdge(0, source, 0);
        graph.addUpEdge(0, inner, 0);
        graph.addEdge(outer, 0, outside, 0);
        renderer.addOutput(QStringLiteral("Result"));
        graph.addUpEdge(0, outside, 0);
    }

    int addPass(const char* name, int parent, int numInputs, int numOutputs)
    {
        return renderer.addPass(QLatin1String(name), new LightPass(numInputs, numOutputs), parent);
    }

    /// The readers of an output; those that the renderer does not look at in brackets.
    QString readersOf(int node)
    {
        const Snapshot snapshot = Snapshot::of(renderer);
        const Paths paths(snapshot);
        QStringList names;
        for (const OutputReader& reader : UserCounts(snapshot).readers(node, 0)) {
            const QString path = paths.port(reader.port);
            names.append(reader.counted ? path : QLatin1Char('(') + path + QLatin1Char(')'));
        }
        return names.join(QLatin1Char(' '));
    }

    Renderer renderer;
    int outer = -1;
    int inner = -1;
    int source = -1;
    int beside = -1;
    int outside = -1;
};

} // namespace

TEST_F(UserCountsTest, FindsReadersThroughAllGroups)
{
    renderer.setTarget(beside);
    EXPECT_EQ(readersOf(source).toStdString(), "Outer/Inner/Beside.[0] (Outside.[0])");
}

TEST_F(UserCountsTest, ListsOnlyPassesThatRunAsReaders)
{
    EXPECT_EQ(readersOf(source).toStdString(), "(Outside.[0])") << "nothing needs Beside";
    renderer.setTarget(beside);
    renderer.setEnabled(beside, false);
    EXPECT_EQ(readersOf(source).toStdString(), "(Outside.[0])");
}

TEST_F(UserCountsTest, ListsAnOutputOfTheRendererAsAReader)
{
    EXPECT_EQ(readersOf(outside).toStdString(), "Result");
}

TEST_F(UserCountsTest, LooksIntoAGroupButNotIntoTheGroupsInIt)
{
    Graph& graph = *renderer.getGraph();
    const int group = renderer.addGroup(QStringLiteral("G"), 1, 1, Graph::kRootNodeRef);
    const int nested = renderer.addGroup(QStringLiteral("N"), 1, 0, group);
    const int first = addPass("First", group, 1, 1);
    const int second = addPass("Second", nested, 1, 0);
    const int maker = addPass("Maker", Graph::kRootNodeRef, 0, 1);
    graph.addEdge(maker, 0, group, 0);
    graph.addDownEdge(0, first, 0);
    graph.addDownEdge(0, nested, 0);
    graph.addDownEdge(0, second, 0);
    graph.addUpEdge(0, first, 0);
    renderer.addOutput(QStringLiteral("OfGroup"));
    graph.addUpEdge(1, group, 0);
    renderer.setTarget(second);
    EXPECT_EQ(readersOf(maker).toStdString(), "G/First.[0] (G/N/Second.[0])");
    EXPECT_EQ(readersOf(first).toStdString(), "OfGroup");
}

TEST_F(UserCountsTest, DoesNotLookIntoAGroupThatListsNoChildren)
{
    Graph& graph = *renderer.getGraph();
    const int group = renderer.addGroup(QStringLiteral("G"), 1, 0, Graph::kRootNodeRef);
    const int reader = addPass("Reader", group, 1, 0);
    const int maker = addPass("Maker", Graph::kRootNodeRef, 0, 1);
    graph.addEdge(maker, 0, group, 0);
    graph.addDownEdge(0, reader, 0);
    renderer.setTarget(reader);
    Snapshot snapshot = Snapshot::of(renderer);
    EXPECT_TRUE(UserCounts(snapshot).readers(maker, 0).value(0).counted);
    EXPECT_EQ(UserCounts(snapshot).count(maker, 0), 1);
    snapshot.nodes[group].children.clear();
    const UserCounts users(snapshot);
    ASSERT_EQ(users.readers(maker, 0).size(), 1);
    EXPECT_FALSE(users.readers(maker, 0).first().counted);
    EXPECT_EQ(users.count(maker, 0), 0);
}

TEST_F(UserCountsTest, HasNoReadersOfAPassThatDoesNotRun)
{
    EXPECT_EQ(readersOf(beside).toStdString(), "");
    const Snapshot snapshot = Snapshot::of(renderer);
    EXPECT_EQ(UserCounts(snapshot).count(beside, 0), 0);
}

TEST_F(UserCountsTest, LeadsFromAReaderBackToTheOutput)
{
    const Snapshot snapshot = Snapshot::of(renderer);
    const UserCounts users(snapshot);
    const QVector<PortRef> expected{
        {outside, 0, false}, {outer, 0, true}, {inner, 0, true}, {source, 0, true}};
    EXPECT_EQ(users.path({outside, 0, false}), expected);
    const QVector<PortRef> fromRenderer{{Graph::kRootNodeRef, 0, true}, {outside, 0, true}};
    EXPECT_EQ(users.path({Graph::kRootNodeRef, 0, true}), fromRenderer);
    const QVector<PortRef> unfed{{outside, 7, false}};
    EXPECT_EQ(users.path({outside, 7, false}), unfed);
}

TEST_F(UserCountsTest, AnswersForPortsThatDoNotExist)
{
    const Snapshot snapshot = Snapshot::of(renderer);
    const UserCounts users(snapshot);
    for (const int ref : {-2, -1, 0, 1, 5, 6, 100}) {
        for (const int index : {-1, 1, 100}) {
            EXPECT_EQ(users.count(ref, index), 0);
            EXPECT_TRUE(users.readers(ref, index).isEmpty());
        }
    }
}

TEST(UserCounts, AgreeWithWalksFromEveryReaderOnOddSnapshots)
{
    int numReaders = 0;
    for (unsigned seed = 0; seed < 8000; ++seed) {
        const Snapshot snapshot = oddWiredSnapshot(seed);
        const Schedule schedule = predictSchedule(snapshot);
        const UserCounts users(snapshot, schedule);
        const auto runs = [&](int node) { return schedule.positions.value(node, -1) >= 0; };
        for (int node = 1; node < snapshot.nodes.size(); ++node) {
            for (int i = 0; runs(node) && i < snapshot.nodes.at(node).inputs.size(); ++i) {
                PortRef end{node, i, false};
                if (!snapshot.walkToSourceNode(end.node, end.index) || !runs(end.node))
                    continue;
                end.isOutput = true;
                if (!snapshot.hasPort(end))
                    continue;
                ++numReaders;
                bool isListed = false;
                for (const OutputReader& reader : users.readers(end.node, end.index))
                    isListed |= reader.port == PortRef{node, i, false};
                ASSERT_TRUE(isListed) << seed;
                ASSERT_EQ(users.path({node, i, false}).last(), end) << seed;
            }
            for (int i = 0; i < snapshot.nodes.at(node).outputs.size(); ++i)
                ASSERT_EQ(users.count(node, i), schedule.users.at(node).value(i)) << seed;
        }
    }
    EXPECT_GT(numReaders, 250);
}
