// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// Code and output that the pages in docs/ quote, each put to work by a test.

#include "support/MessageRecorder.h"

#include <Kestrin/Orv/OrvCore.h>

#include <QtCore/QTemporaryFile>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Kestrin::Orv;

namespace {

//! [minutes]
class MinuteHistogram : public HistogramFrameTimes
{
public:
    void flush() override
    {
        dump();
        clear();
    }
};
//! [minutes]

/// The text that a page quotes from a raw string: without the lines that mark the region.
QString quoted(const char* text)
{
    QString result;
    const QStringList lines = QString::fromUtf8(text).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        if (!line.isEmpty() && !line.startsWith(QLatin1String("//!")))
            result += line + QLatin1Char('\n');
    }
    return result;
}

QString logged(const MessageRecorder& recorder)
{
    QString result;
    for (const MessageRecorder::Message& message : recorder.messages())
        result += message.body() + QLatin1Char('\n');
    return result;
}

} // namespace

TEST(Snippets, EverySlotIsVisitedButTheRemovedOnes)
{
    Graph graph;
    const int removed = graph.addNode(QString(), 0, 0, Graph::kRootNodeRef);
    const int kept = graph.addNode(QString(), 0, 0, Graph::kRootNodeRef);
    graph.removeNode(removed);
    std::vector<int> visited;
    const auto visit = [&](int node) { visited.push_back(node); };

    //! [table]
    for (int node = 0; node < graph.numNodesGlobal(); ++node) {
        if (graph.isValidNode(node))
            visit(node);
    }
    //! [table]

    EXPECT_EQ(visited, (std::vector<int>{Graph::kRootNodeRef, kept}));
}

TEST(Snippets, TheWalkerYieldsSourcesFirst)
{
    Graph graph;
    const int w = graph.addNode(QStringLiteral("W"), 0, 1, Graph::kRootNodeRef);
    const int x = graph.addNode(QStringLiteral("X"), 1, 1, Graph::kRootNodeRef);
    const int y = graph.addNode(QStringLiteral("Y"), 1, 1, Graph::kRootNodeRef);
    const int node = graph.addNode(QStringLiteral("Z"), 2, 0, Graph::kRootNodeRef);
    graph.addEdge(w, 0, x, 0);
    graph.addEdge(w, 0, y, 0);
    graph.addEdge(x, 0, node, 0);
    graph.addEdge(y, 0, node, 1);
    std::vector<int> visited;
    const auto visit = [&](int ref) { visited.push_back(ref); };

    //! [walker]
    for (BottomUpInputWalker walker(graph, node, true); walker.valid(); walker.next())
        visit(walker.node());
    //! [walker]

    EXPECT_EQ(visited, (std::vector<int>{w, x, y, node}));
}

TEST(Snippets, TheTopLevelIsWrittenAsGraphviz)
{
    Graph graph;
    const int shadow = graph.addNode(QStringLiteral("shadow"), 0, 1, Graph::kRootNodeRef);
    const int light = graph.addNode(QStringLiteral("light"), 1, 1, Graph::kRootNodeRef);
    graph.addOutput(Graph::kRootNodeRef, QStringLiteral("picture"), Graph::kInvalidGroupRef);
    graph.addEdge(shadow, 0, light, 0);
    graph.addUpEdge(0, light, 0);

    const MessageRecorder recorder;
    dumpAsGraphviz(&graph);
    EXPECT_EQ(logged(recorder), quoted(R"(
//! [graphviz]
digraph "Orv" {
  rankdir=LR;
 
  // Nodes
  "shadow";
  "light";
 
  // Edges
  "shadow" -> "light";
  "light" -> "";
}
//! [graphviz]
)"));
}

TEST(Snippets, AHistogramMarksItsPeakAndWhatIsNotFarBelow)
{
    HistogramFrameTimes histogram;
    for (unsigned int i = 0; i < 30; ++i)
        histogram.addFrameTimeUS(16000 + i * 53);
    for (int i = 0; i < 5; ++i)
        histogram.addFrameTimeUS(33400);
    histogram.addFrameTimeUS(250000);
    histogram.addFrameTimeUS(499);
    histogram.addFrameTimeUS(1000500);

    const MessageRecorder recorder;
    histogram.dump();
    EXPECT_EQ(logged(recorder), quoted(R"(
//! [histogram]
TIME DUMP     37 frames 911000 us      0 us
           0 us      1  
       16000 us     10 <
       16500 us      9 |
       17000 us     10 |
       17500 us      1  
       33000 us      5 |
      250000 us      1  
//! [histogram]
)"));
}

TEST(Snippets, AMinuteIsWrittenOnceItHasPassed)
{
    MinuteHistogram histogram;
    const MessageRecorder recorder;
    for (int second = 0; second < 61; ++second)
        histogram.addFrameTimeUS(1000000);
    EXPECT_TRUE(recorder.messages().empty());
    histogram.addFrameTimeUS(1000000);
    EXPECT_EQ(recorder.messages().size(), 2u);
}

TEST(Snippets, ARangeOfAFileIsRead)
{
    QTemporaryFile written;
    ASSERT_TRUE(written.open());
    written.write("a picture");
    written.close();
    const QString path = written.fileName();
    const unsigned long offset = 2;
    const unsigned long size = 7;
    std::string content;
    const auto read = [&](const unsigned char* bytes, unsigned long count) {
        content.assign(reinterpret_cast<const char*>(bytes), count);
    };

    //! [memory]
    MemoryMappedFile file(path);
    if (unsigned char* bytes = file.get(offset, size)) {
        read(bytes, size);
        file.release(bytes);
    }
    //! [memory]

    EXPECT_EQ(content, "picture");
}
