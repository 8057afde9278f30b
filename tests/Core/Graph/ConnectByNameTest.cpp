// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Graph.h>

#include "support/GraphLists.h"
#include "support/GraphSnapshot.h"
#include "support/MessageRecorder.h"

#include <gtest/gtest.h>

#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

#include <climits>
#include <initializer_list>

using Kestrin::Orv::Graph;

namespace {

const int kRoot = Graph::kRootNodeRef;

const char kSourceOutput[] = "[ !! ] Assertion 'isValidOutput(srcNode, findOutput(srcNode, "
                             "srcOutputName))' failed: Source output '%1' is not valid";
const char kDestInput[] = "[ !! ] Assertion 'isValidInput(dstNode, findInput(dstNode, "
                          "dstInputName))' failed: Dest input '%1' is not valid";
const char kChildNode[] =
    "[ !! ] Assertion 'isValidNode(childNode)' failed: Parent '%1' Child '%2'";
const char kChildInput[] = "[ !! ] Assertion 'isValidInput(childNode, findInput(childNode, "
                           "childInputName))' failed: Parent '%1' Child '%2'";
const char kParentInput[] = "[ !! ] Assertion 'isValidInput(parentNode(childNode), "
                            "findInput(parentNode(childNode), parentInputName))' failed: "
                            "Parent '%1' Child '%2'";

QString text(const char* format, const QString& first)
{
    return QString::fromLatin1(format).replace(QLatin1String("%1"), first);
}
QString text(const char* format, const QString& first, const QString& second)
{
    return text(format, first).replace(QLatin1String("%2"), second);
}

class ConnectByName : public testing::Test
{
protected:
    int addNode(const char* name, std::initializer_list<const char*> inputs,
                std::initializer_list<const char*> outputs, int parent = kRoot)
    {
        const int node = graph.addNode(QString::fromUtf8(name), 0, 0, parent);
        for (const char* input : inputs)
            graph.addInput(node, QString::fromUtf8(input), -1);
        for (const char* output : outputs)
            graph.addOutput(node, QString::fromUtf8(output), -1);
        return node;
    }

    /// The messages so far without their prefixes, after checking all else about them.
    QStringList assertions() const
    {
        static const QRegularExpression prefix(
            QStringLiteral("^\\[Graph\\.cpp:[1-9][0-9]*\\] \\[ !! \\] "));
        QStringList bodies;
        for (const MessageRecorder::Message& message : recorder.messages()) {
            EXPECT_EQ(message.level, QtCriticalMsg);
            EXPECT_TRUE(message.hasPlainContext());
            EXPECT_TRUE(prefix.match(message.text).hasMatch()) << message.text.toStdString();
            bodies << message.body();
        }
        return bodies;
    }

    /// Runs the action, which must change nothing and answer -1.
    template<typename Action>
    void expectRefusal(Action action)
    {
        const std::string before = graphSnapshot(graph);
        EXPECT_EQ(action(), -1);
        EXPECT_EQ(graphSnapshot(graph), before);
    }
    template<typename Action>
    void expectNoChange(Action action)
    {
        const std::string before = graphSnapshot(graph);
        action();
        EXPECT_EQ(graphSnapshot(graph), before);
        EXPECT_EQ(assertions(), QStringList());
    }

    /// "source.output" that feeds an input, or "-".
    std::string feeds(int node, int input) const
    {
        const int edge = graph.inputSource(node, input);
        return edge == -1 ? "-"
                          : graph.nodeName(graph.edgeSourceNode(edge)).toStdString() + "."
                + std::to_string(graph.edgeSourceIndex(edge));
    }
    /// "child.output" that feeds an output, or "-".
    std::string feedsOutput(int node, int output) const
    {
        const int edge = graph.outputSource(node, output);
        return edge == -1 ? "-"
                          : graph.nodeName(graph.edgeSourceNode(edge)).toStdString() + "."
                + std::to_string(graph.edgeSourceIndex(edge));
    }

    Graph graph;
    MessageRecorder recorder;
};

using AddEdgeByName = ConnectByName;
using AddUpEdgeByName = ConnectByName;
using AddDownEdgeByName = ConnectByName;
using ConnectGroups = ConnectByName;
using ConnectUpByName = ConnectByName;
using ConnectDownByName = ConnectByName;

const int kOutside[] = {-1, INT_MIN, INT_MAX, 1000};

} // namespace

// addEdgeByName

TEST_F(AddEdgeByName, ConnectsThePortsOfTheseNamesAndAnswersTheEdge)
{
    const int a = addNode("a", {}, {"depth", "color"});
    const int b = addNode("b", {"normal", "light", "color"}, {});
    EXPECT_EQ(graph.addEdgeByName(a, QStringLiteral("color"), b, QStringLiteral("light")), 0);
    EXPECT_EQ(graph.addEdgeByName(a, QStringLiteral("depth"), b, QStringLiteral("color")), 1);
    EXPECT_EQ(edgeEnds(graph, 0), (Refs{a, 1, b, 1}));
    EXPECT_EQ(edgeEnds(graph, 1), (Refs{a, 0, b, 2}));
    EXPECT_TRUE(graph.isRegularEdge(0));
    EXPECT_EQ(assertions(), QStringList());
}

TEST_F(AddEdgeByName, TakesTheFirstPortOfAName)
{
    const int a = addNode("a", {}, {"x", "p", "p"});
    const int b = addNode("b", {"x", "q", "q"}, {});
    const int edge = graph.addEdgeByName(a, QStringLiteral("p"), b, QStringLiteral("q"));
    EXPECT_EQ(edgeEnds(graph, edge), (Refs{a, 1, b, 1}));
}

TEST_F(AddEdgeByName, TriesNoSecondPortOfAName)
{
    const int a = addNode("a", {}, {"p"});
    const int b = addNode("b", {"q", "q"}, {});
    graph.addEdge(a, 0, b, 0);
    expectRefusal(
        [&] { return graph.addEdgeByName(a, QStringLiteral("p"), b, QStringLiteral("q")); });
}

TEST_F(AddEdgeByName, FindsUnnamedPorts)
{
    const int a = addNode("a", {}, {"x", ""});
    const int b = addNode("b", {""}, {});
    const int edge = graph.addEdgeByName(a, QString(), b, QStringLiteral(""));
    EXPECT_EQ(edgeEnds(graph, edge), (Refs{a, 1, b, 0}));
}

TEST_F(AddEdgeByName, ReportsAnUnknownOutput)
{
    const int a = addNode("a", {}, {"color"});
    const int b = addNode("b", {"color"}, {});
    expectRefusal([&] {
        return graph.addEdgeByName(a, QStringLiteral("Color"), b, QStringLiteral("color"));
    });
    EXPECT_EQ(assertions(), QStringList{text(kSourceOutput, QStringLiteral("Color"))});
}

TEST_F(AddEdgeByName, ReportsAnUnknownInput)
{
    const int a = addNode("a", {"in"}, {"color"});
    const int b = addNode("b", {"color"}, {"out"});
    expectRefusal(
        [&] { return graph.addEdgeByName(a, QStringLiteral("color"), b, QStringLiteral("out")); });
    EXPECT_EQ(assertions(), QStringList{text(kDestInput, QStringLiteral("out"))});
}

TEST_F(AddEdgeByName, ReportsTheOutputBeforeTheInput)
{
    const int a = addNode("a", {}, {"color"});
    const int b = addNode("b", {"color"}, {});
    expectRefusal(
        [&] { return graph.addEdgeByName(a, QStringLiteral("o"), b, QStringLiteral("i")); });
    EXPECT_EQ(assertions(),
              (QStringList{text(kSourceOutput, QStringLiteral("o")),
                           text(kDestInput, QStringLiteral("i"))}));
}

TEST_F(AddEdgeByName, ReportsPortsOfARemovedNodeAsInvalid)
{
    const int a = addNode("a", {}, {"p"});
    const int b = addNode("b", {"p"}, {});
    graph.removeNode(a);
    expectRefusal(
        [&] { return graph.addEdgeByName(a, QStringLiteral("p"), b, QStringLiteral("p")); });
    EXPECT_EQ(assertions(), QStringList{text(kSourceOutput, QStringLiteral("p"))});
}

TEST_F(AddEdgeByName, ReportsPortsOfNodesThatDoNotExist)
{
    addNode("a", {"p"}, {"p"});
    QStringList expected;
    for (const int node : kOutside) {
        expectRefusal([&] {
            return graph.addEdgeByName(node, QStringLiteral("p"), node, QStringLiteral("p"));
        });
        expected << text(kSourceOutput, QStringLiteral("p"))
                 << text(kDestInput, QStringLiteral("p"));
    }
    EXPECT_EQ(assertions(), expected);
}

TEST_F(AddEdgeByName, SaysNothingWhenTheEdgeIsRefused)
{
    const int a = addNode("a", {"in"}, {"out"});
    const int b = addNode("b", {"in"}, {"out"});
    graph.addEdge(a, 0, b, 0);
    expectRefusal(
        [&] { return graph.addEdgeByName(b, QStringLiteral("out"), a, QStringLiteral("in")); });
    expectRefusal(
        [&] { return graph.addEdgeByName(a, QStringLiteral("out"), b, QStringLiteral("in")); });
    EXPECT_EQ(assertions(), QStringList());
}

TEST_F(AddEdgeByName, NamesAreNeverFormats)
{
    const int a = addNode("a", {}, {"p"});
    const QString hostile = QStringLiteral("100%s %n %1 \\% ' %d");
    expectRefusal([&] { return graph.addEdgeByName(a, hostile, a, hostile); });
    const QStringList found = assertions();
    ASSERT_EQ(found.size(), 2);
    EXPECT_TRUE(found[0].endsWith(
        QStringLiteral("failed: Source output '100%s %n %1 \\% ' %d' is not valid")));
    EXPECT_TRUE(found[1].endsWith(
        QStringLiteral("failed: Dest input '100%s %n %1 \\% ' %d' is not valid")));
}

TEST_F(AddEdgeByName, ReportsANameUpToItsFirstNul)
{
    const int a = addNode("a", {"in"}, {"out"});
    const int b = addNode("b", {"in"}, {"out"});
    const QString name = QStringLiteral("out") + QChar(0) + QStringLiteral("put");
    expectRefusal([&] { return graph.addEdgeByName(a, name, b, QStringLiteral("in")); });
    EXPECT_EQ(assertions(), QStringList{text(kSourceOutput, QStringLiteral("out"))});
}

// addDownEdgeByName

TEST_F(AddDownEdgeByName, ConnectsThePortsOfTheseNamesAndAnswersTheEdge)
{
    const int g = addNode("g", {"x", "outer", "outer"}, {});
    const int c = addNode("c", {"x", "y", "inner", "inner"}, {}, g);
    EXPECT_EQ(graph.addDownEdgeByName(QStringLiteral("outer"), c, QStringLiteral("inner")), 0);
    EXPECT_EQ(edgeEnds(graph, 0), (Refs{g, 1, c, 2}));
    EXPECT_TRUE(graph.isDownEdge(0));
    EXPECT_EQ(assertions(), QStringList());
}

TEST_F(AddDownEdgeByName, ReportsAnUnknownChildInput)
{
    const int g = addNode("g", {"outer"}, {});
    const int c = addNode("c", {"inner"}, {}, g);
    expectRefusal([&] {
        return graph.addDownEdgeByName(QStringLiteral("outer"), c, QStringLiteral("outer"));
    });
    EXPECT_EQ(assertions(),
              QStringList{text(kChildInput, QStringLiteral("outer"), QStringLiteral("outer"))});
}

TEST_F(AddDownEdgeByName, ReportsAnUnknownParentInput)
{
    const int g = addNode("g", {"outer"}, {});
    const int c = addNode("c", {"inner"}, {}, g);
    expectRefusal([&] {
        return graph.addDownEdgeByName(QStringLiteral("other"), c, QStringLiteral("inner"));
    });
    EXPECT_EQ(assertions(),
              QStringList{text(kParentInput, QStringLiteral("other"), QStringLiteral("inner"))});
}

TEST_F(AddDownEdgeByName, ReportsTheChildBeforeTheParent)
{
    const int g = addNode("g", {"outer"}, {});
    const int c = addNode("c", {"inner"}, {}, g);
    expectRefusal(
        [&] { return graph.addDownEdgeByName(QStringLiteral("p"), c, QStringLiteral("q")); });
    EXPECT_EQ(assertions(),
              (QStringList{text(kChildInput, QStringLiteral("p"), QStringLiteral("q")),
                           text(kParentInput, QStringLiteral("p"), QStringLiteral("q"))}));
}

TEST_F(AddDownEdgeByName, ReportsAnInvalidChildAndGoesOn)
{
    QStringList expected;
    for (const int node : kOutside) {
        expectRefusal([&] {
            return graph.addDownEdgeByName(QStringLiteral("p"), node, QStringLiteral("q"));
        });
        expected << text(kChildNode, QStringLiteral("p"), QStringLiteral("q"))
                 << text(kChildInput, QStringLiteral("p"), QStringLiteral("q"))
                 << text(kParentInput, QStringLiteral("p"), QStringLiteral("q"));
    }
    EXPECT_EQ(assertions(), expected);
}

TEST_F(AddDownEdgeByName, FindsTheParentOfARemovedChild)
{
    const int g = addNode("g", {"outer"}, {});
    const int c = addNode("c", {"inner"}, {}, g);
    graph.removeNode(c);
    expectRefusal([&] {
        return graph.addDownEdgeByName(QStringLiteral("outer"), c, QStringLiteral("inner"));
    });
    EXPECT_EQ(assertions(),
              (QStringList{text(kChildNode, QStringLiteral("outer"), QStringLiteral("inner")),
                           text(kChildInput, QStringLiteral("outer"), QStringLiteral("inner"))}));
}

TEST_F(AddDownEdgeByName, ReportsThatTheRootHasNoParent)
{
    graph.addInput(kRoot, QStringLiteral("in"), -1);
    expectRefusal(
        [&] { return graph.addDownEdgeByName(QStringLiteral("in"), kRoot, QStringLiteral("in")); });
    EXPECT_EQ(assertions(),
              QStringList{text(kParentInput, QStringLiteral("in"), QStringLiteral("in"))});
}

TEST_F(AddDownEdgeByName, SaysNothingWhenTheEdgeIsRefused)
{
    const int g = addNode("g", {"outer"}, {});
    const int c = addNode("c", {"inner"}, {}, g);
    graph.addDownEdge(0, c, 0);
    expectRefusal([&] {
        return graph.addDownEdgeByName(QStringLiteral("outer"), c, QStringLiteral("inner"));
    });
    EXPECT_EQ(assertions(), QStringList());
}

TEST_F(AddDownEdgeByName, NamesAreNeverFormats)
{
    expectRefusal(
        [&] { return graph.addDownEdgeByName(QStringLiteral("%s%s"), 9, QStringLiteral("%2%n")); });
    const QStringList found = assertions();
    ASSERT_EQ(found.size(), 3);
    for (const QString& assertion : found)
        EXPECT_TRUE(assertion.endsWith(QStringLiteral("' failed: Parent '%s%s' Child '%2%n'")))
            << assertion.toStdString();
}

// addUpEdgeByName

TEST_F(AddUpEdgeByName, ConnectsThePortsOfTheseNamesAndAnswersTheEdge)
{
    const int g = addNode("g", {}, {"x", "outer", "outer"});
    const int c = addNode("c", {}, {"x", "y", "inner", "inner"}, g);
    EXPECT_EQ(graph.addUpEdgeByName(QStringLiteral("outer"), c, QStringLiteral("inner")), 0);
    EXPECT_EQ(edgeEnds(graph, 0), (Refs{c, 2, g, 1}));
    EXPECT_TRUE(graph.isUpEdge(0));
    EXPECT_EQ(assertions(), QStringList());
}

TEST_F(AddUpEdgeByName, SaysNothingOfUnknownNames)
{
    const int g = addNode("g", {}, {"outer"});
    const int c = addNode("c", {}, {"inner"}, g);
    expectRefusal(
        [&] { return graph.addUpEdgeByName(QStringLiteral("p"), c, QStringLiteral("inner")); });
    expectRefusal(
        [&] { return graph.addUpEdgeByName(QStringLiteral("outer"), c, QStringLiteral("q")); });
    expectRefusal(
        [&] { return graph.addUpEdgeByName(QStringLiteral("p"), c, QStringLiteral("q")); });
    EXPECT_EQ(assertions(), QStringList());
}

TEST_F(AddUpEdgeByName, SaysNothingOfNodesThatDoNotExist)
{
    const int g = addNode("g", {}, {"p"});
    const int c = addNode("c", {}, {"p"}, g);
    graph.removeNode(c);
    for (const int node : {-1, INT_MIN, INT_MAX, graph.numNodesGlobal(), c, kRoot})
        expectRefusal(
            [&] { return graph.addUpEdgeByName(QStringLiteral("p"), node, QStringLiteral("p")); });
    EXPECT_EQ(assertions(), QStringList());
}

TEST_F(AddUpEdgeByName, RefusesAParentOutputThatIsFed)
{
    const int g = addNode("g", {}, {"p"});
    const int c = addNode("c", {}, {"p"}, g);
    EXPECT_EQ(graph.addUpEdgeByName(QStringLiteral("p"), c, QStringLiteral("p")), 0);
    expectRefusal(
        [&] { return graph.addUpEdgeByName(QStringLiteral("p"), c, QStringLiteral("p")); });
}

// connectByName

TEST_F(ConnectByName, ConnectsEveryPairOfOneNameInTheOrderOfTheInputs)
{
    const int a = addNode("a", {}, {"color", "depth", "normal"});
    const int b = addNode("b", {"normal", "other", "color"}, {});
    graph.connectByName(a, b);
    ASSERT_EQ(graph.numEdgesGlobal(), 2);
    EXPECT_EQ(edgeEnds(graph, 0), (Refs{a, 2, b, 0}));
    EXPECT_EQ(edgeEnds(graph, 1), (Refs{a, 0, b, 2}));
    EXPECT_EQ(graph.inputSource(b, 1), -1);
    EXPECT_EQ(assertions(), QStringList());
}

TEST_F(ConnectByName, OneOutputFeedsTwoInputsOfItsName)
{
    const int a = addNode("a", {}, {"color"});
    const int b = addNode("b", {"color", "color"}, {});
    graph.connectByName(a, b);
    EXPECT_EQ(feeds(b, 0), "a.0");
    EXPECT_EQ(feeds(b, 1), "a.0");
    EXPECT_EQ(outputDestinations(graph, a, 0), (Refs{0, 1}));
}

TEST_F(ConnectByName, TheFirstOfTwoOutputsOfANameFeedsAll)
{
    const int a = addNode("a", {}, {"x", "color", "color"});
    const int b = addNode("b", {"color", "color"}, {});
    graph.connectByName(a, b);
    EXPECT_EQ(feeds(b, 0), "a.1");
    EXPECT_EQ(feeds(b, 1), "a.1");
}

TEST_F(ConnectByName, ARefusedInputStaysUnfedAndTheOthersAreTried)
{
    const int a = addNode("a", {"loop"}, {"p", "p", "q"});
    const int b = addNode("b", {"p", "q"}, {"loop"});
    graph.addEdge(b, 0, a, 0);
    graph.connectByName(a, b);
    EXPECT_EQ(validEdges(graph), Refs{0});
    EXPECT_EQ(assertions(), QStringList());
}

TEST_F(ConnectByName, UnnamedPortsMatchEachOther)
{
    const int a = graph.addNode(QStringLiteral("a"), 0, 1, kRoot);
    const int b = graph.addNode(QStringLiteral("b"), 2, 0, kRoot);
    graph.setInputName(b, 0, QStringLiteral("named"));
    graph.setInputName(b, 1, QStringLiteral(""));
    graph.connectByName(a, b);
    EXPECT_EQ(feeds(b, 0), "-");
    EXPECT_EQ(feeds(b, 1), "a.0");
}

TEST_F(ConnectByName, NamesAreComparedUnitByUnit)
{
    const int a = addNode("a", {}, {"Color", " light", "nor\u0301mal", "shadow"});
    const int b = addNode("b", {"color", "light", "n\u00f3rmal", "Shadow", "shado"}, {});
    expectNoChange([&] { graph.connectByName(a, b); });
}

TEST_F(ConnectByName, LeavesFedInputsAlone)
{
    const int g = addNode("g", {"outer"}, {});
    const int a = addNode("a", {}, {"p", "q", "r"}, g);
    const int b = addNode("b", {"p", "q", "r"}, {}, g);
    const int other = addNode("other", {}, {"o"}, g);
    graph.addEdge(other, 0, b, 0);
    graph.addDownEdge(0, b, 1);
    graph.connectByName(a, b);
    EXPECT_EQ(feeds(b, 0), "other.0");
    EXPECT_EQ(feeds(b, 1), "g.0");
    EXPECT_EQ(feeds(b, 2), "a.2");
}

TEST_F(ConnectByName, PassesOverAnOutputThatFeedsItsParent)
{
    graph.addOutput(kRoot, QStringLiteral("out"), -1);
    const int a = addNode("a", {}, {"p", "p", "q"});
    const int b = addNode("b", {"p", "q"}, {});
    graph.addUpEdge(0, a, 0);
    graph.connectByName(a, b);
    EXPECT_EQ(feeds(b, 0), "a.1");
    EXPECT_EQ(feeds(b, 1), "a.2");
}

TEST_F(ConnectByName, NeverChoosesTheOnlyOutputWhenItFeedsItsParent)
{
    graph.addOutput(kRoot, QStringLiteral("out"), -1);
    const int a = addNode("a", {}, {"p"});
    const int b = addNode("b", {"p"}, {});
    graph.addUpEdge(0, a, 0);
    expectNoChange([&] { graph.connectByName(a, b); });
    expectNoChange([&] { graph.connectGroups(a, -1, b, -1); });
}

TEST_F(ConnectByName, LooksOnlyAtTheOldestEdgeOfAnOutput)
{
    graph.addOutput(kRoot, QStringLiteral("out"), -1);
    const int a = addNode("a", {}, {"p", "p"});
    const int b = addNode("b", {"p"}, {});
    const int c = addNode("c", {"other"}, {});
    graph.addEdge(a, 0, c, 0);
    graph.addUpEdge(0, a, 0);
    graph.connectByName(a, b);
    EXPECT_EQ(feeds(b, 0), "a.0");
}

TEST_F(ConnectByName, IsIndifferentToGroups)
{
    const int a = addNode("a", {}, {});
    const int b = addNode("b", {}, {});
    graph.addOutput(a, QStringLiteral("p"), 3);
    graph.addInput(b, QStringLiteral("p"), 5);
    graph.connectByName(a, b);
    EXPECT_EQ(feeds(b, 0), "a.0");
}

TEST_F(ConnectByName, RepeatedAddsNothing)
{
    const int a = addNode("a", {}, {"p", "q"});
    const int b = addNode("b", {"p", "p", "q"}, {});
    graph.connectByName(a, b);
    ASSERT_EQ(graph.numEdgesGlobal(), 3);
    expectNoChange([&] { graph.connectByName(a, b); });
    expectNoChange([&] { graph.connectGroups(a, -1, b, -1); });
}

TEST_F(ConnectByName, ConnectsNoNodeToItself)
{
    const int a = addNode("a", {"p"}, {"p"});
    expectNoChange([&] { graph.connectByName(a, a); });
}

TEST_F(ConnectByName, WithNodesThatDoNotExistDoesNothing)
{
    const int a = addNode("a", {"p"}, {"p"});
    const int b = addNode("b", {"p"}, {"p"});
    const int c = addNode("c", {"p"}, {"p"}, b);
    graph.removeNode(b);
    for (const int node : {-1, INT_MIN, INT_MAX, graph.numNodesGlobal(), b, c}) {
        expectNoChange([&] { graph.connectByName(a, node); });
        expectNoChange([&] { graph.connectByName(node, a); });
        expectNoChange([&] { graph.connectGroups(a, -1, node, -1); });
        expectNoChange([&] { graph.connectGroups(node, -1, a, -1); });
        expectNoChange([&] { graph.connectNamedGroups(a, QString(), node, QString()); });
        expectNoChange([&] { graph.connectNamedGroups(node, QString(), a, QString()); });
        expectNoChange([&] { graph.connectUpByName(node); });
        expectNoChange([&] { graph.connectDownByName(node); });
    }
}

// connectGroups and connectNamedGroups

TEST_F(ConnectGroups, ConnectsOnlyPortsOfTheTwoGroups)
{
    const int a = addNode("a", {}, {"p", "q"});
    graph.addOutput(a, QStringLiteral("p"), 1);
    graph.addOutput(a, QStringLiteral("q"), 2);
    graph.addOutput(a, QStringLiteral("r"), 1);
    const int b = addNode("b", {"p", "r"}, {});
    graph.addInput(b, QStringLiteral("p"), 4);
    graph.addInput(b, QStringLiteral("q"), 4);
    graph.addInput(b, QStringLiteral("r"), 4);
    graph.addInput(b, QStringLiteral("p"), 1);
    graph.connectGroups(a, 1, b, 4);
    ASSERT_EQ(graph.numEdgesGlobal(), 2);
    EXPECT_EQ(edgeEnds(graph, 0), (Refs{a, 2, b, 2}));
    EXPECT_EQ(edgeEnds(graph, 1), (Refs{a, 4, b, 4}));
}

TEST_F(ConnectGroups, MinusOneStandsForTheUngroupedPorts)
{
    const int a = addNode("a", {}, {});
    graph.addOutput(a, QStringLiteral("p"), 0);
    graph.addOutput(a, QStringLiteral("p"), -1);
    const int b = addNode("b", {}, {});
    graph.addInput(b, QStringLiteral("p"), 0);
    graph.addInput(b, QStringLiteral("p"), -1);
    graph.connectGroups(a, -1, b, -1);
    EXPECT_EQ(feeds(b, 0), "-");
    EXPECT_EQ(feeds(b, 1), "a.1");
}

TEST_F(ConnectGroups, ComparesTheGroupsAsPlainNumbers)
{
    const int a = addNode("a", {}, {});
    const int b = addNode("b", {}, {});
    graph.addOutput(a, QStringLiteral("p"), INT_MIN);
    graph.addInput(b, QStringLiteral("p"), INT_MAX);
    graph.connectGroups(a, INT_MIN, b, INT_MAX);
    EXPECT_EQ(feeds(b, 0), "a.0");
}

TEST_F(ConnectGroups, LeavesFedInputsAlone)
{
    const int a = addNode("a", {}, {"p", "q"});
    const int b = addNode("b", {"p", "q"}, {});
    const int other = addNode("other", {}, {"o"});
    graph.addEdge(other, 0, b, 0);
    graph.connectGroups(a, -1, b, -1);
    EXPECT_EQ(feeds(b, 0), "other.0");
    EXPECT_EQ(feeds(b, 1), "a.1");
}

TEST_F(ConnectGroups, PassesOverAnOutputThatFeedsItsParent)
{
    graph.addOutput(kRoot, QStringLiteral("out"), -1);
    const int a = addNode("a", {}, {"p", "p"});
    const int b = addNode("b", {"p"}, {});
    graph.addUpEdge(0, a, 0);
    graph.connectGroups(a, -1, b, -1);
    EXPECT_EQ(feeds(b, 0), "a.1");
}

TEST_F(ConnectGroups, TheFirstOutputOfTheNameInTheGroupFeedsAll)
{
    const int a = addNode("a", {}, {"p"});
    graph.addOutput(a, QStringLiteral("p"), 6);
    graph.addOutput(a, QStringLiteral("p"), 6);
    const int b = addNode("b", {"p", "p"}, {});
    graph.connectGroups(a, 6, b, -1);
    EXPECT_EQ(feeds(b, 0), "a.1");
    EXPECT_EQ(feeds(b, 1), "a.1");
}

TEST_F(ConnectGroups, OfTheseNamesFeedTheNamedInputsFromTheUngroupedOutputs)
{
    const int a = addNode("a", {}, {});
    const int outputs = graph.addOutputGroup(a, QStringLiteral("gbuffer"));
    graph.addOutput(a, QStringLiteral("p"), outputs);
    graph.addOutput(a, QStringLiteral("p"), -1);
    const int b = addNode("b", {"p"}, {});
    graph.addInputGroup(b, QStringLiteral("other"));
    const int inputs = graph.addInputGroup(b, QStringLiteral("gbuffer"));
    graph.addInput(b, QStringLiteral("p"), inputs);
    graph.addInput(b, QStringLiteral("p"), 0);
    graph.connectNamedGroups(a, QStringLiteral("gbuffer"), b, QStringLiteral("gbuffer"));
    EXPECT_EQ(feeds(b, 0), "-");
    EXPECT_EQ(feeds(b, 1), "a.1");
    EXPECT_EQ(feeds(b, 2), "-");
}

TEST_F(ConnectGroups, OfAnUnknownInputGroupNameFeedTheUngroupedInputs)
{
    const int a = addNode("a", {}, {"p"});
    const int b = addNode("b", {}, {});
    graph.addInputGroup(b, QStringLiteral("known"));
    graph.addInput(b, QStringLiteral("p"), 0);
    graph.addInput(b, QStringLiteral("p"), -1);
    graph.connectNamedGroups(a, QStringLiteral("any"), b, QStringLiteral("unknown"));
    EXPECT_EQ(feeds(b, 0), "-");
    EXPECT_EQ(feeds(b, 1), "a.0");
    EXPECT_EQ(assertions(), QStringList());
}

TEST_F(ConnectGroups, OfANameThatAnOutputGroupBroughtAreFound)
{
    const int a = addNode("a", {}, {"p"});
    const int b = addNode("b", {"p"}, {});
    const int group = graph.addOutputGroup(b, QStringLiteral("group"));
    graph.addInput(b, QStringLiteral("p"), group);
    graph.connectNamedGroups(a, QString(), b, QStringLiteral("group"));
    EXPECT_EQ(feeds(b, 0), "-");
    EXPECT_EQ(feeds(b, 1), "a.0");
}

TEST_F(ConnectGroups, OfARepeatedInputGroupNameTakeTheFirst)
{
    const int a = addNode("a", {}, {"p"});
    const int b = addNode("b", {}, {});
    const int first = graph.addInputGroup(b, QStringLiteral("group"));
    const int second = graph.addInputGroup(b, QStringLiteral("group"));
    graph.addInput(b, QStringLiteral("p"), second);
    graph.addInput(b, QStringLiteral("p"), first);
    graph.connectNamedGroups(a, QString(), b, QStringLiteral("group"));
    EXPECT_EQ(feeds(b, 0), "-");
    EXPECT_EQ(feeds(b, 1), "a.0");
}

// connectUpByName

TEST_F(ConnectUpByName, FeedsTheParentsOutputsInTheOrderOfTheChilds)
{
    const int g = addNode("g", {}, {"p", "q", "r"});
    const int c = addNode("c", {}, {"r", "x", "p"}, g);
    graph.connectUpByName(c);
    ASSERT_EQ(graph.numEdgesGlobal(), 2);
    EXPECT_EQ(edgeEnds(graph, 0), (Refs{c, 0, g, 2}));
    EXPECT_EQ(edgeEnds(graph, 1), (Refs{c, 2, g, 0}));
    EXPECT_TRUE(graph.isUpEdge(0));
    EXPECT_EQ(assertions(), QStringList());
}

TEST_F(ConnectUpByName, LeavesOutWhatIsFedFromInsideTheChild)
{
    const int g = addNode("g", {}, {"p", "q"});
    const int c = addNode("c", {}, {"p", "q"}, g);
    const int inner = addNode("inner", {}, {"i"}, c);
    graph.addUpEdge(0, inner, 0);
    graph.connectUpByName(c);
    EXPECT_EQ(feedsOutput(g, 0), "-");
    EXPECT_EQ(feedsOutput(g, 1), "c.1");
}

TEST_F(ConnectUpByName, TriesNoSecondOutputWhenTheFirstOfTheNameIsFed)
{
    const int g = addNode("g", {}, {"p", "p"});
    const int other = addNode("other", {}, {"o"}, g);
    const int c = addNode("c", {}, {"p"}, g);
    graph.addUpEdge(0, other, 0);
    expectNoChange([&] { graph.connectUpByName(c); });
}

TEST_F(ConnectUpByName, TheFirstOfTwoChildOutputsOfANameWins)
{
    const int g = addNode("g", {}, {"p"});
    const int c = addNode("c", {}, {"p", "p"}, g);
    graph.connectUpByName(c);
    EXPECT_EQ(feedsOutput(g, 0), "c.0");
    EXPECT_EQ(graph.numEdgesGlobal(), 1);
}

TEST_F(ConnectUpByName, PassesOverAParentOutputThatFeedsSiblings)
{
    const int g = addNode("g", {}, {"p", "p"});
    const int c = addNode("c", {}, {"p"}, g);
    const int reader = addNode("reader", {"in"}, {});
    graph.addEdge(g, 0, reader, 0);
    graph.connectUpByName(c);
    EXPECT_EQ(feedsOutput(g, 0), "-");
    EXPECT_EQ(feedsOutput(g, 1), "c.0");
}

TEST_F(ConnectUpByName, TakesAParentOutputWhoseOldestEdgeGoesUp)
{
    graph.addOutput(kRoot, QStringLiteral("out"), -1);
    const int g = addNode("g", {}, {"p", "p"});
    const int c = addNode("c", {}, {"p"}, g);
    graph.addUpEdge(0, g, 0);
    graph.connectUpByName(c);
    EXPECT_EQ(feedsOutput(g, 0), "c.0");
}

TEST_F(ConnectUpByName, LooksOnlyAtTheOldestEdgeOfAParentOutput)
{
    graph.addOutput(kRoot, QStringLiteral("out"), -1);
    graph.addOutput(kRoot, QStringLiteral("out2"), -1);
    const int g = addNode("g", {}, {"p", "p"});
    const int c = addNode("c", {}, {"p"}, g);
    const int reader = addNode("reader", {"in"}, {});
    const int toReader = graph.addEdge(g, 0, reader, 0);
    graph.addUpEdge(0, g, 0);
    ASSERT_NE(toReader, -1);
    graph.connectUpByName(c);
    EXPECT_EQ(feedsOutput(g, 0), "-");
    EXPECT_EQ(feedsOutput(g, 1), "c.0");
}

TEST_F(ConnectUpByName, TakesAChildOutputThatFeedsSiblings)
{
    const int g = addNode("g", {}, {"p"});
    const int c = addNode("c", {}, {"p"}, g);
    const int reader = addNode("reader", {"in"}, {}, g);
    graph.addEdge(c, 0, reader, 0);
    graph.connectUpByName(c);
    EXPECT_EQ(feedsOutput(g, 0), "c.0");
}

TEST_F(ConnectUpByName, MatchesUnnamedPorts)
{
    const int g = graph.addNode(QStringLiteral("g"), 0, 1, kRoot);
    const int c = graph.addNode(QStringLiteral("c"), 0, 1, g);
    graph.connectUpByName(c);
    EXPECT_EQ(feedsOutput(g, 0), "c.0");
}

TEST_F(ConnectUpByName, RepeatedAddsNothing)
{
    const int g = addNode("g", {}, {"p", "q"});
    const int c = addNode("c", {}, {"p", "q"}, g);
    graph.connectUpByName(c);
    ASSERT_EQ(graph.numEdgesGlobal(), 2);
    expectNoChange([&] { graph.connectUpByName(c); });
}

TEST_F(ConnectUpByName, OfTheRootDoesNothing)
{
    graph.addInput(kRoot, QStringLiteral("p"), -1);
    graph.addOutput(kRoot, QStringLiteral("p"), -1);
    expectNoChange([&] { graph.connectUpByName(kRoot); });
    expectNoChange([&] { graph.connectDownByName(kRoot); });
}

// connectDownByName

TEST_F(ConnectDownByName, FeedsTheChildsInputsInTheirOrder)
{
    const int g = addNode("g", {"p", "q", "r"}, {});
    const int c = addNode("c", {"r", "x", "p"}, {}, g);
    graph.connectDownByName(c);
    ASSERT_EQ(graph.numEdgesGlobal(), 2);
    EXPECT_EQ(edgeEnds(graph, 0), (Refs{g, 2, c, 0}));
    EXPECT_EQ(edgeEnds(graph, 1), (Refs{g, 0, c, 2}));
    EXPECT_TRUE(graph.isDownEdge(0));
    EXPECT_EQ(assertions(), QStringList());
}

TEST_F(ConnectDownByName, OneParentInputFeedsSeveralInputsOfItsName)
{
    const int g = addNode("g", {"p", "p"}, {});
    const int c = addNode("c", {"p", "p"}, {}, g);
    const int d = addNode("d", {"p"}, {}, g);
    graph.connectDownByName(c);
    graph.connectDownByName(d);
    EXPECT_EQ(feeds(c, 0), "g.0");
    EXPECT_EQ(feeds(c, 1), "g.0");
    EXPECT_EQ(feeds(d, 0), "g.0");
    EXPECT_EQ(inputDestinations(graph, g, 0), (Refs{0, 1, 2}));
}

TEST_F(ConnectDownByName, LeavesFedInputsAlone)
{
    const int g = addNode("g", {"p", "q", "outer"}, {});
    const int a = addNode("a", {}, {"o"}, g);
    const int c = addNode("c", {"p", "q", "r"}, {}, g);
    graph.addEdge(a, 0, c, 0);
    graph.addDownEdge(2, c, 1);
    expectNoChange([&] { graph.connectDownByName(c); });
}

TEST_F(ConnectDownByName, MatchesUnnamedPortsAndHeedsLetterCase)
{
    const int g = addNode("g", {"P", ""}, {});
    const int c = addNode("c", {"", "p"}, {}, g);
    graph.connectDownByName(c);
    EXPECT_EQ(feeds(c, 0), "g.1");
    EXPECT_EQ(feeds(c, 1), "-");
}

TEST_F(ConnectDownByName, RepeatedAddsNothing)
{
    const int g = addNode("g", {"p", "q"}, {});
    const int c = addNode("c", {"p", "q"}, {}, g);
    graph.connectDownByName(c);
    ASSERT_EQ(graph.numEdgesGlobal(), 2);
    expectNoChange([&] { graph.connectDownByName(c); });
}

TEST_F(ConnectDownByName, InputsThatFeedOthersAreNoReasonToSkipThem)
{
    const int group = addNode("group", {"in"}, {});
    const int child = addNode("child", {"in"}, {}, group);
    graph.addDownEdge(0, addNode("inner", {"in"}, {}, child), 0);
    graph.connectDownByName(child);
    EXPECT_NE(graph.inputSource(child, 0), -1);
}

// A port that has moved keeps its edges, whose stored index is the old one: their removal leaves
// them listed. Only the first in the list decides what the port feeds, and a removed edge is of no
// kind.

TEST_F(ConnectDownByName, OnlyTheFirstEdgeOfAParentInputCounts)
{
    const int group = addNode("group", {"moved away", "in"}, {});
    const int first = graph.addDownEdge(1, addNode("a", {"in"}, {}, group), 0);
    const int second = graph.addDownEdge(1, addNode("b", {"in"}, {}, group), 0);
    graph.removeInput(group, 0);
    graph.removeEdge(second);
    ASSERT_EQ(inputDestinations(graph, group, 0), (Refs{first, second}));
    const int child = addNode("child", {"in"}, {}, group);
    graph.connectDownByName(child);
    EXPECT_NE(graph.inputSource(child, 0), -1);
}

TEST_F(ConnectDownByName, AParentInputWhoseFirstEdgeIsRemovedIsSkipped)
{
    const int group = addNode("group", {"moved away", "in"}, {});
    const int first = graph.addDownEdge(1, addNode("a", {"in"}, {}, group), 0);
    graph.removeInput(group, 0);
    graph.removeEdge(first);
    ASSERT_EQ(inputDestinations(graph, group, 0), Refs{first});
    const int child = addNode("child", {"in"}, {}, group);
    expectNoChange([&] { graph.connectDownByName(child); });
}

TEST_F(ConnectUpByName, AParentOutputWhoseFirstEdgeIsRemovedIsSkipped)
{
    const int group = addNode("group", {}, {"moved away", "out"});
    const int first = graph.addEdge(group, 1, addNode("sibling", {"in"}, {}), 0);
    graph.removeOutput(group, 0);
    graph.removeEdge(first);
    ASSERT_EQ(outputDestinations(graph, group, 0), Refs{first});
    const int child = addNode("child", {}, {"out"}, group);
    expectNoChange([&] { graph.connectUpByName(child); });
}
