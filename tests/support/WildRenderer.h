// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_WILDRENDERER_H
#define ORV_TESTS_WILDRENDERER_H

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Inspect/BuildRenderer.h>
#include <Kestrin/Orv/Inspect/Document.h>
#include <Kestrin/Orv/Inspect/StandInPass.h>
#include <Kestrin/Orv/Renderer.h>

#include <QtCore/QDate>
#include <QtCore/QPointF>
#include <QtCore/QStringList>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

/// A renderer grown from bytes: any tree with any wiring that the graph takes, names of all kinds,
/// and values of many.
class WildRenderer
{
public:
    /// What the bytes may do.
    enum Licence {
        Adding,   ///< nothing is ever removed, and nothing a document could not hold is done
        Removing, ///< nodes and edges, too
        Anything  ///< whatever the interface allows
    };

    WildRenderer(std::vector<std::uint8_t> source, Licence licence)
        : bytes(std::move(source))
    {
        const int kinds = licence == Adding ? 11 : licence == Removing ? 14 : 22;
        while (next < bytes.size())
            step(byte() % kinds);
    }

    Kestrin::Orv::Renderer renderer;

private:
    using Graph = Kestrin::Orv::Graph;

    int byte() { return next < bytes.size() ? bytes[next++] : 0; }

    QString name()
    {
        static const QString names[] = {
            QStringLiteral("A"),
            QStringLiteral("B"),
            QStringLiteral("Color"),
            QString(),
            QStringLiteral("a/b.c[0]>%"),
            QStringLiteral(" -> "),
            QStringLiteral("%1 %2\n\t\x7F"),
            QString::fromUtf8("\xEF\xBB\xBF\xC3\xA9\xF0\x9F\x8E\xA8"),
            QString(QChar(0xD800)) + QLatin1Char('x'),
            QString(QChar(0)) + QLatin1Char('"') + QLatin1Char('\\'),
            QStringLiteral("[removed 1]"),
        };
        const int choice = byte();
        return names[choice < 128 ? choice % 3 : choice % 11];
    }

    QVariant value(int depth = 0)
    {
        const double doubles[] = {0.0,     -0.0, 0.1,  1e300, 5e-324, 1e15, 123456789012345680.0,
                                  1.0 / 3, -2.5, 1e-7, 4e18,  0.6};
        const int choice = byte() % 22;
        const double number = doubles[byte() % 12];
        switch (choice) {
        case 0:
            return QVariant();
        case 1:
            return byte() % 2 == 0;
        case 2:
            return std::numeric_limits<int>::min() + byte();
        case 3:
            return std::numeric_limits<uint>::max() - static_cast<uint>(byte());
        case 4:
            return QVariant::fromValue(std::numeric_limits<qlonglong>::min() + byte());
        case 5:
            return QVariant::fromValue(qlonglong(1) << (byte() % 63));
        case 6:
            return QVariant::fromValue(std::numeric_limits<qulonglong>::max() - qulonglong(byte()));
        case 7:
            return QVariant::fromValue(static_cast<float>(number));
        case 8:
            return number;
        case 9:
            return QVariant::fromValue(-std::numeric_limits<float>::infinity());
        case 10:
            return std::numeric_limits<double>::infinity();
        case 11:
            return name();
        case 12:
            return QStringList{name(), name()};
        case 13:
            return name().toUtf8();
        case 14:
        case 15: {
            QVariantList list;
            for (int i = depth < 3 ? byte() % 3 : 0; i > 0; --i)
                list.append(value(depth + 1));
            return list;
        }
        case 16: {
            QVariantMap map;
            for (int i = depth < 3 ? byte() % 3 : 0; i > 0; --i)
                map.insert(name(), value(depth + 1));
            return map;
        }
        case 17:
            return QPointF(number, byte());
        case 18:
            return QDate(2000, 1, 1).addDays(byte());
        case 19:
            return QVariant::fromValue(Kestrin::Orv::Inspect::ForeignValue{
                QStringLiteral("Elsewhere"), QJsonValue(number)});
        case 20: {
            const std::uint32_t bits = static_cast<std::uint32_t>(byte()) << 23
                | static_cast<std::uint32_t>(byte()) << 11 | static_cast<std::uint32_t>(byte());
            float result = 0;
            static_assert(sizeof result == sizeof bits, "a float has 32 bits");
            std::memcpy(&result, &bits, sizeof result);
            return result == result ? QVariant::fromValue(result) : QVariant();
        }
        default:
            return byte();
        }
    }

    int anyNode() { return byte() % renderer.getGraph()->numNodesGlobal(); }

    /// A node of its own for every so many calls; most are passes.
    void addNode(int parent)
    {
        Graph& graph = *renderer.getGraph();
        const int ports = byte();
        if (ports % 4 == 0) {
            const int group = renderer.addGroup(name(), 0, 0, parent);
            for (int i = ports / 4 % 4; i > 0; --i)
                graph.addInput(group, name(), -1);
            for (int i = ports / 16 % 4; i > 0; --i)
                graph.addOutput(group, name(), -1);
            return;
        }
        Kestrin::Orv::Inspect::NodeRecord record;
        record.name = name();
        record.type = name();
        record.inputs.resize(ports / 4 % 4);
        for (Kestrin::Orv::Inspect::PortRecord& port : record.inputs) {
            port.name = name();
            port.defaultValue = byte() % 2 ? value() : QVariant();
        }
        record.outputs.resize(ports / 16 % 4);
        for (Kestrin::Orv::Inspect::PortRecord& port : record.outputs)
            port.name = name();
        renderer.addPass(record.name, new Kestrin::Orv::Inspect::StandInPass(record), parent);
    }

    void addEdge()
    {
        Graph& graph = *renderer.getGraph();
        const int node = anyNode();
        const int parent = graph.parentNode(node);
        const int sibling = graph.getNode(byte() % 8, parent);
        const int ports = byte();
        switch (byte() % 4) {
        case 0:
            graph.addUpEdge(ports % 4, node, ports / 4 % 4);
            break;
        case 1:
            graph.addDownEdge(ports % 4, node, ports / 4 % 4);
            break;
        default:
            graph.addEdge(node, ports % 4, sibling, ports / 4 % 4);
        }
    }

    void step(int kind)
    {
        Graph& graph = *renderer.getGraph();
        switch (kind) {
        case 0:
            renderer.addParameter(name(), value());
            break;
        case 1:
            renderer.addOutput(name());
            break;
        case 2:
            addNode(0);
            break;
        case 3:
            addNode(anyNode());
            break;
        case 4: {
            // A port in a group, named or not, on a group or the root.
            const int node = anyNode();
            const int group = graph.addInputGroup(node, name());
            if (!renderer.renderPass(node) && node != 0)
                graph.addInput(node, name(), byte() % 4 ? group : byte() - 5);
            break;
        }
        case 5:
            renderer.setEnabled(anyNode(), byte() % 2);
            break;
        case 6:
            renderer.setTarget(anyNode());
            break;
        case 7: {
            const int node = anyNode();
            if (!renderer.renderPass(node) && graph.nodeValue(node) < 0)
                graph.setNodeValue(node, -1 - byte());
            break;
        }
        case 8:
        case 9:
        case 10:
            addEdge();
            break;
        case 11:
            graph.removeEdge(byte());
            break;
        case 12: {
            const int node = anyNode();
            if (node != 0)
                graph.removeNode(node);
            break;
        }
        case 13:
            graph.disconnectInput(anyNode(), byte() % 3);
            break;
        case 14:
            graph.purge();
            break;
        case 15:
            graph.removeChildNode(anyNode());
            break;
        case 16:
            graph.removeInput(anyNode(), byte() % 3);
            break;
        case 17:
            graph.removeOutput(anyNode(), byte() % 3);
            break;
        case 18:
            graph.setNodeValue(anyNode(), byte() % 8 - 1);
            break;
        case 19:
            graph.addEdge(anyNode(), byte() % 3, anyNode(), byte() % 3);
            break;
        case 20:
            graph.addInput(anyNode(), name(), byte() % 3 - 1);
            break;
        default:
            renderer.addPass(name(), nullptr, anyNode());
        }
        if (graph.numNodesGlobal() == 0)
            next = bytes.size(); // nothing can be added any more
    }

    const std::vector<std::uint8_t> bytes;
    std::size_t next = 0;
};

/// Whether what the document says is what becomes of it: read and written, and read, built and
/// written. Answers what is wrong; nothing for a document that is refused.
inline std::string documentFailure(const QByteArray& document, bool mustBeSound)
{
    using namespace Kestrin::Orv::Inspect;
    const ReadResult read = readDocument(document);
    if (!read.problems.isEmpty()) {
        const Problem& problem = read.problems.first();
        if (mustBeSound)
            return "line " + std::to_string(problem.place.line) + ": " + problem.text.toStdString();
        return {};
    }
    QVector<Problem> losses;
    const QByteArray again = writeDocument(read.snapshot, &losses);
    if (!losses.isEmpty())
        return "lost: " + losses.first().text.toStdString();
    if (mustBeSound && again != document)
        return "read and written: " + again.toStdString();
    const ReadResult readAgain = readDocument(again);
    if (!readAgain.problems.isEmpty())
        return "read again: " + readAgain.problems.first().text.toStdString();
    Kestrin::Orv::Renderer renderer;
    const QVector<Problem> problems =
        buildRenderer(read.snapshot, renderer, PassFactory::standIns(), read.places);
    if (!problems.isEmpty())
        return "built: " + problems.first().text.toStdString();
    const QByteArray built = writeDocument(Snapshot::of(renderer), &losses);
    if (built != again)
        return "built: " + built.toStdString();
    return losses.isEmpty() ? std::string() : "lost: " + losses.first().text.toStdString();
}

#endif
