// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Picture.h>

#include "Inspect/support/OddSnapshot.h"
#include "Inspect/support/RandomRenderer.h"
#include "Inspect/support/SampleRenderer.h"

#include "support/Growth.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QStandardPaths>
#include <QtCore/QXmlStreamReader>

#include <algorithm>

using namespace Kestrin::Orv::Inspect;

namespace {

std::string text(const QByteArray& bytes)
{
    return bytes.toStdString();
}

/// What Graphviz makes of a picture, and what it says about it.
struct Drawn
{
    bool succeeded = false;
    QByteArray output;
    QByteArray complaints;
};

bool hasGraphviz()
{
    return !QStandardPaths::findExecutable(QStringLiteral("dot")).isEmpty();
}

Drawn drawn(const QByteArray& picture, const char* format)
{
    QProcess dot;
    dot.start(QStringLiteral("dot"), {QLatin1String("-T") + QLatin1String(format)});
    dot.write(picture);
    dot.closeWriteChannel();
    Drawn result;
    result.succeeded = dot.waitForFinished(60000) && dot.exitStatus() == QProcess::NormalExit
        && dot.exitCode() == 0;
    result.output = dot.readAllStandardOutput();
    result.complaints = dot.readAllStandardError();
    return result;
}

void expectDrawable(const QByteArray& picture)
{
    for (const char* format : {"svg", "plain", "json"}) {
        const Drawn result = drawn(picture, format);
        EXPECT_TRUE(result.succeeded) << format << "\n" << text(picture);
        EXPECT_EQ(text(result.complaints), "") << format << "\n" << text(picture);
    }
}

/// All texts of an SVG picture, in their order.
QStringList textsOf(const QByteArray& svg)
{
    QXmlStreamReader reader(svg);
    QStringList texts;
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement
            && reader.name() == QLatin1String("text"))
            texts.append(reader.readElementText());
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    return texts;
}

/// The statement of a node or an edge, found by how it begins.
std::string statement(const QByteArray& picture, const char* beginning)
{
    const QList<QByteArray> lines = picture.split('\n');
    for (const QByteArray& line : lines) {
        if (line.trimmed().startsWith(beginning))
            return text(line.trimmed());
    }
    return std::string();
}

int numLines(const QByteArray& picture, const char* pattern)
{
    const QRegularExpression expression(QString::fromLatin1(pattern),
                                        QRegularExpression::MultilineOption);
    auto matches = expression.globalMatch(QString::fromUtf8(picture));
    int count = 0;
    while (matches.hasNext()) {
        matches.next();
        ++count;
    }
    return count;
}

bool contains(const std::string& text, const char* part)
{
    return text.find(part) != std::string::npos;
}

} // namespace

TEST(Picture, OfAFloatIsAsADocumentHasIt)
{
    SnapshotBuilder builder;
    builder.parameter("strength", 0.9F);
    EXPECT_TRUE(contains(text(toGraphviz(builder.snapshot)), " = 0.9<"));
}

TEST(Picture, OfOnePassIsThisText)
{
    SnapshotBuilder builder;
    const int time = builder.parameter("time", 2);
    const int picture = builder.output("picture");
    const int sky = builder.pass("Sky", {"time", "sun"}, {"color"}, 0, "Atmosphere");
    builder.setDefault(sky, 1, 0.5);
    builder.connect(0, time, sky, 0);
    builder.connect(sky, 0, 0, picture);
    EXPECT_EQ(text(toGraphviz(builder.snapshot)),
              R"(digraph orv {
  graph [rankdir=LR bgcolor="#ffffff" pad=0.25 nodesep=0.3 ranksep=0.5 fontsize=12 labeljust=l fontname="Helvetica,Arial,sans-serif" fontcolor="#111827"]
  node [shape=box margin=0 height=0 width=0 penwidth=1.3 fontsize=11 fontname="Helvetica,Arial,sans-serif" fontcolor="#111827"]
  edge [fontsize=9 arrowsize=0.7 penwidth=1.3 fontname="Helvetica,Arial,sans-serif" fontcolor="#4b5563"]
  n0i [class="renderer" style="rounded,filled,solid" fillcolor="#e6f4ee" color="#1b6e53" label=<<table border='0' cellborder='0' cellspacing='0' cellpadding='4'><tr><td><b>Parameters</b></td></tr><hr/><tr><td port='i0' align='center'>time = 2</td></tr></table>>]
  n0o [class="renderer" style="rounded,filled,solid" fillcolor="#e6f4ee" color="#1b6e53" label=<<table border='0' cellborder='0' cellspacing='0' cellpadding='4'><tr><td><b>Outputs</b></td></tr><hr/><tr><td port='o0' align='center'>picture</td></tr></table>>]
  n1 [class="pass scheduled" style="rounded,filled,solid" fillcolor="#e8f1fb" color="#1f5fa8" label=<<table border='0' cellborder='0' cellspacing='0' cellpadding='4'><tr><td colspan='2'><table border='0' cellborder='0' cellspacing='0' cellpadding='3'><tr><td border='1' style='rounded' cellpadding='3' color='#1f5fa8' bgcolor='#1f5fa8'><font color='#ffffff' point-size='10'><b>1</b></font></td><td><b>Sky</b></td><td><font point-size='9' color='#4b5563'>Atmosphere</font></td><td colspan='12' cellpadding='0'></td></tr></table></td></tr><hr/><tr><td port='i0' align='left'>time</td><td port='o0' align='right'>color</td></tr><tr><td port='i1' align='left'>sun <font color='#4b5563'><i>default = 0.5</i></font></td><td></td></tr></table>>]
  n1:o0:e -> n0o:o0:w [class="up" style=dotted penwidth=1.8 color="#1b6e53" arrowhead=odiamond]
  n0i:i0:e -> n1:i0:w [class="down" style=dashed color="#1f5fa8" arrowhead=onormal]
}
)");
}

TEST(Picture, OfTheSampleIsThatOfTheDocuments)
{
    QFile file(QStringLiteral(ORV_SOURCE_DIR "/docs/images/picture.dot"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
    const SampleRenderer sample;
    EXPECT_EQ(text(file.readAll()),
              "// SPDX-FileCopyrightText: The OrvCore authors\n// SPDX-License-Identifier: MIT\n"
                  + text(toGraphviz(sample.snapshot, {sample.antialias})));
}

TEST(Picture, OfARendererWithNothingInItIsAGraphWithoutNodes)
{
    const QByteArray picture = toGraphviz(Snapshot());
    EXPECT_EQ(numLines(picture, "^ *n\\d"), 0);
    EXPECT_EQ(numLines(picture, "->"), 0);
}

TEST(Picture, GroupsAreClustersAroundTheirChildren)
{
    const SampleRenderer sample;
    const QList<QByteArray> lines = toGraphviz(sample.snapshot).split('\n');
    const auto lineOf = [&](const QByteArray& beginning) {
        for (int i = 0; i < lines.size(); ++i) {
            if (lines.at(i).trimmed().startsWith(beginning))
                return i;
        }
        return -1;
    };
    const int begin = lineOf("subgraph cluster_n" + QByteArray::number(sample.bloom) + " {");
    const int end = begin + lines.mid(begin).indexOf("  }");
    EXPECT_GT(begin, 0);
    for (const int child : {sample.bright, sample.blur, sample.blend}) {
        const int line = lineOf("n" + QByteArray::number(child) + " [");
        EXPECT_GT(line, begin);
        EXPECT_LT(line, end);
    }
    EXPECT_GT(lineOf("n" + QByteArray::number(sample.tone) + " ["), end);
}

TEST(Picture, AGroupWithNothingInItIsDrawn)
{
    SnapshotBuilder builder;
    builder.group("Nothing", {}, {});
    const QByteArray picture = toGraphviz(builder.snapshot);
    EXPECT_TRUE(contains(statement(picture, "n1 ["), "label=empty"));
    EXPECT_TRUE(contains(statement(picture, "class=\"group\""), "<b>Nothing</b>"));
    if (hasGraphviz())
        expectDrawable(picture);
}

TEST(Picture, StatesDifferInWordsAndLinesToo)
{
    SampleRenderer sample;
    const QByteArray picture = toGraphviz(sample.snapshot, {sample.antialias});
    const auto node = [&](int ref) {
        return statement(picture, ("n" + QByteArray::number(ref) + " [").constData());
    };
    const std::string runs = node(sample.tone);
    EXPECT_TRUE(contains(runs, "\"pass scheduled\" style=\"rounded,filled,solid\"")) << runs;
    EXPECT_TRUE(contains(runs, "<b>7</b>")) << runs;
    const std::string disabled = node(sample.grain);
    EXPECT_TRUE(contains(disabled, "\"pass disabled\" style=\"rounded,filled,dotted\""))
        << disabled;
    EXPECT_TRUE(contains(disabled, "<b>disabled</b>")) << disabled;
    const std::string notNeeded = node(sample.overlay);
    EXPECT_TRUE(contains(notNeeded, "\"pass not-needed\" style=\"rounded,filled,dashed\""))
        << notNeeded;
    EXPECT_TRUE(contains(notNeeded, "<b>not needed</b>")) << notNeeded;
    const std::string failed = node(sample.antialias);
    EXPECT_TRUE(contains(failed, "\"pass failed\" style=\"rounded,filled,bold\"")) << failed;
    EXPECT_TRUE(contains(failed, "<b>8 failed</b>")) << failed;
}

TEST(Picture, TheTargetIsMarked)
{
    SampleRenderer sample;
    sample.snapshot.target = sample.overlay;
    const std::string node = statement(
        toGraphviz(sample.snapshot), ("n" + QByteArray::number(sample.overlay) + " [").constData());
    EXPECT_TRUE(contains(node, "Overlay, target")) << node;
    EXPECT_TRUE(contains(node, "pass scheduled")) << node;
}

TEST(Picture, AnInputThatTakesItsDefaultSaysSo)
{
    SnapshotBuilder builder;
    const int output = builder.output("o");
    const int off = builder.pass("Off", {}, {"o"});
    const int on = builder.pass("On", {}, {"o"});
    const int group = builder.group("Group", {}, {"o"});
    const int reader = builder.pass("Reader", {"off", "on", "group", "unfed"}, {"o"});
    builder.snapshot.nodes[off].enabled = false;
    builder.connect(off, 0, reader, 0);
    builder.connect(on, 0, reader, 1);
    builder.connect(group, 0, reader, 2);
    builder.connect(reader, 0, 0, output);
    builder.setDefault(reader, 3, QStringLiteral("<none>"));
    const std::string node = statement(toGraphviz(builder.snapshot), "n4 [");
    EXPECT_TRUE(contains(node, ">off <font color='#4b5563'><i>default</i>")) << node;
    EXPECT_TRUE(contains(node, ">on</td>")) << node;
    EXPECT_TRUE(contains(node, ">group <font color='#4b5563'><i>default</i>")) << node;
    EXPECT_TRUE(contains(node, "<i>default = &quot;&lt;none&gt;&quot;</i>")) << node;
}

TEST(Picture, DefaultsAreMarkedWhereTheRendererTakesThem)
{
    int numDefaults = 0, numValues = 0;
    for (unsigned seed = 0; seed < 1500; ++seed) {
        RandomRenderer random(seed, static_cast<RandomRenderer::Kind>(seed % 2));
        random.renderer.setup(nullptr);
        const Snapshot snapshot = Snapshot::of(random.renderer);
        const QByteArray picture = toGraphviz(snapshot);
        for (int ref = 1; ref < snapshot.nodes.size(); ++ref) {
            const auto setUp =
                std::find_if(random.log.begin(), random.log.end(), [&](const SetupCall& call) {
                    return call.pass && call.pass == random.pass(ref);
                });
            if (setUp == random.log.end() || snapshot.node(ref).removed)
                continue;
            const std::string node =
                statement(picture, ("n" + QByteArray::number(ref) + " [").constData());
            for (int i = 0; i < snapshot.node(ref).inputs.size(); ++i) {
                const std::size_t cell = node.find("port='i" + std::to_string(i) + "'");
                const std::string label = node.substr(cell, node.find("</td>", cell) - cell);
                const bool isDefault = setUp->inputs.at(i) == setUp->pass->defaultValue(i);
                EXPECT_EQ(contains(label, "default"), isDefault) << seed << ": " << node;
                (isDefault ? numDefaults : numValues) += 1;
            }
        }
    }
    EXPECT_GT(numDefaults, 500);
    EXPECT_GT(numValues, 500);
}

TEST(Picture, AParameterReachesAnInputThroughGroups)
{
    SnapshotBuilder builder;
    builder.parameter("p", 1);
    const int outer = builder.group("Outer", {"a"}, {});
    const int inner = builder.group("Inner", {"b"}, {}, outer);
    const int pass = builder.pass("Pass", {"c"}, {}, inner);
    builder.connect(0, 0, outer, 0);
    builder.connect(outer, 0, inner, 0);
    builder.connect(inner, 0, pass, 0);
    EXPECT_FALSE(contains(statement(toGraphviz(builder.snapshot), "n3 ["), "default"));
    // Cut off from the parameter.
    builder.snapshot.nodes[outer].inputs[0].source = -1;
    EXPECT_TRUE(contains(statement(toGraphviz(builder.snapshot), "n3 ["), "default"));
}

TEST(Picture, KindsOfEdgeDifferInLineAndArrowhead)
{
    SampleRenderer sample;
    const QByteArray picture = toGraphviz(sample.snapshot);
    // Blur is node 6 in the group 4.
    EXPECT_TRUE(contains(statement(picture, "n5:o0:e -> n6:i0:w"), "class=\"regular\" color"));
    EXPECT_TRUE(contains(statement(picture, "n4i:i1:e -> n6:i1:w"),
                         "class=\"down\" style=dashed color=\"#1f5fa8\" arrowhead=onormal"));
    EXPECT_TRUE(contains(statement(picture, "n7:o0:e -> n4o:o0:w"), "class=\"up\" style=dotted"));
    EXPECT_EQ(numLines(picture, "->"), sample.snapshot.edges.size());
    EXPECT_FALSE(picture.contains("carries nothing"));
}

TEST(Picture, AnEdgeBetweenUnrelatedNodesCarriesNothing)
{
    SampleRenderer sample;
    sample.connect(sample.shadows, 0, sample.bright, 1);
    const QByteArray picture = toGraphviz(sample.snapshot);
    const std::string edge = statement(picture, "n2:o0:e -> n5:i1:w");
    EXPECT_TRUE(contains(edge, "class=\"dead\"")) << edge;
    EXPECT_TRUE(contains(edge, "label=\"carries nothing\"")) << edge;
    // The default is taken in spite of it.
    EXPECT_TRUE(contains(statement(picture, "n5 ["), "default = 0.8"));
}

TEST(Picture, AnEdgeFromAPortThatIsGoneHangsLoose)
{
    SnapshotBuilder builder;
    const int from = builder.pass("From", {}, {"a", "b"});
    const int to = builder.pass("To", {"c"}, {});
    builder.connect(from, 1, to, 0);
    builder.snapshot.nodes[from].outputs.removeLast();
    const QByteArray picture = toGraphviz(builder.snapshot);
    EXPECT_TRUE(contains(statement(picture, "x0 ["), "label=<no output 1 of From>"));
    EXPECT_TRUE(contains(statement(picture, "x0 -> n2:i0:w"), "carries nothing"));
}

TEST(Picture, AnEdgeLeadsToThePortThatFollowsIt)
{
    // As after the removal of the first of two inputs: the edge still names the second.
    SnapshotBuilder builder;
    const int from = builder.pass("From", {}, {"a"});
    const int to = builder.pass("To", {"b", "c"}, {});
    builder.connect(from, 0, to, 1);
    builder.snapshot.nodes[to].inputs.removeFirst();
    const QByteArray picture = toGraphviz(builder.snapshot);
    EXPECT_NE(statement(picture, "n1:o0:e -> n2:i0:w [class=\"regular\""), "");
    EXPECT_EQ(numLines(picture, "->"), 1);
}

TEST(Picture, RemovedNodesAndEdgesAreLeftOut)
{
    SampleRenderer sample;
    sample.snapshot.nodes[sample.overlay].removed = true;
    sample.snapshot.edges.last().removed = true;
    const QByteArray picture = toGraphviz(sample.snapshot);
    EXPECT_FALSE(picture.contains("Wireframe"));
    EXPECT_EQ(numLines(picture, "->"), sample.snapshot.edges.size() - 1);
}

TEST(Picture, NamesStayTextWhateverTheyHold)
{
    if (!hasGraphviz())
        GTEST_SKIP() << "dot is not installed";
    const QStringList names = {QStringLiteral("<b>x</b>"),
                               QStringLiteral("&amp;"),
                               QStringLiteral("\"'"),
                               QStringLiteral("\\N"),
                               QStringLiteral("\\"),
                               QStringLiteral("a\\\"b"),
                               QStringLiteral("\\l\\n\\G"),
                               QStringLiteral("%1 %2"),
                               QStringLiteral("]]>"),
                               QStringLiteral("-->"),
                               QStringLiteral("}"),
                               QStringLiteral("/* "),
                               QString::fromUtf8("\xF0\x9F\x98\x80 \xC3\xA4")};
    SnapshotBuilder builder;
    for (const QString& name : names) {
        const QByteArray bytes = name.toUtf8();
        const char* utf8 = bytes.constData();
        builder.group(utf8, {utf8}, {utf8});
        builder.pass(utf8, {utf8}, {utf8}, 0, utf8);
        builder.parameter(utf8, name);
        builder.output(utf8);
    }
    const QByteArray picture = toGraphviz(builder.snapshot);
    expectDrawable(picture);
    const QStringList texts = textsOf(drawn(picture, "svg").output);
    for (const QString& name : names) {
        int times = 0;
        for (const QString& shown : texts)
            times += shown.trimmed() == name.trimmed();
        // The group and its ports, the pass with its ports and type, the renderer's output.
        EXPECT_EQ(times, 8) << name.toStdString();
    }
}

TEST(Picture, CharactersThatCannotBeShownAreReplaced)
{
    SnapshotBuilder builder;
    const int pass = builder.pass("", {}, {});
    const QString hostile = QString(QChar(0xD800)) + QLatin1Char('a') + QChar(0xDC00)
        + QChar(0xFFFF) + QChar(0x202E) + QLatin1Char('\n') + QChar(0) + QChar(0x7F) + QChar(0x85);
    builder.snapshot.nodes[pass].name = hostile;
    const QByteArray picture = toGraphviz(builder.snapshot);
    EXPECT_TRUE(picture.contains("<b>\xEF\xBF\xBD"
                                 "a\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xE2\x90\x8A\xE2\x90\x80"
                                 "\xE2\x90\xA1\xEF\xBF\xBD</b>"))
        << text(picture);
    if (hasGraphviz())
        expectDrawable(picture);
}

TEST(Picture, NamelessThingsAreNamedByWhatTheyAre)
{
    SnapshotBuilder builder;
    builder.pass("", {""}, {"", " "});
    const std::string node = statement(toGraphviz(builder.snapshot), "n1 [");
    EXPECT_TRUE(contains(node, "<i>no name</i>")) << node;
    EXPECT_TRUE(contains(node, "<i>input 0</i>")) << node;
    EXPECT_TRUE(contains(node, "<i>output 0</i>")) << node;
    EXPECT_TRUE(contains(node, ">&quot; &quot;</td>")) << node;
}

TEST(Picture, LongNamesLoseTheirMiddle)
{
    SnapshotBuilder builder;
    const int pass = builder.pass("", {}, {});
    builder.snapshot.nodes[pass].name = QString(1000, QLatin1Char('x'));
    const std::string node = statement(toGraphviz(builder.snapshot), "n1 [");
    EXPECT_TRUE(
        contains(node, "<b>xxxxxxxxxxxxxxxxxxxxxxxx\xE2\x80\xA6xxxxxxxxxxxxxxxxxxxxxxx</b>"))
        << node;
}

TEST(Picture, TheSameSnapshotGivesTheSameBytes)
{
    const SampleRenderer first;
    const SampleRenderer second;
    EXPECT_EQ(text(toGraphviz(first.snapshot, {1, 2})),
              text(toGraphviz(second.snapshot, {2, 1, 1})));
}

TEST(Picture, ParentsThatFormACycleAreDrawnOnce)
{
    SnapshotBuilder builder;
    const int a = builder.group("A", {"i"}, {"o"});
    const int b = builder.pass("B", {"i"}, {"o"}, a);
    builder.snapshot.nodes[0].children.clear();
    builder.snapshot.nodes[a].parent = b;
    builder.snapshot.nodes[b].children = {a, a};
    builder.connect(a, 0, b, 0);
    const QByteArray picture = toGraphviz(builder.snapshot);
    EXPECT_EQ(numLines(picture, "subgraph cluster_n1 "), 1);
    EXPECT_EQ(numLines(picture, "subgraph cluster_n2 "), 1);
    if (hasGraphviz())
        expectDrawable(picture);
}

TEST(Picture, NodesThatNoParentListsAreDrawn)
{
    SampleRenderer sample;
    sample.snapshot.nodes[0].children.removeOne(sample.tone);
    sample.snapshot.nodes[sample.bloom].removed = true;
    sample.snapshot.nodes[sample.grain].parent = 4711;
    const QByteArray picture = toGraphviz(sample.snapshot);
    EXPECT_TRUE(contains(statement(picture, "n9 ["), "Filmic, unlisted"));
    EXPECT_NE(statement(picture, "n6 ["), "");
    EXPECT_NE(statement(picture, "n8 ["), "");
    if (hasGraphviz())
        expectDrawable(picture);
}

TEST(Picture, WithoutEvenARootIsAnEmptyGraph)
{
    Snapshot snapshot;
    snapshot.nodes.clear();
    EXPECT_EQ(numLines(toGraphviz(snapshot, {0, -1, 7}), "^ *n\\d"), 0);
}

TEST(Picture, SnapshotsOfAnyNumbersAreDrawn)
{
    for (unsigned seed = 0; seed < 400; ++seed) {
        const Snapshot snapshot = oddSnapshot(seed);
        const int numNodes = snapshot.nodes.size();
        const QByteArray picture = toGraphviz(snapshot, {static_cast<int>(seed % 11) - 2});

        for (int ref = 1; ref < numNodes; ++ref) {
            const QByteArray id = QByteArray::number(ref);
            EXPECT_EQ(
                numLines(
                    picture,
                    ("^ *(subgraph cluster_n" + id + " |n" + id + " \\[class=\"pass)").constData()),
                snapshot.nodes.at(ref).removed ? 0 : 1)
                << text(picture);
        }
        int numLiveEdges = 0;
        for (const EdgeRecord& edge : snapshot.edges)
            numLiveEdges += !edge.removed;
        EXPECT_GE(numLines(picture, "->"), numLiveEdges) << text(picture);
        EXPECT_EQ(picture.count('{'), picture.count('}'));
        if (hasGraphviz() && seed % 20 == 0)
            expectDrawable(picture);
    }
}

namespace {

struct Nest : SnapshotBuilder
{
    explicit Nest(int size)
    {
        int parent = 0;
        parameter("p", 1);
        for (int i = 0; i < size; ++i) {
            const int child = group("G", {"i"}, {"o"}, parent);
            connect(parent, 0, child, 0);
            parent = child;
        }
        for (int i = 0; i < size; ++i) {
            const int child = pass("P", {"i"}, {"o"}, parent);
            connect(parent, 0, child, 0);
        }
    }
};

struct ManyPorts : SnapshotBuilder
{
    explicit ManyPorts(int size)
    {
        const int from = pass("From", {}, {"o"});
        const int to = group("To", {}, {});
        snapshot.nodes[to].inputs.resize(size);
        for (int i = 0; i < size; ++i)
            connect(from, 0, to, i);
    }
};

template<typename Subject>
void draw(Subject& subject)
{
    EXPECT_GT(toGraphviz(subject.snapshot).size(), 0);
}

} // namespace

TEST(PictureGrowth, OfAChainTakesLinearTime)
{
    expectLinear<BuiltChain>(10000, draw<BuiltChain>);
}

TEST(PictureGrowth, OfGroupsInGroupsTakesLinearTime)
{
    expectLinear<Nest>(5000, draw<Nest>);
}

TEST(PictureGrowth, OfManyPortsTakesLinearTime)
{
    expectLinear<ManyPorts>(20000, draw<ManyPorts>);
}
