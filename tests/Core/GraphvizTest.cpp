// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Graphviz.h>

#include "support/GraphSnapshot.h"
#include "support/MessageRecorder.h"

#include <gtest/gtest.h>

#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QStandardPaths>
#include <QtCore/QTextCodec>

using Kestrin::Orv::dumpAsGraphviz;
using Kestrin::Orv::Graph;

namespace {

const int kRoot = Graph::kRootNodeRef;

/// A dump's text without the prefixes, each of which is checked.
QString dump(const Graph& graph)
{
    static const QRegularExpression prefix(QStringLiteral("^\\[Graph\\.cpp:[1-9][0-9]*\\] "));
    const MessageRecorder recorder;
    dumpAsGraphviz(&graph);
    QString text;
    for (const MessageRecorder::Message& message : recorder.messages()) {
        EXPECT_EQ(message.level, QtDebugMsg);
        EXPECT_TRUE(message.hasPlainContext());
        const auto match = prefix.match(message.text);
        EXPECT_TRUE(match.hasMatch()) << message.text.toStdString();
        text += message.text.mid(match.capturedLength()) + QLatin1Char('\n');
    }
    return text;
}

int addNode(Graph& graph, const char* name, int parent = kRoot)
{
    return graph.addNode(QString::fromUtf8(name), 3, 3, parent);
}

QString withLines(const char* nodes, const char* edges)
{
    return QStringLiteral("digraph \"Orv\" {\n  rankdir=LR;\n \n  // Nodes\n%1 \n  // Edges\n%2}\n")
        .arg(QString::fromUtf8(nodes), QString::fromUtf8(edges));
}

} // namespace

TEST(Graphviz, OfAnEmptyGraphHasSevenLines)
{
    const Graph graph;
    EXPECT_EQ(dump(graph),
              QStringLiteral("digraph \"Orv\" {\n"
                             "  rankdir=LR;\n"
                             " \n"
                             "  // Nodes\n"
                             " \n"
                             "  // Edges\n"
                             "}\n"));
}

TEST(Graphviz, EachLineIsAMessageOfItsOwn)
{
    const Graph graph;
    const MessageRecorder recorder;
    dumpAsGraphviz(&graph);
    ASSERT_EQ(recorder.messages().size(), 7u);
    for (const MessageRecorder::Message& message : recorder.messages())
        EXPECT_FALSE(message.text.contains(QLatin1Char('\n')));
}

TEST(Graphviz, WritesAConnectedPairOnce)
{
    Graph graph;
    const int a = addNode(graph, "a");
    const int b = addNode(graph, "b");
    graph.addEdge(a, 0, b, 0);
    graph.addEdge(a, 2, b, 1);
    graph.addEdge(a, 0, b, 2);
    EXPECT_EQ(dump(graph), withLines("  \"a\";\n  \"b\";\n", "  \"a\" -> \"b\";\n"));
}

TEST(Graphviz, GoesOnAfterAPairThatIsWritten)
{
    Graph graph;
    const int a = addNode(graph, "a");
    const int b = addNode(graph, "b");
    const int c = addNode(graph, "c");
    graph.addEdge(a, 0, b, 0);
    graph.addEdge(a, 0, b, 1);
    graph.addEdge(a, 0, c, 0);
    EXPECT_EQ(
        dump(graph),
        withLines("  \"a\";\n  \"b\";\n  \"c\";\n", "  \"a\" -> \"b\";\n  \"a\" -> \"c\";\n"));
}

TEST(Graphviz, WritesTheRootsChildrenInTheirOrder)
{
    Graph graph;
    addNode(graph, "z");
    const int dropped = addNode(graph, "dropped");
    addNode(graph, "a");
    addNode(graph, "m");
    graph.removeNode(dropped);
    EXPECT_EQ(dump(graph), withLines("  \"z\";\n  \"a\";\n  \"m\";\n", ""));
}

TEST(Graphviz, WritesEdgesByNodeThenOutputThenAge)
{
    Graph graph;
    const int d = addNode(graph, "d");
    const int c = addNode(graph, "c");
    const int b = addNode(graph, "b");
    const int a = addNode(graph, "a");
    graph.addEdge(a, 1, b, 0);
    graph.addEdge(a, 0, d, 0);
    graph.addEdge(a, 0, c, 0);
    graph.addEdge(a, 2, d, 1);
    graph.addEdge(b, 0, c, 1);
    EXPECT_EQ(dump(graph),
              withLines("  \"d\";\n  \"c\";\n  \"b\";\n  \"a\";\n",
                        "  \"b\" -> \"c\";\n"
                        "  \"a\" -> \"d\";\n  \"a\" -> \"c\";\n  \"a\" -> \"b\";\n"));
}

TEST(Graphviz, WritesAPairInBothDirectionsTwice)
{
    Graph graph; // in the cycle that runs through a group unseen
    const int g = addNode(graph, "g");
    const int s = addNode(graph, "s");
    const int k = addNode(graph, "k", g);
    graph.addDownEdge(0, k, 0);
    graph.addUpEdge(0, k, 0);
    graph.addEdge(g, 0, s, 0);
    ASSERT_NE(graph.addEdge(s, 0, g, 0), -1);
    EXPECT_EQ(dump(graph),
              withLines("  \"g\";\n  \"s\";\n", "  \"g\" -> \"s\";\n  \"s\" -> \"g\";\n"));
}

TEST(Graphviz, LeavesOutWhatIsNested)
{
    Graph graph;
    const int g = addNode(graph, "g");
    const int x = addNode(graph, "x", g);
    const int y = addNode(graph, "y", g);
    const int b = addNode(graph, "b");
    graph.addDownEdge(0, x, 0);
    graph.addEdge(x, 0, y, 0);
    graph.addUpEdge(0, y, 0);
    graph.addEdge(g, 0, b, 0);
    EXPECT_EQ(dump(graph), withLines("  \"g\";\n  \"b\";\n", "  \"g\" -> \"b\";\n"));
}

TEST(Graphviz, WritesAnUpEdgeAsAnEdgeToTheEmptyName)
{
    Graph graph;
    graph.addOutput(kRoot, QStringLiteral("first"), -1);
    graph.addOutput(kRoot, QStringLiteral("second"), -1);
    const int a = addNode(graph, "a");
    graph.addUpEdge(0, a, 0);
    graph.addUpEdge(1, a, 1);
    EXPECT_EQ(dump(graph), withLines("  \"a\";\n", "  \"a\" -> \"\";\n"));
}

TEST(Graphviz, WritesTheRootsNameWhenItHasOne)
{
    Graph graph;
    graph.setNodeName(kRoot, QStringLiteral("renderer"));
    graph.addOutput(kRoot, QString(), -1);
    graph.addUpEdge(0, addNode(graph, "a"), 0);
    EXPECT_EQ(dump(graph), withLines("  \"a\";\n", "  \"a\" -> \"renderer\";\n"));
}

TEST(Graphviz, WritesARemovedNodeThatIsStillListed)
{
    Graph graph;
    const int a = addNode(graph, "a");
    const int b = addNode(graph, "b");
    graph.addEdge(a, 0, b, 0);
    graph.removeChildNode(b);
    EXPECT_EQ(dump(graph), withLines("  \"a\";\n  \"b\";\n", ""));
}

TEST(Graphviz, WritesEdgesThatOutputsStillListThoughTheyAreRemoved)
{
    Graph graph;
    const int a = addNode(graph, "a");
    const int b = addNode(graph, "b");
    const int edge = graph.addEdge(a, 1, b, 0);
    graph.removeOutput(a, 0);
    graph.removeEdge(edge); // its output has moved away from index 1
    ASSERT_FALSE(graph.isValidEdge(edge));
    EXPECT_EQ(dump(graph), withLines("  \"a\";\n  \"b\";\n", "  \"a\" -> \"b\";\n"));
}

TEST(Graphviz, WritesOneLineForEachNodeThoughTheNamesAreTheSame)
{
    Graph graph;
    const int a = addNode(graph, "a");
    graph.addEdge(a, 0, addNode(graph, "b"), 0);
    graph.addEdge(a, 0, addNode(graph, "b"), 0);
    EXPECT_EQ(
        dump(graph),
        withLines("  \"a\";\n  \"b\";\n  \"b\";\n", "  \"a\" -> \"b\";\n  \"a\" -> \"b\";\n"));
}

// The edge outlives its output's move only in the list.
TEST(Graphviz, WritesWhatTheOutputsOfAListedRemovedNodeStillList)
{
    Graph graph;
    const int a = addNode(graph, "a");
    const int b = addNode(graph, "b");
    graph.addEdge(a, 2, b, 0);
    graph.removeOutput(a, 0);
    graph.removeOutput(a, 0);
    graph.removeChildNode(a);
    EXPECT_EQ(dump(graph), withLines("  \"a\";\n  \"b\";\n", "  \"a\" -> \"b\";\n"));
}

TEST(Graphviz, WritesNamesAsTheyAre)
{
    Graph graph;
    const int a = addNode(graph, "a\"\\ %s %n 100%");
    const int b = addNode(graph, "two\nlines");
    graph.addEdge(a, 0, b, 0);
    EXPECT_EQ(dump(graph),
              withLines("  \"a\"\\ %s %n 100%\";\n  \"two\nlines\";\n",
                        "  \"a\"\\ %s %n 100%\" -> \"two\nlines\";\n"));
}

TEST(Graphviz, WritesNamesInTheLocalEncoding)
{
    QTextCodec* const previous = QTextCodec::codecForLocale();
    Graph graph;
    addNode(graph, "gr\xC3\xBCn");
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    const QString utf8 = dump(graph);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    const QString latin1 = dump(graph);
    QTextCodec::setCodecForLocale(previous);
    EXPECT_EQ(utf8, withLines("  \"gr\xC3\xBCn\";\n", ""));
    EXPECT_EQ(latin1, withLines("  \"gr?n\";\n", ""));
}

TEST(Graphviz, ChangesNothingInTheGraph)
{
    Graph graph;
    graph.addEdge(addNode(graph, "a"), 0, addNode(graph, "b"), 0);
    const std::string before = graphSnapshot(graph);
    dump(graph);
    EXPECT_EQ(graphSnapshot(graph), before);
}

TEST(Graphviz, WritesNothingForNoGraph)
{
    const MessageRecorder recorder;
    dumpAsGraphviz(nullptr);
    EXPECT_TRUE(recorder.messages().empty());
}

TEST(Graphviz, IsReadByDot)
{
    const QString dot = QStandardPaths::findExecutable(QStringLiteral("dot"));
    if (dot.isEmpty())
        GTEST_SKIP() << "Graphviz is not installed";
    Graph graph;
    graph.addOutput(kRoot, QString(), -1);
    const int shadow = addNode(graph, "shadow map");
    const int light = addNode(graph, "light");
    graph.addEdge(shadow, 0, light, 0);
    graph.addEdge(shadow, 1, light, 1);
    graph.addUpEdge(0, light, 0);

    QProcess process;
    process.start(dot, {QStringLiteral("-Tplain")});
    ASSERT_TRUE(process.waitForStarted());
    process.write(dump(graph).toUtf8());
    process.closeWriteChannel();
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(process.readAllStandardError().toStdString(), "");
    const QString plain = QString::fromUtf8(process.readAllStandardOutput());
    const auto count = [&plain](const char* pattern) {
        return plain.count(
            QRegularExpression(QString::fromLatin1(pattern), QRegularExpression::MultilineOption));
    };
    EXPECT_EQ(count("^node "), 3); // the empty name shows up through its edge
    EXPECT_EQ(count("^node \"shadow map\" "), 1);
    EXPECT_EQ(count("^edge "), 2);
    EXPECT_EQ(count("^edge \"shadow map\" light "), 1);
    EXPECT_EQ(count("^edge light \"\" "), 1);
}
