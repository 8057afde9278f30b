// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Diff/ComparedHost.h"
#include "Inspect/support/OddSnapshot.h"
#include "Inspect/support/Random.h"

#include <gtest/gtest.h>

#include <QtCore/QSet>

#include <algorithm>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

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
        const Snapshot one = oddSnapshot(seed);
        diff(one, oddSnapshot(seed + 3000));
        EXPECT_EQ(compared(one, one), "") << seed;
    }
}
