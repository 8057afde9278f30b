// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Steps.h"
#include "support/WildRenderer.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <QtCore/QDebug>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

using ByteList = std::vector<std::uint8_t>;

ByteList someBytes()
{
    return *rc::gen::scale(6.0, rc::gen::container<ByteList>(anyByte()));
}

/// Everything in a snapshot, to the last field.
std::string described(const Snapshot& snapshot)
{
    QString text;
    QDebug out(&text);
    const auto showPorts = [&out](const QVector<PortRecord>& ports) {
        for (const PortRecord& port : ports)
            out << port.name << port.group << port.source << port.destinations << port.defaultValue
                << "|";
        out << "\n";
    };
    for (const NodeRecord& node : snapshot.nodes) {
        out << node.name << node.parent << node.value << node.removed << node.pass << node.enabled
            << node.type << node.groups << node.children << "\n";
        showPorts(node.inputs);
        showPorts(node.outputs);
    }
    for (const EdgeRecord& edge : snapshot.edges)
        out << edge.srcNode << edge.srcIndex << edge.dstNode << edge.dstIndex << edge.removed
            << "\n";
    out << snapshot.parameters << snapshot.numOutputs << snapshot.target;
    return text.toStdString();
}

void survives(Snapshot snapshot, QVector<Problem>* losses)
{
    const QByteArray document = writeDocument(snapshot, losses);
    const std::string failure = documentFailure(document, true);
    if (!failure.empty())
        RC_FAIL(failure + "\nof\n" + document.toStdString());
}

} // namespace

RC_GTEST_PROP(Documents, HoldEverythingOfARenderer, ())
{
    WildRenderer wild(someBytes(), WildRenderer::Adding);
    const Snapshot snapshot = Snapshot::of(wild.renderer);
    QVector<Problem> losses;
    survives(snapshot, &losses);
    for (const Problem& loss : qAsConst(losses))
        RC_FAIL(loss.text.toStdString());
    RC_ASSERT(described(readDocument(writeDocument(snapshot)).snapshot) == described(snapshot));
}

RC_GTEST_PROP(Documents, HoldWhatIsLeftOfARenderer, ())
{
    WildRenderer wild(someBytes(), WildRenderer::Removing);
    QVector<Problem> losses;
    survives(Snapshot::of(wild.renderer), &losses);
    for (const Problem& loss : qAsConst(losses)) {
        // The graph has taken what it would not take again: see Graph::addEdge().
        if (loss.code != QLatin1String("edge-order") && loss.code != QLatin1String("cycle")
            && loss.code != QLatin1String("target-gone"))
            RC_FAIL(loss.text.toStdString());
    }
}

RC_GTEST_PROP(Documents, AreSoundWhateverTheyAreWrittenOf, ())
{
    WildRenderer wild(someBytes(), WildRenderer::Anything);
    survives(Snapshot::of(wild.renderer), nullptr);
}
