// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Paths.h>

#include <gtest/gtest.h>

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Renderer.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

/// A renderer whose nodes are all groups.
struct Groups
{
    Renderer renderer;

    int add(const char* name, int parent = 0, int inputs = 0, int outputs = 0)
    {
        return renderer.addGroup(QString::fromUtf8(name), inputs, outputs, parent);
    }
    void nameInput(int node, int index, const char* name)
    {
        renderer.getGraph()->setInputName(node, index, QString::fromUtf8(name));
    }
    void nameOutput(int node, int index, const char* name)
    {
        renderer.getGraph()->setOutputName(node, index, QString::fromUtf8(name));
    }
};

std::string text(const QString& string)
{
    return string.toStdString();
}

std::string listed(const QVector<int>& refs)
{
    std::string all;
    for (const int ref : refs)
        all += std::to_string(ref) + " ";
    return all;
}

std::string listed(const QVector<PortRef>& ports)
{
    std::string all;
    for (const PortRef& port : ports)
        all += std::to_string(port.node) + (port.isOutput ? ".out" : ".in")
            + std::to_string(port.index) + " ";
    return all;
}

} // namespace

TEST(Paths, TheRootsPathIsEmpty)
{
    const Snapshot snapshot;
    const Paths paths(snapshot);
    EXPECT_EQ(text(paths.node(0)), "");
    EXPECT_EQ(listed(paths.findNodes(QString())), "0 ");
}

TEST(Paths, NodesAreNamedThroughTheirGroups)
{
    Groups groups;
    const int bloom = groups.add("Bloom");
    const int blur = groups.add("Blur", bloom);
    const Snapshot snapshot = Snapshot::of(groups.renderer);
    const Paths paths(snapshot);
    EXPECT_EQ(text(paths.node(blur)), "Bloom/Blur");
    EXPECT_EQ(listed(paths.findNodes(QStringLiteral("Bloom/Blur"))), std::to_string(blur) + " ");
    EXPECT_EQ(listed(paths.findNodes(QStringLiteral("Blur"))), "");
}

TEST(Paths, SiblingsOfOneNameAreNumbered)
{
    Groups groups;
    const int first = groups.add("Blur");
    groups.add("Other");
    const int second = groups.add("Blur");
    const Snapshot snapshot = Snapshot::of(groups.renderer);
    const Paths paths(snapshot);
    EXPECT_EQ(text(paths.node(first)), "Blur[0]");
    EXPECT_EQ(text(paths.node(second)), "Blur[1]");
    EXPECT_EQ(listed(paths.findNodes(QStringLiteral("Blur[1]"))), std::to_string(second) + " ");
    EXPECT_EQ(listed(paths.findNodes(QStringLiteral("Blur[2]"))), "");
    EXPECT_EQ(listed(paths.findNodes(QStringLiteral("Blur"))),
              std::to_string(first) + " " + std::to_string(second) + " ");
}

TEST(Paths, AUniqueNodeIsAlsoFoundByNumberZero)
{
    Groups groups;
    const int node = groups.add("Blur");
    const Snapshot snapshot = Snapshot::of(groups.renderer);
    EXPECT_EQ(listed(Paths(snapshot).findNodes(QStringLiteral("Blur[0]"))),
              std::to_string(node) + " ");
}

TEST(Paths, AnEmptyNameIsWrittenAsANumber)
{
    Groups groups;
    const int node = groups.add("", 0, 1, 0);
    const Snapshot snapshot = Snapshot::of(groups.renderer);
    const Paths paths(snapshot);
    EXPECT_EQ(text(paths.node(node)), "[0]");
    EXPECT_EQ(text(paths.input(node, 0)), "[0].[0]");
    EXPECT_EQ(listed(paths.findNodes(QStringLiteral("[0]"))), std::to_string(node) + " ");
    EXPECT_EQ(listed(paths.findPorts(QStringLiteral("[0].[0]"))), std::to_string(node) + ".in0 ");
}

TEST(Paths, SeparatorsInNamesAreEscaped)
{
    Groups groups;
    const int node = groups.add("a/b.c[0]>%\n", 0, 0, 1);
    groups.nameOutput(node, 0, "x.y");
    const Snapshot snapshot = Snapshot::of(groups.renderer);
    const Paths paths(snapshot);
    EXPECT_EQ(text(paths.node(node)), "a%2Fb%2Ec%5B0%5D%3E%25%0A");
    EXPECT_EQ(listed(paths.findNodes(paths.node(node))), std::to_string(node) + " ");
    EXPECT_EQ(listed(paths.findPorts(paths.output(node, 0))), std::to_string(node) + ".out0 ");
}

TEST(Paths, PortsOfTheRootStandAlone)
{
    Groups groups;
    groups.renderer.addParameter(QStringLiteral("Angle"), 1);
    groups.renderer.addOutput(QStringLiteral("Picture"));
    const Snapshot snapshot = Snapshot::of(groups.renderer);
    const Paths paths(snapshot);
    EXPECT_EQ(text(paths.input(0, 0)), "Angle");
    EXPECT_EQ(text(paths.output(0, 0)), "Picture");
    EXPECT_EQ(listed(paths.findPorts(QStringLiteral("Angle"))), "0.in0 ");
    EXPECT_EQ(listed(paths.findPorts(QStringLiteral("Picture"))), "0.out0 ");
    EXPECT_EQ(listed(paths.findPorts(QStringLiteral(".Picture"))), "");
}

TEST(Paths, AnInputAndAnOutputMayShareAPath)
{
    Groups groups;
    const int node = groups.add("ToneMap", 0, 1, 1);
    groups.nameInput(node, 0, "Color");
    groups.nameOutput(node, 0, "Color");
    const Snapshot snapshot = Snapshot::of(groups.renderer);
    EXPECT_EQ(listed(Paths(snapshot).findPorts(QStringLiteral("ToneMap.Color"))),
              std::to_string(node) + ".in0 " + std::to_string(node) + ".out0 ");
}

TEST(Paths, PortsOfOneNameAreNumberedAlsoWhereThereAreMany)
{
    for (const int count : {2, 40}) {
        Groups groups;
        const int node = groups.add("Mix", 0, count, 0);
        for (int i = 0; i < count; ++i)
            groups.nameInput(node, i, i % 2 == 0 ? "even" : "odd");
        groups.nameInput(node, 1, "one");
        const Snapshot snapshot = Snapshot::of(groups.renderer);
        const Paths paths(snapshot);
        EXPECT_EQ(text(paths.input(node, 1)), "Mix.one");
        EXPECT_EQ(text(paths.input(node, 0)), count == 2 ? "Mix.even" : "Mix.even[0]");
        for (int i = 0; i < count; ++i) {
            EXPECT_EQ(listed(paths.findPorts(paths.input(node, i))),
                      std::to_string(node) + ".in" + std::to_string(i) + " ");
        }
    }
}

TEST(Paths, RemovedNodesAreWrittenWithTheirRefAndNotFound)
{
    Groups groups;
    const int bloom = groups.add("Bloom");
    const int blur = groups.add("50%2", bloom);
    groups.renderer.getGraph()->removeNode(blur);
    const Snapshot snapshot = Snapshot::of(groups.renderer);
    const Paths paths(snapshot);
    EXPECT_EQ(text(paths.node(blur)), "Bloom/50%252[removed 2]");
    EXPECT_EQ(listed(paths.findNodes(paths.node(blur))), "");
    EXPECT_EQ(listed(paths.findNodes(QStringLiteral("Bloom/50%252"))), "");
}

TEST(Paths, ANodeThatItsParentDoesNotListIsMarkedUnlisted)
{
    Groups groups;
    groups.add("A");
    Snapshot snapshot = Snapshot::of(groups.renderer);
    snapshot.nodes[0].children.clear();
    EXPECT_EQ(text(Paths(snapshot).node(1)), "A[unlisted 1]");
}

TEST(Paths, ParentsThatFormACycleAreMarked)
{
    Groups groups;
    groups.add("A");
    groups.add("B");
    Snapshot snapshot = Snapshot::of(groups.renderer);
    snapshot.nodes[1].parent = 2;
    snapshot.nodes[2].parent = 1;
    EXPECT_EQ(text(Paths(snapshot).node(1)), "[cycle]/A[unlisted 1]");
}

TEST(Paths, MissingNodesAndPortsHaveNames)
{
    const Snapshot snapshot;
    const Paths paths(snapshot);
    EXPECT_EQ(text(paths.node(7)), "");
    EXPECT_EQ(text(paths.node(-1)), "");
    EXPECT_EQ(text(paths.input(0, 3)), "[no input 3]");
    EXPECT_EQ(text(paths.output(0, -1)), "[no output -1]");
}

TEST(Paths, MalformedPathsFindNothing)
{
    Groups groups;
    groups.add("A", 0, 1, 0);
    groups.nameInput(1, 0, "x");
    const Snapshot snapshot = Snapshot::of(groups.renderer);
    const Paths paths(snapshot);
    for (const char* path :
         {"/A", "A/", "A//A", "A[", "A[0", "A[-1]", "A[x]", "A[0]x", "%", "%4", "%zz", "A%", "[]"})
        EXPECT_EQ(listed(paths.findNodes(QString::fromUtf8(path))), "") << path;
    for (const char* path : {"", ".", "A.", "A.x.", ".x", "A..x", "A.x/x"})
        EXPECT_EQ(listed(paths.findPorts(QString::fromUtf8(path))), "") << path;
    EXPECT_EQ(listed(paths.findPorts(QStringLiteral("A.x"))), "1.in0 ");
    EXPECT_EQ(listed(paths.findNodes(QStringLiteral("%41"))), "1 ");
}
