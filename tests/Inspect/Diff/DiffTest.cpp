// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Diff.h>

#include "Inspect/support/Host.h"
#include "Inspect/support/LargeGraphs.h"

#include <gtest/gtest.h>

#include <Kestrin/Orv/Inspect/Document.h>

#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>
#include <QtCore/QSet>

#include <algorithm>
#include <limits>
#include <random>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

std::string compared(const Snapshot& before, const Snapshot& after)
{
    return toText(diff(before, after)).toStdString();
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

} // namespace

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

// Ports

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

TEST(DiffPorts, PortsOfOneNameAreToldApartByTheirOrder)
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

// Wiring

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

// Values

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

// Texts

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

// Properties

namespace {

using Random = std::mt19937;

int below(Random& random, int limit)
{
    return static_cast<int>(random() % static_cast<unsigned>(limit));
}

/// A graph at random in which every node has a name of its own, at times that of another elsewhere.
struct RandomHost : Host
{
    Random random;
    QVector<int> nodes;

    explicit RandomHost(unsigned seed)
        : random(seed)
    {
        parameter("p", 1);
        parameter("q", 2.5);
        output("o");
        QVector<int> groups{0};
        const char* const ports[] = {"a", "a b", "a b c"};
        for (int i = 0; i < 12; ++i) {
            const int parent = groups.at(below(random, groups.size()));
            const std::string name = "n" + std::to_string(i);
            const char* inputs = ports[below(random, 3)];
            const char* outputs = ports[below(random, 3)];
            const bool isGroup = below(random, 3) == 0;
            nodes.append(isGroup ? group(name.c_str(), inputs, outputs, parent)
                                 : pass(name.c_str(), inputs, outputs, parent));
            if (isGroup)
                groups.append(nodes.last());
        }
        for (int i = 0; i < 150; ++i) {
            const int a = nodes.at(below(random, nodes.size()));
            const int b = nodes.at(below(random, nodes.size()));
            if (below(random, 3) == 0)
                graph.addDownEdge(below(random, 3), b, below(random, 3));
            else if (below(random, 3) == 0)
                graph.addUpEdge(below(random, 3), b, below(random, 3));
            else if (graph.parentNode(a) == graph.parentNode(b))
                graph.addEdge(a, below(random, 3), b, below(random, 3));
        }
    }
    int any() { return nodes.at(below(random, nodes.size())); }
};

using Lines = QVector<QString>;

/// What a change says, as that of the opposite direction says it.
Lines linesOf(const QVector<Change>& changes, bool mirrored)
{
    Lines lines;
    for (const Change& change : changes) {
        QString code = change.code;
        if (mirrored && code.endsWith(QLatin1String("-added")))
            code.replace(QLatin1String("-added"), QLatin1String("-removed"));
        else if (mirrored && code.endsWith(QLatin1String("-removed")))
            code.replace(QLatin1String("-removed"), QLatin1String("-added"));
        lines.append(code + QLatin1Char('|') + (mirrored ? change.after : change.before)
                     + QLatin1Char('|') + (mirrored ? change.before : change.after));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

} // namespace

TEST(DiffProperties, ARandomEditIsReportedAndNothingElse)
{
    for (unsigned seed = 0; seed < 1200; ++seed) {
        RandomHost host(seed);
        const Snapshot before = host.snapshot();
        const int node = host.any();
        QSet<QString> expected;
        switch (seed % 8) {
        case 0:
            host.graph.setNodeName(node, QStringLiteral("renamed"));
            expected = {QStringLiteral("node-renamed")};
            break;
        case 1:
            host.graph.setInputName(node, 0, QStringLiteral("renamed"));
            expected = {QStringLiteral("input-renamed")};
            break;
        case 2:
            host.graph.setOutputName(node, 0, QStringLiteral("renamed"));
            expected = {QStringLiteral("output-renamed")};
            break;
        case 3:
            if (host.graph.inputSource(node, 0) >= 0) {
                host.graph.removeEdge(host.graph.inputSource(node, 0));
                expected = {QStringLiteral("input-rewired")};
            }
            break;
        case 4:
            host.graph.addOutput(node, QStringLiteral("more"), -1);
            expected = {QStringLiteral("output-added")};
            break;
        case 5:
            host.renderer.setParameter(1, 0.5);
            expected = {QStringLiteral("parameter-changed")};
            break;
        case 6:
            if (host.renderer.renderPass(node)) {
                host.renderer.setEnabled(node, false);
                expected = {QStringLiteral("enabled-changed")};
            }
            break;
        default:
            host.pass("new", "x", "y", node);
            expected = {QStringLiteral("node-added")};
        }
        const QVector<Change> changes = diff(before, host.snapshot());
        ASSERT_EQ(changes.size(), expected.size()) << "seed " << seed << "\n"
                                                   << toText(changes).toStdString();
        for (const Change& change : changes)
            EXPECT_TRUE(expected.contains(change.code)) << change.code.toStdString();
        EXPECT_EQ(linesOf(diff(host.snapshot(), before), true), linesOf(changes, false))
            << "seed " << seed;
    }
}

TEST(DiffProperties, AnyTwoGraphsMirrorEachOther)
{
    for (unsigned seed = 0; seed < 400; ++seed) {
        RandomHost one(seed);
        RandomHost other(seed + 1000);
        const Snapshot before = one.snapshot();
        const Snapshot after = other.snapshot();
        EXPECT_EQ(compared(before, before), "");
        const auto count = [](const QVector<Change>& changes, const char* code) {
            return std::count_if(changes.begin(), changes.end(), [code](const Change& change) {
                return change.code == QLatin1String(code);
            });
        };
        const QVector<Change> there = diff(before, after);
        const QVector<Change> back = diff(after, before);
        EXPECT_EQ(count(there, "node-added"), count(back, "node-removed")) << seed;
        EXPECT_EQ(count(there, "node-removed"), count(back, "node-added")) << seed;
    }
}

TEST(DiffOddSnapshots, WhateverTheFieldsHoldNothingIsReadOutside)
{
    for (unsigned seed = 0; seed < 3000; ++seed) {
        Random random(seed);
        const auto any = [&random] { return below(random, 9) - 2; };
        const auto randomSnapshot = [&] {
            Snapshot snapshot;
            snapshot.nodes.resize(below(random, 6));
            snapshot.edges.resize(below(random, 8));
            for (NodeRecord& node : snapshot.nodes) {
                node.name = QString::number(below(random, 2));
                node.parent = any();
                node.value = any();
                node.removed = below(random, 4) == 0;
                node.pass = below(random, 2) == 0;
                node.children.resize(below(random, 4));
                for (int& child : node.children)
                    child = any();
                for (QVector<PortRecord>* ports : {&node.inputs, &node.outputs}) {
                    ports->resize(below(random, 4));
                    for (PortRecord& port : *ports) {
                        port.name = QString::number(below(random, 3));
                        port.group = any();
                        port.source = any();
                        port.destinations.resize(below(random, 4));
                        for (int& edge : port.destinations)
                            edge = any();
                    }
                }
            }
            for (EdgeRecord& edge : snapshot.edges)
                edge = {any(), any(), any(), any(), below(random, 4) == 0};
            snapshot.target = any();
            return snapshot;
        };
        const Snapshot one = randomSnapshot();
        const Snapshot other = randomSnapshot();
        diff(one, other);
        EXPECT_EQ(compared(one, one), "");
    }
}

// Size

namespace {

/// Another name for every node but the root.
Snapshot renamed(Snapshot snapshot)
{
    for (int i = 1; i < snapshot.nodes.size(); ++i)
        snapshot.nodes[i].name += QLatin1Char('x');
    return snapshot;
}

} // namespace

TEST(DiffSize, AChainOfAHundredThousandPassesAllRenamed)
{
    Host host;
    const int count = 100000;
    for (int i = 0; i < count; ++i)
        host.pass(std::to_string(i).c_str(), "x", "x");
    for (int i = count - 1; i > 0; --i)
        host.graph.addEdge(i, 0, i + 1, 0);
    host.output("Picture");
    host.graph.addUpEdge(0, count, 0);
    const Snapshot snapshot = host.snapshot();
    EXPECT_EQ(diff(snapshot, snapshot).size(), 0);
    EXPECT_EQ(diff(snapshot, renamed(snapshot)).size(), count);
}

TEST(DiffSize, AFanOfAHundredThousandPassesAllRenamed)
{
    Host host;
    const int count = 100000;
    host.parameter("p");
    for (int i = 0; i < count; ++i)
        host.graph.addDownEdge(0, host.pass(std::to_string(i).c_str(), "x", "x"), 0);
    const Snapshot snapshot = host.snapshot();
    EXPECT_EQ(diff(snapshot, snapshot).size(), 0);
    EXPECT_EQ(diff(snapshot, renamed(snapshot)).size(), count);
}

TEST(DiffSize, GroupsNestedTenThousandDeep)
{
    Host host;
    int parent = 0;
    for (int i = 0; i < 10000; ++i)
        parent = host.group("G", "in", "out", parent);
    const Snapshot snapshot = host.snapshot();
    Snapshot after = snapshot;
    after.nodes[parent].name = QStringLiteral("H");
    after.nodes[1].name = QStringLiteral("H");
    EXPECT_EQ(diff(snapshot, after).size(), 2);
}

TEST(DiffSize, AGroupWithAHundredThousandPortsAllRenamed)
{
    Host host;
    const int count = 100000;
    const int a = host.pass("A", "", "x");
    const int g = host.renderer.addGroup(QStringLiteral("G"), count, 0, 0);
    for (int i = 0; i < count; ++i) {
        host.graph.setInputName(g, i, QString::number(i));
        host.graph.addEdge(a, 0, g, i);
    }
    const Snapshot snapshot = host.snapshot();
    Snapshot after = snapshot;
    for (PortRecord& input : after.nodes[g].inputs)
        input.name += QLatin1Char('x');
    EXPECT_EQ(diff(snapshot, after).size(), count);
}

namespace {

void diffWithItself(LargeGraph& graph)
{
    diff(graph.snapshot, graph.snapshot);
}

void diffWithAllRenamed(LargeGraph& graph)
{
    diff(graph.snapshot, renamed(graph.snapshot));
}

template<typename Graph>
void expectLinearDiff()
{
    expectLinearUpTo<Graph>(20000, [](Graph& graph) { diffWithItself(graph); });
    expectLinearUpTo<Graph>(20000, [](Graph& graph) { diffWithAllRenamed(graph); });
}

} // namespace

TEST(DiffGrowth, IsLinearInTheLengthOfAChain)
{
    expectLinearDiff<LargeChain>();
}

TEST(DiffGrowth, IsLinearInTheWidthOfAFan)
{
    expectLinearDiff<LargeFan>();
}

TEST(DiffGrowth, IsLinearInThePortsOfAGroup)
{
    expectLinearDiff<LargeGroup>();
}

// Documentation

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
