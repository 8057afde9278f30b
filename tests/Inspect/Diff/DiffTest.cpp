// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Diff/ComparedHost.h"

#include <gtest/gtest.h>

#include <Kestrin/Orv/Inspect/ForeignValue.h>

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <limits>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

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

TEST(DiffNodes, ARenamedPassIsNotARewiringOfItsReaders)
{
    Chain host;
    const Snapshot before = host.snapshot();
    host.graph.setNodeName(host.a, QStringLiteral("A2"));
    host.graph.setNodeName(host.b, QStringLiteral("B2"));
    EXPECT_EQ(compared(before, host.snapshot()),
              "node-renamed A2: A -> A2\n"
              "node-renamed G/B2: B -> B2\n");
}

TEST(DiffNodes, AChainOfRenamedPassesIsFollowed)
{
    Host host;
    host.parameter("p");
    QVector<int> chain;
    for (const char* name : {"A", "B", "C", "D", "E"})
        chain.append(host.pass(name, "x", "x"));
    host.down("p", chain.first(), "x");
    for (int i = 1; i < chain.size(); ++i)
        host.link(chain.at(i - 1), "x", chain.at(i), "x");
    const Snapshot before = host.snapshot();
    for (const int node : chain)
        host.graph.setNodeName(node, host.graph.nodeName(node).toLower());
    EXPECT_EQ(compared(before, host.snapshot()),
              "node-renamed a: A -> a\n"
              "node-renamed b: B -> b\n"
              "node-renamed c: C -> c\n"
              "node-renamed d: D -> d\n"
              "node-renamed e: E -> e\n");
}

TEST(DiffNodes, OfSeveralCandidatesForARenamingTheBestWiredIsTaken)
{
    Host host;
    host.parameter("p");
    host.parameter("q");
    host.output("o1");
    host.output("o2");
    const int first = host.pass("A", "x", "y");
    const int second = host.pass("B", "x", "y");
    host.down("p", first, "x");
    host.down("q", second, "x");
    host.up("o1", first, "y");
    host.up("o2", second, "y");
    const Snapshot before = host.snapshot();
    host.graph.setNodeName(first, QStringLiteral("Z"));
    host.graph.setNodeName(second, QStringLiteral("Y"));
    // B's successor comes first, but is wired as B was.
    Snapshot after = host.snapshot();
    std::swap(after.nodes[0].children[0], after.nodes[0].children[1]);
    EXPECT_EQ(compared(before, after),
              "node-renamed Y: B -> Y\n"
              "node-renamed Z: A -> Z\n");
}

TEST(DiffNodes, OfSeveralCandidatesForARenamingTheOneThatSharesMostFeedsIsTaken)
{
    Host host;
    host.parameter("p");
    host.parameter("q");
    const int first = host.pass("A", "x y", "");
    const int second = host.pass("B", "x y", "");
    host.down("p", first, "x");
    host.down("p", second, "x");
    host.down("q", first, "y");
    host.down("p", second, "y");
    const Snapshot before = host.snapshot();
    host.graph.setNodeName(first, QStringLiteral("Y"));
    host.graph.setNodeName(second, QStringLiteral("Z"));
    EXPECT_EQ(compared(before, host.snapshot()),
              "node-renamed Y: A -> Y\n"
              "node-renamed Z: B -> Z\n");
}

TEST(DiffNodes, AMovedPassIsReportedWithTheInputsThatAreFedOtherwise)
{
    Chain host;
    const Snapshot before = host.snapshot();
    Chain other;
    other.graph.removeNode(other.b);
    other.b = other.pass("B", "x", "y");
    EXPECT_EQ(compared(before, other.snapshot()),
              "output-rewired G.out: G/B.y -> nothing\n"
              "node-moved B: G/B -> B\n"
              "input-rewired B.x: G.in -> nothing\n");
}

TEST(DiffNodes, TheChildrenOfAMovedGroupGoWithIt)
{
    Host host;
    const int g = host.group("G", "in", "");
    host.pass("P", "", "", g);
    const int h = host.group("H", "", "");
    const Snapshot before = host.snapshot();
    Snapshot after = before;
    after.nodes[0].children = {h};
    after.nodes[h].children = {g};
    after.nodes[g].parent = h;
    EXPECT_EQ(compared(before, after), "node-moved H/G: G -> H/G\n");
}

TEST(DiffNodes, APassInPlaceOfAGroupIsAnotherNode)
{
    Host before;
    before.group("A", "x", "y");
    Host after;
    after.pass("A", "x", "y");
    EXPECT_EQ(compared(before.snapshot(), after.snapshot()),
              "node-added A: nothing -> pass\n"
              "node-removed A: group -> nothing\n");
}

TEST(DiffNodes, RemovedAndUnlistedNodesAreNotThere)
{
    Chain host;
    const Snapshot before = host.snapshot();
    const int d = host.pass("D", "", "");
    host.graph.removeChildNode(d);
    EXPECT_EQ(compared(before, host.snapshot()), "");
    EXPECT_EQ(compared(host.snapshot(), before), "");
}

TEST(DiffNodes, TypesAndFlagsAndValuesAreCompared)
{
    Chain host;
    const Snapshot before = host.snapshot();
    Snapshot after = before;
    after.nodes[host.a].type = QStringLiteral("Blur");
    after.nodes[host.b].enabled = false;
    after.nodes[host.g].value = 7;
    EXPECT_EQ(compared(before, after),
              "type-changed A: nothing -> Blur\n"
              "node-value-changed G: -1 -> 7\n"
              "enabled-changed G/B: enabled -> disabled\n");
}

TEST(DiffNodes, TheOrderOfSiblingsIsNotCompared)
{
    Chain host;
    Snapshot after = host.snapshot();
    std::reverse(after.nodes[0].children.begin(), after.nodes[0].children.end());
    EXPECT_EQ(compared(host.snapshot(), after), "");
}

TEST(DiffNodes, TheTargetIsComparedByNode)
{
    Chain host;
    const Snapshot before = host.snapshot();
    host.renderer.setTarget(host.b);
    EXPECT_EQ(compared(before, host.snapshot()), "target-changed: nothing -> G/B\n");
    const Snapshot targeted = host.snapshot();
    host.graph.setNodeName(host.b, QStringLiteral("Z"));
    EXPECT_EQ(compared(targeted, host.snapshot()), "node-renamed G/Z: B -> Z\n");
    host.renderer.setTarget(0);
    EXPECT_EQ(compared(before, host.snapshot()),
              "target-changed: nothing -> [root]\nnode-renamed G/Z: B -> Z\n");
}

TEST(DiffNodes, TheRootMayHaveAName)
{
    Host host;
    const Snapshot before = host.snapshot();
    host.graph.setNodeName(0, QStringLiteral("Deferred"));
    EXPECT_EQ(compared(before, host.snapshot()), "node-renamed: [unnamed] -> Deferred\n");
}

TEST(DiffPorts, AddedAndRemovedPortsAreReported)
{
    Chain host;
    const Snapshot before = host.snapshot();
    host.graph.addInput(host.g, QStringLiteral("more"), -1);
    host.graph.addOutput(host.g, QStringLiteral("most"), -1);
    host.link(host.a, "x", host.g, "more");
    const Snapshot after = host.snapshot();
    EXPECT_EQ(compared(before, after),
              "input-added G.more: nothing -> fed by A.x\n"
              "output-added G.most: nothing -> unfed\n");
    EXPECT_EQ(compared(after, before),
              "input-removed G.more: fed by A.x -> nothing\n"
              "output-removed G.most: unfed -> nothing\n");
}

TEST(DiffPorts, ARenamedPortIsNotARewiring)
{
    Chain host;
    const Snapshot before = host.snapshot();
    host.graph.setOutputName(host.a, 0, QStringLiteral("xx"));
    host.graph.setInputName(host.g, 0, QStringLiteral("inn"));
    host.graph.setInputName(host.b, 0, QStringLiteral("bx"));
    host.graph.setInputName(0, 0, QStringLiteral("Tilt"));
    EXPECT_EQ(compared(before, host.snapshot()),
              "parameter-renamed Tilt: Angle -> Tilt\n"
              "output-renamed A.xx: x -> xx\n"
              "input-renamed G.inn: in -> inn\n"
              "input-renamed G/B.bx: x -> bx\n");
}

TEST(DiffPorts, APortOfAnotherNameThatIsFedOtherwiseIsAnother)
{
    Chain host;
    const Snapshot before = host.snapshot();
    host.graph.setInputName(host.c, 1, QStringLiteral("mask"));
    host.link(host.a, "x", host.c, "mask");
    EXPECT_EQ(compared(before, host.snapshot()),
              "input-added C.mask: nothing -> fed by A.x\n"
              "input-removed C.extra: unfed -> nothing\n");
}

TEST(DiffPorts, AReorderingIsReportedOnce)
{
    Host before;
    before.pass("A", "x y z", "");
    Host after;
    after.pass("A", "y z x", "");
    EXPECT_EQ(compared(before.snapshot(), after.snapshot()),
              "inputs-reordered A: x, y, z -> y, z, x\n");
}

TEST(DiffPorts, PortsOfOneNameAreMatchedByTheirOrder)
{
    Host before;
    before.pass("A", "x x", "");
    Host after;
    after.pass("A", "x x x", "");
    EXPECT_EQ(compared(before.snapshot(), after.snapshot()),
              "input-added A.x[2]: nothing -> unfed\n");
}

TEST(DiffPorts, PortGroupsAreCompared)
{
    Host before;
    const int g = before.group("G", "", "");
    const int surface = before.graph.addInputGroup(g, QStringLiteral("Surface"));
    before.graph.addInput(g, QStringLiteral("x"), surface);
    Snapshot after = before.snapshot();
    after.nodes[g].inputs[0].group = -1;
    EXPECT_EQ(compared(before.snapshot(), after), "port-group-changed G.x: Surface -> nothing\n");
    after = before.snapshot();
    after.nodes[g].groups = {QStringLiteral("Other"), QStringLiteral("Surface")};
    after.nodes[g].inputs[0].group = 1;
    EXPECT_EQ(compared(before.snapshot(), after),
              "port-groups-changed G: Surface -> Other, Surface\n");
}

TEST(DiffWiring, ARewiredInputIsReportedFromWhatToWhat)
{
    Chain host;
    const Snapshot before = host.snapshot();
    host.graph.disconnectInput(host.c, 0);
    EXPECT_EQ(compared(before, host.snapshot()), "input-rewired C.y: G.out -> nothing\n");
    host.link(host.a, "x", host.c, "y");
    EXPECT_EQ(compared(before, host.snapshot()), "input-rewired C.y: G.out -> A.x\n");
}

TEST(DiffWiring, AnOutputOfAGroupOrOfTheRendererIsRewiredToo)
{
    Chain host;
    const Snapshot before = host.snapshot();
    host.graph.removeEdge(host.graph.outputSource(host.g, 0));
    host.graph.removeEdge(host.graph.outputSource(0, 0));
    host.up("Picture", host.a, "x");
    EXPECT_EQ(compared(before, host.snapshot()),
              "output-rewired Picture: C.z -> A.x\n"
              "output-rewired G.out: G/B.y -> nothing\n");
}

TEST(DiffWiring, AnotherOutputOfTheSameNodeIsARewiring)
{
    Host host;
    const int a = host.pass("A", "", "x y");
    const int b = host.pass("B", "in", "");
    host.link(a, "x", b, "in");
    const Snapshot before = host.snapshot();
    host.graph.disconnectInput(b, 0);
    host.link(a, "y", b, "in");
    EXPECT_EQ(compared(before, host.snapshot()), "input-rewired B.in: A.x -> A.y\n");
}

TEST(DiffValues, ParametersAreComparedByTypeAndValue)
{
    Chain host;
    const Snapshot before = host.snapshot();
    host.renderer.setParameter(host.angle, 2);
    EXPECT_EQ(compared(before, host.snapshot()), "parameter-changed Angle: int 1 -> int 2\n");
    host.renderer.setParameter(host.angle, 1.0);
    EXPECT_EQ(compared(before, host.snapshot()), "parameter-changed Angle: int 1 -> double 1\n");
    host.renderer.setParameter(host.angle, QVariant());
    EXPECT_EQ(compared(before, host.snapshot()), "parameter-changed Angle: int 1 -> invalid\n");
}

TEST(DiffValues, ParametersMayBeAddedAndRemoved)
{
    Chain host;
    const Snapshot before = host.snapshot();
    host.parameter("Mode", QStringLiteral("a\n\"b\""));
    host.output("Debug");
    EXPECT_EQ(compared(before, host.snapshot()),
              "parameter-added Mode: nothing -> QString \"a\\n\\\"b\\\"\"\n"
              "output-added Debug: nothing -> unfed\n");
    EXPECT_EQ(compared(host.snapshot(), before),
              "parameter-removed Mode: QString \"a\\n\\\"b\\\"\" -> nothing\n"
              "output-removed Debug: unfed -> nothing\n");
}

TEST(DiffValues, DefaultsAreComparedByTheLastBit)
{
    Chain host;
    const auto withDefault = [&host](const QVariant& value) {
        Snapshot snapshot = host.snapshot();
        snapshot.nodes[host.a].inputs[0].defaultValue = value;
        return snapshot;
    };
    const auto change = [&](const QVariant& was, const QVariant& is) {
        return compared(withDefault(was), withDefault(is));
    };
    EXPECT_EQ(change(0.1F, 0.25F), "default-changed A.angle: float 0.1 -> float 0.25\n");
    EXPECT_EQ(change(30.0, 1500.0), "default-changed A.angle: double 30 -> double 1500\n");
    EXPECT_EQ(change(0.1, 0.1 + 1e-18), "");
    EXPECT_EQ(change(0.3, 0.1 + 0.2),
              "default-changed A.angle: double 0.3 -> double 0.30000000000000004\n");
    EXPECT_EQ(change(1200000.0, 1e6), "default-changed A.angle: double 1200000 -> double 1e+06\n");
    EXPECT_EQ(change(0.0, -0.0), "default-changed A.angle: double 0 -> double -0\n");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(change(nan, nan), "");
    EXPECT_EQ(change(nan, std::numeric_limits<double>::infinity()),
              "default-changed A.angle: double nan -> double inf\n");
    EXPECT_EQ(change(QVariantList{1, 2}, QVariantList{1, nan}),
              "default-changed A.angle: QVariantList [1,2] -> QVariantList [1,null]\n");
    EXPECT_EQ(change(QByteArray("a"), QByteArray("b")),
              "default-changed A.angle: QByteArray 61 -> QByteArray 62\n");
}

TEST(DiffValues, ForeignValuesAreComparedByWhatTheyHold)
{
    Chain host;
    const auto withParameter = [&host](const char* type, const QJsonValue& value) {
        Snapshot snapshot = host.snapshot();
        snapshot.parameters[0] = QVariant::fromValue(ForeignValue{Host::text(type), value});
        return snapshot;
    };
    const QJsonArray one{1, 2};
    const QJsonArray two{1, 3};
    EXPECT_EQ(compared(withParameter("Vec", one), withParameter("Vec", one)), "");
    EXPECT_EQ(compared(withParameter("Vec", one), withParameter("Vec", two)),
              "parameter-changed Angle: Vec [1,2] -> Vec [1,3]\n");
    EXPECT_EQ(compared(withParameter("Vec", one), withParameter("Vec3", one)),
              "parameter-changed Angle: Vec [1,2] -> Vec3 [1,2]\n");
}

TEST(DiffTexts, NothingIsAnEmptyText)
{
    EXPECT_TRUE(toText({}).isEmpty());
    EXPECT_TRUE(toJson({}).isEmpty());
}

TEST(DiffTexts, NamesStayOnTheirLine)
{
    Host host;
    const int a = host.pass("a%1\n -> ", "", "");
    const Snapshot before = host.snapshot();
    host.graph.setNodeName(a, QString());
    Snapshot after = host.snapshot();
    after.nodes[a].type = QStringLiteral("x\ny");
    EXPECT_EQ(compared(before, before), "");
    EXPECT_EQ(compared(before, after),
              "node-added [0]: nothing -> pass of type x%0Ay\n"
              "node-removed a%251%0A -%3E : pass -> nothing\n");
}

TEST(DiffTexts, JsonHoldsTheSame)
{
    Chain host;
    const Snapshot before = host.snapshot();
    host.graph.disconnectInput(host.c, 0);
    EXPECT_EQ(QJsonDocument(toJson(diff(before, host.snapshot()))).toJson(QJsonDocument::Compact),
              QByteArray("[{\"after\":\"\",\"before\":\"G.out\",\"code\":\"input-rewired\","
                         "\"path\":\"C.y\"}]"));
}

TEST(DiffCodes, AreThoseThatAreDocumented)
{
    QFile file(QStringLiteral(ORV_SOURCE_DIR "/docs/diff.md"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    std::string documented;
    const QRegularExpression row(QStringLiteral("^\\| `([a-z-]+)` "),
                                 QRegularExpression::MultilineOption);
    for (auto match = row.globalMatch(text); match.hasNext();)
        documented += match.next().captured(1).toStdString() + "\n";
    std::string known;
    const QVector<QString> codes = diffCodes();
    for (const QString& code : codes)
        known += code.toStdString() + "\n";
    EXPECT_EQ(documented, known);
}
