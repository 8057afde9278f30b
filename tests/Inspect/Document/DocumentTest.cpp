// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/support/DocumentSupport.h"

#include <gtest/gtest.h>

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Inspect/BuildRenderer.h>
#include <Kestrin/Orv/Inspect/StandInPass.h>
#include <Kestrin/Orv/Renderer.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QtNumeric>

#include <cstring>
#include <limits>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

const char kSmall[] = R"({
    "edges": [
        "Angle -> Bloom.Angle",
        "Bloom.Angle -> Bloom/Blur.Angle",
        "Bloom/Blur.Color -> Bloom.Color",
        "Bloom.Color -> Tone.Color",
        "Tone.Color -> Picture"
    ],
    "format": "orv-graph",
    "nodes": [
        {
            "groups": [
                "Surface"
            ],
            "inputs": [
                {
                    "group": "Surface",
                    "name": "Angle"
                }
            ],
            "outputs": [
                "Color"
            ],
            "path": "Bloom"
        },
        {
            "enabled": false,
            "inputs": [
                {
                    "default": {
                        "type": "int",
                        "value": 3
                    },
                    "name": "Angle"
                }
            ],
            "outputs": [
                "Color"
            ],
            "pass": "Gauss",
            "path": "Bloom/Blur"
        },
        {
            "inputs": [
                "Color"
            ],
            "outputs": [
                "Color"
            ],
            "pass": "",
            "path": "Tone"
        }
    ],
    "outputs": [
        "Picture"
    ],
    "parameters": [
        {
            "name": "Angle",
            "type": "float",
            "value": 0.6
        }
    ],
    "target": "Tone",
    "version": 1
}
)";

} // namespace

TEST(Document, IsTheSameAfterReadingAndWriting)
{
    const ReadResult read = readDocument(kSmall);
    EXPECT_EQ(listed(read.problems), "");
    QVector<Problem> losses;
    EXPECT_EQ(writeDocument(read.snapshot, &losses).toStdString(), kSmall);
    EXPECT_EQ(listed(losses), "");
}

TEST(Document, IsTheSameAfterARendererWasBuiltFromIt)
{
    const ReadResult read = readDocument(kSmall);
    Renderer renderer;
    EXPECT_EQ(listed(buildRenderer(read.snapshot, renderer, PassFactory::standIns())), "");
    EXPECT_EQ(writeDocument(Snapshot::of(renderer)).toStdString(), kSmall);
}

namespace {

/// What becomes of a value in a document; the text of the document in between if asked for.
QVariant afterwards(const QVariant& value, const ValueTypes& writing = ValueTypes(),
                    const ValueTypes& reading = ValueTypes(), QByteArray* text = nullptr)
{
    Renderer renderer;
    renderer.addParameter(QStringLiteral("P"), value);
    QVector<Problem> losses;
    const QByteArray document = writeDocument(Snapshot::of(renderer), &losses, writing);
    EXPECT_EQ(listed(losses), "");
    if (text)
        *text = document;
    const ReadResult read = readDocument(document, reading);
    EXPECT_EQ(listed(read.problems), "");
    return read.snapshot.parameters.value(0);
}

std::string parameterText(const QVariant& value)
{
    Renderer renderer;
    renderer.addParameter(QStringLiteral("P"), value);
    const QByteArray text = writeDocument(Snapshot::of(renderer)).simplified();
    const int begin = text.indexOf("\"parameters\": [ ") + 16;
    return text.mid(begin, text.indexOf(" ], \"version\"") - begin).toStdString();
}

/// A type of the host's.
struct Shade
{
    int level = 0;
};

/// A value that nothing can write.
struct Secret
{
};

} // namespace

Q_DECLARE_METATYPE(Shade)
Q_DECLARE_METATYPE(Secret)

TEST(DocumentValues, AreWrittenInTheirShortestForm)
{
    EXPECT_EQ(parameterText(QVariant()), R"("P")");
    EXPECT_EQ(parameterText(true), R"({ "name": "P", "value": true })");
    EXPECT_EQ(parameterText(QStringLiteral("x")), R"({ "name": "P", "value": "x" })");
    EXPECT_EQ(parameterText(0.6F), R"({ "name": "P", "type": "float", "value": 0.6 })");
    EXPECT_EQ(parameterText(16777216.0F), R"({ "name": "P", "type": "float", "value": 16777216 })");
    EXPECT_EQ(parameterText(0.1), R"({ "name": "P", "type": "double", "value": 0.1 })");
    EXPECT_EQ(parameterText(-0.0), R"({ "name": "P", "type": "double", "value": "-0" })");
    EXPECT_EQ(parameterText(qQNaN()), R"({ "name": "P", "type": "double", "value": "nan" })");
    EXPECT_EQ(parameterText(-qInf()), R"({ "name": "P", "type": "double", "value": "-inf" })");
    EXPECT_EQ(parameterText(qlonglong(1) << 53),
              R"({ "name": "P", "type": "qlonglong", "value": 9007199254740992 })");
    EXPECT_EQ(parameterText((qlonglong(1) << 53) + 1),
              R"({ "name": "P", "type": "qlonglong", "value": "9007199254740993" })");
    EXPECT_EQ(parameterText(QByteArray("\0\xFF", 2)),
              R"({ "name": "P", "type": "QByteArray", "value": "AP8=" })");
    EXPECT_EQ(
        parameterText(QVariantList{1, QVariant()}),
        R"({ "name": "P", "type": "QVariantList", "value": [ { "type": "int", "value": 1 }, { } ] })");
}

TEST(DocumentValues, KeepEveryFloat)
{
    uint bits = 1;
    for (int i = 0; i < 20000; ++i) {
        bits = bits * 1664525U + 1013904223U;
        float number = 0;
        std::memcpy(&number, &bits, sizeof number);
        if (number != number)
            continue;
        const float back = afterwards(number).toFloat();
        ASSERT_EQ(std::memcmp(&back, &number, sizeof number), 0) << number;
    }
}

TEST(DocumentValues, KeepNanAsNan)
{
    const QVariant back = afterwards(QVariant::fromValue(std::numeric_limits<float>::quiet_NaN()));
    EXPECT_EQ(back.userType(), int(QMetaType::Float));
    EXPECT_TRUE(qIsNaN(back.toFloat()));
}

TEST(DocumentValues, OfTheHostGoThroughItsConverters)
{
    ValueTypes types;
    types.add(
        QStringLiteral("Shade"),
        [](const QVariant& v) { return QJsonValue(v.value<Shade>().level); },
        [](const QJsonValue& json) { return QVariant::fromValue(Shade{json.toInt()}); });
    QByteArray text;
    const QVariant back = afterwards(QVariant::fromValue(Shade{7}), types, types, &text);
    EXPECT_EQ(back.value<Shade>().level, 7);
    EXPECT_TRUE(text.contains("\"value\": 7")) << text.toStdString();
}

TEST(DocumentValues, OfUnknownTypesStayAsTheyStand)
{
    ValueTypes types;
    types.add(
        QStringLiteral("Shade"), [](const QVariant&) { return QJsonValue(QStringLiteral("dark")); },
        [](const QJsonValue&) { return QVariant(); });
    QByteArray text;
    const QVariant foreign = afterwards(QVariant::fromValue(Shade()), types, ValueTypes(), &text);
    ASSERT_EQ(foreign.userType(), qMetaTypeId<ForeignValue>());
    EXPECT_EQ(foreign.value<ForeignValue>().type, QStringLiteral("Shade"));
    EXPECT_EQ(foreign.value<ForeignValue>().value, QJsonValue(QStringLiteral("dark")));
    QByteArray again;
    afterwards(foreign, ValueTypes(), ValueTypes(), &again);
    EXPECT_EQ(again, text);
}

TEST(DocumentValues, ThatAConverterDoesNotTakeAreAProblem)
{
    ValueTypes types;
    types.add(
        QStringLiteral("Shade"), [](const QVariant&) { return QJsonValue(); },
        [](const QJsonValue&) { return QVariant(); });
    const QByteArray text = documentOf(R"("parameters":[{"name":"P","type":"Shade","value":1}])");
    EXPECT_EQ(listed(readDocument(text, types).problems),
              "2:50 wrong-value: this is not a value of type \"Shade\"\n");
}

TEST(DocumentValues, ThatCannotBeWrittenAreLost)
{
    Renderer renderer;
    renderer.addParameter(QStringLiteral("P"), QVariant::fromValue(Secret()));
    QVariant deep = 1;
    for (int i = 0; i < 100; ++i)
        deep = QVariantList{deep};
    renderer.addParameter(QStringLiteral("Q"), deep);
    renderer.addParameter(QStringLiteral("R"), QVariantHash());
    renderer.addParameter(
        QStringLiteral("S"),
        QVariant::fromValue(ForeignValue{QStringLiteral("int"), QJsonValue(QStringLiteral("x"))}));
    QVector<Problem> losses;
    const QByteArray text = writeDocument(Snapshot::of(renderer), &losses);
    EXPECT_EQ(listed(losses),
              "0:0 unwritable-value: P: a value of type Secret has no written form\n"
              "0:0 unwritable-value: Q: a value of type QVariantList has no written form\n"
              "0:0 unwritable-value: R: a value of type QVariantHash has no written form\n"
              "0:0 unwritable-value: S: a value of type "
              "Kestrin::Orv::Inspect::ForeignValue has no written form\n");
    EXPECT_EQ(readDocument(text).snapshot.parameters, QVector<QVariant>(4));
}

namespace {

/// Groups with an input "i" and an output "o" each.
struct Groups
{
    Renderer renderer;
    Graph& graph = *renderer.getGraph();

    int add(const char* name, int parent = 0)
    {
        const int node = renderer.addGroup(QLatin1String(name), 1, 1, parent);
        graph.setInputName(node, 0, QStringLiteral("i"));
        graph.setOutputName(node, 0, QStringLiteral("o"));
        return node;
    }
    std::string losses()
    {
        QVector<Problem> list;
        document = writeDocument(Snapshot::of(renderer), &list);
        EXPECT_EQ(listed(readDocument(document).problems), "");
        return listed(list);
    }
    QByteArray document;
};

} // namespace

TEST(DocumentLosses, AreNoneForRemovedNodesAndEdges)
{
    Groups groups;
    const int a = groups.add("A");
    const int b = groups.add("B");
    const int c = groups.add("C");
    groups.graph.addEdge(a, 0, b, 0);
    groups.graph.addEdge(a, 0, c, 0);
    groups.graph.removeNode(b);
    EXPECT_EQ(groups.losses(), "");
    EXPECT_TRUE(groups.document.contains("A.o -> C.i"));
    EXPECT_FALSE(groups.document.contains("B"));
}

TEST(DocumentLosses, NameEdgesBetweenUnrelatedNodes)
{
    Groups groups;
    const int a = groups.add("A");
    const int b = groups.add("B", groups.add("G"));
    groups.graph.addEdge(a, 0, b, 0);
    EXPECT_EQ(
        groups.losses(),
        "0:0 unrelated-nodes: A.o -> G/B.i connects neither siblings nor a group and its child\n");
}

TEST(DocumentLosses, NameEdgesWhosePortsHaveMoved)
{
    Groups groups;
    const int a = groups.add("A");
    const int b = groups.add("B");
    groups.graph.addInput(b, QStringLiteral("j"), -1);
    groups.graph.addEdge(a, 0, b, 1);
    groups.graph.removeInput(b, 0);
    EXPECT_EQ(
        groups.losses(),
        "0:0 stray-edge: A.o -> B.[no input 1] names a port that has been removed or has moved\n");
}

TEST(DocumentLosses, NameASharedPass)
{
    Renderer renderer;
    const int a = renderer.addPass(QStringLiteral("A"), new StandInPass(NodeRecord()), 0);
    const int b = renderer.addGroup(QStringLiteral("B"), 0, 0, 0);
    renderer.getGraph()->setNodeValue(b, renderer.getGraph()->nodeValue(a));
    QVector<Problem> losses;
    writeDocument(Snapshot::of(renderer), &losses);
    EXPECT_EQ(listed(losses), "0:0 shared-pass: B has the same pass as another node\n");
}

TEST(DocumentLosses, NameAValueThatWouldNameAPass)
{
    Renderer renderer;
    renderer.addPass(QStringLiteral("Null"), nullptr, 0);
    renderer.addPass(QStringLiteral("A"), new StandInPass(NodeRecord()), 0);
    QVector<Problem> losses;
    const QByteArray text = writeDocument(Snapshot::of(renderer), &losses);
    EXPECT_EQ(listed(losses),
              "0:0 node-value: Null has the value 0, which is the number of a pass\n");
    EXPECT_EQ(listed(readDocument(text).problems), "");
}

TEST(DocumentLosses, NameAnUnlistedNodeAndWriteIt)
{
    Groups groups;
    groups.add("A");
    groups.graph.removeNode(groups.add("B"));
    groups.add("C");
    groups.graph.purge(); // leaves the root the children 1 and -1
    EXPECT_EQ(groups.losses(), "0:0 unlisted-node: C[unlisted 2] is not listed by its parent\n");
    EXPECT_TRUE(groups.document.contains("\"path\": \"C\""));
}

TEST(DocumentLosses, NameNodesThatDoNotLieBelowTheRoot)
{
    Snapshot snapshot;
    snapshot.nodes.resize(4);
    for (int ref = 1; ref < 4; ++ref) {
        snapshot.nodes[ref].removed = false;
        snapshot.nodes[ref].parent = ref == 1 ? 2 : ref == 2 ? 1 : 77; // a cycle, and out of range
    }
    QVector<Problem> losses;
    const QByteArray text = writeDocument(snapshot, &losses);
    EXPECT_EQ(losses.size(), 3);
    for (const Problem& loss : qAsConst(losses))
        EXPECT_EQ(loss.code, QStringLiteral("unreachable-node")) << loss.text.toStdString();
    EXPECT_EQ(readDocument(text).snapshot.nodes.size(), 1);
}

TEST(DocumentLosses, NameATargetThatIsGone)
{
    Groups groups;
    const int a = groups.add("A");
    groups.renderer.setTarget(a);
    groups.graph.removeNode(a);
    EXPECT_EQ(groups.losses(), "0:0 target-gone: the target is not a node of the graph\n");
}

TEST(DocumentLosses, NameParametersAndOutputsWithoutPort)
{
    Groups groups;
    groups.renderer.addParameter(QStringLiteral("P"), 1);
    groups.renderer.addOutput(QStringLiteral("O"));
    groups.graph.removeInput(0, 0);
    groups.graph.addOutput(0, QStringLiteral("Q"), -1);
    EXPECT_EQ(groups.losses(),
              "0:0 parameter-mismatch: the renderer has 1 parameters, but its root has 0 inputs\n"
              "0:0 output-mismatch: the renderer has 1 outputs, but its root has 2\n");
}

TEST(DocumentLosses, NameEdgesThatAreWrittenInAnotherOrder)
{
    // The output fed a sibling first, then its group, then another sibling; and the first is gone.
    Groups groups;
    groups.renderer.addOutput(QStringLiteral("O"));
    const int a = groups.add("A");
    const int b = groups.add("B");
    const int c = groups.add("C");
    const int first = groups.graph.addEdge(a, 0, b, 0);
    groups.graph.addUpEdge(0, a, 0);
    groups.graph.addEdge(a, 0, c, 0);
    groups.graph.removeEdge(first);
    EXPECT_EQ(groups.losses(),
              "0:0 edge-order: A.o -> O is written at another position than in the edge table\n");
    EXPECT_TRUE(groups.document.simplified().contains("\"A.o -> C.i\", \"A.o -> O\""));
}

TEST(Document, HasNothingInItForAnEmptyRenderer)
{
    Renderer renderer;
    EXPECT_EQ(writeDocument(Snapshot::of(renderer)).toStdString(),
              "{\n    \"format\": \"orv-graph\",\n    \"version\": 1\n}\n");
}

TEST(Document, IsWrittenOfSnapshotsWithoutNodes)
{
    Snapshot snapshot;
    snapshot.nodes.clear();
    QVector<Problem> losses;
    const QByteArray text = writeDocument(snapshot, &losses);
    EXPECT_EQ(listed(losses), "0:0 removed-root: the root of the graph has been removed\n");
    EXPECT_EQ(listed(readDocument(text).problems), "");
}

TEST(Document, KeepsTheNameTheValueAndTheGroupsOfTheRoot)
{
    const QByteArray text = documentOf(
        R"("name":"Main","value":-7,"groups":["g"],"parameters":[{"name":"P","group":"g"}],"outputs":[{"name":"O","group":5}])");
    const ReadResult read = readDocument(text);
    EXPECT_EQ(listed(read.problems), "");
    Renderer renderer;
    EXPECT_EQ(listed(buildRenderer(read.snapshot, renderer, PassFactory::standIns())), "");
    const Graph& graph = *renderer.getGraph();
    EXPECT_EQ(graph.nodeName(0), QStringLiteral("Main"));
    EXPECT_EQ(graph.nodeValue(0), -7);
    EXPECT_EQ(graph.inputGroupName(0, graph.inputGroup(0, 0)), QStringLiteral("g"));
    EXPECT_EQ(graph.outputGroup(0, 0), 5);
    EXPECT_EQ(renderer.findParameter(QStringLiteral("P")), 0);
}

TEST(Document, ReportsThePlacesOfItsParts)
{
    const ReadResult read = readDocument(kSmall);
    const auto at = [](const Place& place) {
        return std::to_string(place.line) + ":" + std::to_string(place.column);
    };
    EXPECT_EQ(at(read.places.nodes.value(0)), "1:1");
    EXPECT_EQ(at(read.places.nodes.value(2)), "26:9");
    EXPECT_EQ(at(read.places.inputs.value(2).value(0)), "29:17");
    EXPECT_EQ(at(read.places.outputs.value(2).value(0)), "38:17");
    EXPECT_EQ(at(read.places.inputs.value(0).value(0)), "58:9");
    EXPECT_EQ(at(read.places.edges.value(4)), "7:9");
    EXPECT_EQ(at(read.places.target), "64:15");
}

TEST(Document, TakesPathsThatLeaveOutWhatIsClear)
{
    const ReadResult read = readDocument(documentOf(
        R"("nodes":[{"path":"A[0]","outputs":["x"]},{"path":"B","inputs":["y"]}],"edges":["%41.x -> B[0].y[0]"])"));
    EXPECT_EQ(listed(read.problems), "");
    EXPECT_EQ(read.snapshot.edges.size(), 1);
}

TEST(Document, TakesCyclesThatAGraphTakes)
{
    // Through the group's inside, where nothing leads from its input to its output.
    const ReadResult read = readDocument(documentOf(
        R"("nodes":[{"path":"A","inputs":["i"],"outputs":["o"]},{"path":"G","inputs":["i"],"outputs":["o"]},)"
        R"({"path":"G/B","outputs":["o"]}],"edges":["G/B.o -> G.o","G.o -> A.i","A.o -> G.i"])"));
    EXPECT_EQ(listed(read.problems), "");
}

TEST(Document, OfEveryFileIsTheSameAfterReadingBuildingAndWriting)
{
    const QDir directory(QString::fromUtf8(ORV_SOURCE_DIR "/tests/Inspect/Document/documents"));
    const QFileInfoList files = directory.entryInfoList({QStringLiteral("*.json")});
    EXPECT_FALSE(files.isEmpty());
    for (const QFileInfo& info : files) {
        SCOPED_TRACE(info.fileName().toStdString());
        QFile file(info.filePath());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray text = file.readAll();
        const ReadResult read = readDocument(text);
        EXPECT_EQ(listed(read.problems), "");
        Renderer renderer;
        EXPECT_EQ(listed(buildRenderer(read.snapshot, renderer, PassFactory::standIns())), "");
        EXPECT_EQ(writeDocument(Snapshot::of(renderer)).toStdString(), text.toStdString());
    }
}

TEST(Document, IsRefusedWhereItsSchemaRefusesIt)
{
    const QDir directory(QString::fromUtf8(ORV_SOURCE_DIR "/tests/Inspect/Document/documents")
                         + QStringLiteral("/invalid"));
    const QFileInfoList files = directory.entryInfoList({QStringLiteral("*.json")});
    EXPECT_FALSE(files.isEmpty());
    for (const QFileInfo& info : files) {
        QFile file(info.filePath());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_FALSE(readDocument(file.readAll()).problems.isEmpty())
            << info.fileName().toStdString();
    }
}
