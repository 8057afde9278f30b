// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/support/DocumentSupport.h"
#include "support/Growth.h"
#include "support/SmallStack.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

using namespace Kestrin::Orv::Inspect;

namespace {

QByteArray wrapped(const std::string& nodes, const std::string& edges)
{
    return QByteArray::fromStdString("{\"edges\":[" + edges
                                     + "],\"format\":\"orv-graph\",\"nodes\":[" + nodes
                                     + "],\"version\":1}");
}

/// Reads the document and writes it again.
/// \param expectedProblems -1 for any number of them.
void readAndWrite(const QByteArray& text, int expectedProblems)
{
    const ReadResult read = readDocument(text);
    EXPECT_EQ(read.problems.size(), expectedProblems < 0 ? read.problems.size() : expectedProblems)
        << read.problems.value(0).text.left(500).toStdString();
    QVector<Problem> losses;
    writeDocument(read.snapshot, &losses);
    EXPECT_EQ(losses.size(), 0);
}

/// Reading and writing a document of twice the size takes twice the time, not four times.
void expectLinear(int size, const std::function<QByteArray(int)>& make, int expectedProblems = 0)
{
    if (!timesCount()) {
        readAndWrite(make(size / 10), expectedProblems);
        return;
    }
    const QByteArray small = make(size);
    const QByteArray large = make(2 * size);
    const auto timeOf = [expectedProblems](const QByteArray& text) {
        return processorSeconds([&] { readAndWrite(text, expectedProblems); });
    };
    expectGrowthBelow(
        3, [&] { return timeOf(small); }, [&] { return timeOf(large); });
}

std::string passNumbered(int i)
{
    return "{\"inputs\":[\"i\"],\"outputs\":[\"o\"],\"pass\":\"\",\"path\":\"P" + std::to_string(i)
        + "\"}";
}

QByteArray chain(int size, bool closed)
{
    std::string nodes, edges;
    for (int i = 0; i < size; ++i) {
        nodes += (i ? "," : "") + passNumbered(i);
        const int next = i + 1 < size ? i + 1 : 0;
        if (next || closed)
            edges += std::string(i ? "," : "") + "\"P" + std::to_string(i) + ".o -> P"
                + std::to_string(next) + ".i\"";
    }
    return wrapped(nodes, edges);
}

} // namespace

TEST(DocumentGrowth, ChainsTakeLinearTime)
{
    expectLinear(20000, [](int size) { return chain(size, false); });
}

TEST(DocumentGrowth, AClosedChainTakesLinearTime)
{
    expectLinear(
        50000, [](int size) { return chain(size, true); }, 1);
}

TEST(DocumentGrowth, FansOfNodesOfOneNameTakeLinearTime)
{
    expectLinear(20000, [](int size) {
        std::string nodes = "{\"outputs\":[\"o\"],\"path\":\"A\"}", edges;
        for (int i = 0; i < size; ++i) {
            const std::string path = "P[" + std::to_string(i) + "]";
            nodes += ",{\"inputs\":[\"i\"],\"path\":\"" + path + "\"}";
            edges += std::string(i ? "," : "") + "\"A.o -> " + path + ".i\"";
        }
        return wrapped(nodes, edges);
    });
}

TEST(DocumentGrowth, PortsOfOneNameTakeLinearTime)
{
    expectLinear(20000, [](int size) {
        std::string ports, edges;
        for (int i = 0; i < size; ++i) {
            ports += i ? ",\"\"" : "\"\"";
            const std::string number = "[" + std::to_string(i) + "]";
            edges += std::string(i ? "," : "") + "\"G." + number + " -> G/C." + number + "\"";
        }
        return wrapped("{\"inputs\":[" + ports + "],\"path\":\"G\"},{\"inputs\":[" + ports
                           + "],\"path\":\"G/C\"}",
                       edges);
    });
}

TEST(DocumentGrowth, PortGroupsTakeLinearTime)
{
    expectLinear(20000, [](int size) {
        std::string groups, ports;
        for (int i = 0; i < size; ++i) {
            const std::string name = "\"g" + std::to_string(i) + "\"";
            groups += (i ? "," : "") + name;
            ports += std::string(i ? "," : "") + "{\"name\":\"i\",\"group\":" + name + "}";
        }
        return wrapped("{\"groups\":[" + groups + "],\"inputs\":[" + ports + "],\"path\":\"G\"}",
                       "");
    });
}

TEST(DocumentGrowth, ManyProblemsTakeLinearTime)
{
    // All in one line, so that columns are counted as well.
    expectLinear(
        20000,
        [](int size) {
            std::string nodes;
            for (int i = 0; i < size; ++i)
                nodes += i ? ",{\"path\":\"A\"}" : "{\"path\":\"A\"}";
            return wrapped(nodes, "");
        },
        -1);
}

TEST(DocumentScale, GroupsMayBeNestedToAnyDepth)
{
    const int depth = 4000;
    std::string nodes, path;
    for (int i = 0; i < depth; ++i) {
        path += i ? "/G" : "G";
        nodes += std::string(i ? "," : "") + "{\"path\":\"" + path + "\"}";
    }
    const QByteArray text = wrapped(nodes, "");
    runOnSmallStack([&text] {
        const ReadResult read = readDocument(text);
        EXPECT_EQ(read.snapshot.nodes.size(), depth + 1);
        EXPECT_EQ(readDocument(writeDocument(read.snapshot)).snapshot.nodes.size(), depth + 1);
    });
}

TEST(DocumentScale, CyclesAreLookedForWithoutRecursion)
{
    const QByteArray text = chain(20000, true);
    runOnSmallStack([&text] { EXPECT_EQ(readDocument(text).problems.size(), 1); });
}
