// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Diff.h>

#include "Document/DocumentValues.h"
#include "Model/PortNumbers.h"
#include "Model/ValueText.h"

#include <Kestrin/Orv/Inspect/ForeignValue.h>
#include <Kestrin/Orv/Inspect/Paths.h>

#include <QtCore/QDataStream>
#include <QtCore/QHash>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QStringList>

#include <algorithm>
#include <cmath>
#include <deque>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// All codes. Everything that is reported takes its code from here.
enum Code {
    DefaultChanged,
    EnabledChanged,
    InputAdded,
    InputRemoved,
    InputRenamed,
    InputRewired,
    InputsReordered,
    NodeAdded,
    NodeMoved,
    NodeRemoved,
    NodeRenamed,
    NodeValueChanged,
    OutputAdded,
    OutputRemoved,
    OutputRenamed,
    OutputRewired,
    OutputsReordered,
    ParameterAdded,
    ParameterChanged,
    ParameterRemoved,
    ParameterRenamed,
    ParametersReordered,
    PortGroupChanged,
    PortGroupsChanged,
    TargetChanged,
    TypeChanged,
    NumCodes
};

const char* const kCodes[] = {
    "default-changed",   "enabled-changed",      "input-added",        "input-removed",
    "input-renamed",     "input-rewired",        "inputs-reordered",   "node-added",
    "node-moved",        "node-removed",         "node-renamed",       "node-value-changed",
    "output-added",      "output-removed",       "output-renamed",     "output-rewired",
    "outputs-reordered", "parameter-added",      "parameter-changed",  "parameter-removed",
    "parameter-renamed", "parameters-reordered", "port-group-changed", "port-groups-changed",
    "target-changed",    "type-changed",
};
static_assert(sizeof kCodes / sizeof *kCodes == NumCodes, "a text for each code");

// Texts

/// A name alone, as in paths.
QString nameText(const QString& name)
{
    return name.isEmpty() ? QLatin1String("[unnamed]") : Paths::escaped(name);
}

// Values

/// What tells a value from others of its type; null if the type cannot be written.
QByteArray bytesOf(const QVariant& value)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    return QMetaType::save(stream, value.userType(), value.constData()) ? bytes : QByteArray();
}

bool isForeign(const QVariant& value)
{
    return value.userType() == qMetaTypeId<ForeignValue>();
}

bool isSame(const QVariant& a, const QVariant& b)
{
    if (isForeign(a) || isForeign(b)) {
        QJsonObject writtenA;
        QJsonObject writtenB;
        return writeValue(a, ValueTypes(), writtenA) == writeValue(b, ValueTypes(), writtenB)
            && writtenA == writtenB;
    }
    if (a.userType() != b.userType())
        return false;
    if (!a.isValid())
        return true;
    // QVariant takes numbers that are nearly equal for equal, and no NaN for equal to itself.
    const QByteArray bytes = bytesOf(a);
    if (!bytes.isNull() && bytes == bytesOf(b))
        return true;
    if (bytes.isNull())
        return !QMetaType::hasRegisteredComparators(a.userType()) || a == b;
    return a.userType() == QMetaType::QVariantHash && a == b; // in an order of its own
}

/// The shortest text that is read as the same number again; six digits at least, less trailing
/// zeros, for fewer would make 3e+01 of 30.
template<typename Number>
QString shortest(Number number, int maxDigits)
{
    if (std::isnan(number))
        return QLatin1String("nan");
    if (number == 0)
        return std::signbit(number) ? QLatin1String("-0") : QLatin1String("0");
    for (int digits = 6; digits < maxDigits; ++digits) {
        QString text = QString::number(static_cast<double>(number), 'g', digits);
        if (static_cast<Number>(text.toDouble()) == number)
            return text;
    }
    return QString::number(static_cast<double>(number), 'g', maxDigits);
}

QString plainText(const QVariant& value)
{
    switch (value.userType()) {
    case QMetaType::Float:
        return shortest(value.toFloat(), 9);
    case QMetaType::Double:
        return shortest(value.toDouble(), 17);
    case QMetaType::QString:
    case QMetaType::QStringList:
    case QMetaType::QVariantList:
    case QMetaType::QVariantMap:
        return compactJson(QJsonValue::fromVariant(value));
    default:
        break;
    }
    if (value.canConvert(QMetaType::QString) && value.userType() != QMetaType::QByteArray)
        return compactJson(value.toString());
    const int numShown = 64;
    const QByteArray bytes =
        value.userType() == QMetaType::QByteArray ? value.toByteArray() : bytesOf(value);
    return QString::fromLatin1(bytes.left(numShown).toHex())
        + QLatin1String(bytes.size() > numShown ? "..." : "");
}

/// A value with its type, on one line.
QString valueText(const QVariant& value)
{
    if (!value.isValid())
        return QLatin1String("invalid");
    if (isForeign(value)) {
        const auto foreign = value.value<ForeignValue>();
        return oneLine(foreign.type) + QLatin1Char(' ') + compactJson(foreign.value);
    }
    switch (value.userType()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return QLatin1String(value.typeName()) + QLatin1Char(' ') + value.toString();
    default:
        return QLatin1String(value.typeName()) + QLatin1Char(' ') + plainText(value);
    }
}

// Snapshots

/// One of the two snapshots, and what each part of it is in the other.
struct Side
{
    explicit Side(const Snapshot& shown)
        : snapshot(shown)
        , paths(shown)
        , ports(shown)
        , matches(tableOf(shown.nodes.size(), -1))
        , portMatches(tableOf(ports.size(), -1))
        , isListed(tableOf(shown.nodes.size(), char(0)))
    {
        // What lies below the root, parents before their children.
        const auto add = [this](int node) {
            at(isListed, node) = 1;
            order.push_back(node);
        };
        if (!shown.nodes.isEmpty())
            add(0);
        for (std::size_t next = 0; next < order.size(); ++next) {
            const int parent = order[next];
            for (const int child : node(parent).children) {
                if (child > 0 && child < snapshot.nodes.size() && !at(isListed, child)
                    && !node(child).removed && node(child).parent == parent)
                    add(child);
            }
        }
    }

    const NodeRecord& node(int ref) const { return snapshot.node(ref); }
    bool isShown(int ref) const
    {
        return ref >= 0 && ref < snapshot.nodes.size() && at(isListed, ref);
    }
    bool isMatched(int ref) const { return at(matches, ref) >= 0; }
    const QVector<PortRecord>& portsOf(int ref, bool isOutput) const
    {
        return isOutput ? node(ref).outputs : node(ref).inputs;
    }
    int number(const PortRef& port) const
    {
        return port.isOutput ? ports.output(port.node, port.index)
                             : ports.input(port.node, port.index);
    }
    /// The port that feeds a port; its node is -1 if there is none.
    PortRef feeder(const PortRef& port) const
    {
        const QVector<PortRecord>& list = portsOf(port.node, port.isOutput);
        if (port.index < 0 || port.index >= list.size())
            return PortRef();
        const EdgeRecord& edge = snapshot.edge(list.at(port.index).source);
        if (edge.removed || !isShown(edge.srcNode))
            return PortRef();
        const PortRef source{edge.srcNode, edge.srcIndex, true};
        if (port.isOutput)
            return node(edge.srcNode).parent == port.node ? source : PortRef();
        const int parent = node(port.node).parent;
        if (edge.srcNode == parent)
            return {edge.srcNode, edge.srcIndex, false};
        return node(edge.srcNode).parent == parent ? source : PortRef();
    }
    /// The ports that a port feeds.
    QVector<PortRef> readers(const PortRef& port) const
    {
        QVector<PortRef> found;
        const QVector<PortRecord>& list = portsOf(port.node, port.isOutput);
        if (port.index < 0 || port.index >= list.size())
            return found;
        for (const int edge : list.at(port.index).destinations) {
            const EdgeRecord& record = snapshot.edge(edge);
            if (record.removed || !isShown(record.dstNode))
                continue;
            const PortRef reader{record.dstNode, record.dstIndex,
                                 port.isOutput && record.dstNode == node(port.node).parent};
            if (feeder(reader) == port)
                found.append(reader);
        }
        return found;
    }
    /// What the port of a matched node is in the other snapshot; its node is -1 for nothing.
    PortRef matchOf(const PortRef& port) const
    {
        const int index = number(port) >= 0 ? at(portMatches, number(port)) : -1;
        if (port.node < 0 || !isMatched(port.node) || index < 0)
            return PortRef();
        return {at(matches, port.node), index, port.isOutput};
    }
    /// The text of a port that may be none.
    QString text(const PortRef& port) const { return port.node < 0 ? QString() : paths.port(port); }

    const Snapshot& snapshot;
    const Paths paths;
    const PortNumbers ports;
    Table<int> matches;     // by node
    Table<int> portMatches; // by port: its index in the node that this one's node matches
    Table<char> isListed;   // by node
    Table<int> order;       // the listed nodes
};

/// What a node looks like from outside, its name apart.
QString shapeOf(const NodeRecord& node)
{
    // A name cannot hold the separator, as it is doubled there.
    const QChar end(QLatin1Char('\n'));
    const auto add = [end](QString& shape, const QString& name) {
        shape += QString(name)
                     .replace(QLatin1Char('\\'), QLatin1String("\\\\"))
                     .replace(end, QLatin1String("\\n"));
        shape += end;
    };
    QString shape(node.pass ? QLatin1Char('p') : QLatin1Char('g'));
    add(shape, node.type);
    for (const PortRecord& input : node.inputs)
        add(shape, input.name);
    shape += end;
    for (const PortRecord& output : node.outputs)
        add(shape, output.name);
    return shape;
}

/// A name, and how many of that name came before.
using Ordinal = QPair<QString, int>;

/// Gives the elements of a list their ordinals.
class Ordinals
{
public:
    Ordinal next(const QString& name)
    {
        const int ordinal = counts[name]++;
        return {name, ordinal};
    }

private:
    QHash<QString, int> counts;
};

/// Finds out which nodes and ports are the same in both snapshots.
class Matcher
{
public:
    Matcher(Side& older, Side& newer)
        : before(older)
        , after(newer)
    {
        findShapes(before, shapesBefore);
        findShapes(after, shapesAfter);
    }

    void run()
    {
        match(0, 0);
        settle();
        matchMoved();
        matchRest();
        matchRenamedPorts();
    }

private:
    using Shapes = Table<int>; // by node: a number that nodes of the same shape share

    void findShapes(const Side& side, Shapes& shapes)
    {
        shapes = tableOf(side.snapshot.nodes.size(), -1);
        for (const int node : side.order) {
            const QString shape = shapeOf(side.node(node));
            const auto known = shapeNumbers.constFind(shape);
            const int number = known != shapeNumbers.constEnd() ? *known : shapeNumbers.size();
            if (known == shapeNumbers.constEnd())
                shapeNumbers.insert(shape, number);
            at(shapes, node) = number;
        }
    }

    void match(int older, int newer)
    {
        at(before.matches, older) = newer;
        at(after.matches, newer) = older;
        matchPorts(older, newer, false);
        matchPorts(older, newer, true);
        pairs.push_back({older, newer});
        toDescend.push_back({older, newer});
        toCompare.push_back({older, newer});
        toSpread.push_back({older, newer});
    }

    void setPortMatch(const PortRef& older, const PortRef& newer)
    {
        at(before.portMatches, before.number(older)) = newer.index;
        at(after.portMatches, after.number(newer)) = older.index;
    }

    void matchPorts(int older, int newer, bool isOutput)
    {
        const QVector<PortRecord>& olderPorts = before.portsOf(older, isOutput);
        const QVector<PortRecord>& newerPorts = after.portsOf(newer, isOutput);
        const auto isNamedAlike = [](const PortRecord& a, const PortRecord& b) {
            return a.name == b.name;
        };
        if (olderPorts.size() == newerPorts.size()
            && std::equal(olderPorts.begin(), olderPorts.end(), newerPorts.begin(), isNamedAlike)) {
            for (int i = 0; i < newerPorts.size(); ++i)
                setPortMatch({older, i, isOutput}, {newer, i, isOutput});
            return;
        }

        QHash<Ordinal, int> byName;
        Ordinals ordinals;
        for (int i = 0; i < olderPorts.size(); ++i)
            byName.insert(ordinals.next(olderPorts.at(i).name), i);
        Ordinals newerOrdinals;
        for (int i = 0; i < newerPorts.size(); ++i) {
            const auto port = byName.constFind(newerOrdinals.next(newerPorts.at(i).name));
            if (port != byName.constEnd())
                setPortMatch({older, *port, isOutput}, {newer, i, isOutput});
        }
    }

    /// Follows what the pairs found so far imply: equal names first, then agreement of wiring.
    void settle()
    {
        for (;;) {
            if (!toDescend.empty()) {
                matchChildren(take(toDescend));
            } else if (!toCompare.empty()) {
                matchByVotes(take(toCompare));
            } else if (!toSpread.empty()) {
                matchNeighbours(take(toSpread));
            } else {
                break;
            }
        }
    }

    struct Pair
    {
        int older;
        int newer;
    };

    static Pair take(std::deque<Pair>& queue)
    {
        const Pair pair = queue.front();
        queue.pop_front();
        return pair;
    }

    bool isFree(int older, int newer) const
    {
        return before.isShown(older) && after.isShown(newer) && older != 0 && newer != 0
            && !before.isMatched(older) && !after.isMatched(newer);
    }
    bool areAlike(int older, int newer) const
    {
        return isFree(older, newer) && at(shapesBefore, older) == at(shapesAfter, newer);
    }
    bool areSiblings(int older, int newer) const
    {
        const int parent = before.node(older).parent;
        return parent >= 0 && at(before.matches, parent) == after.node(newer).parent;
    }

    /// The listed children of a node.
    static Table<int> childrenOf(const Side& side, int node)
    {
        Table<int> children;
        for (const int child : side.node(node).children) {
            if (child != 0 && side.isShown(child) && side.node(child).parent == node)
                children.push_back(child);
        }
        return children;
    }

    void matchChildren(const Pair& parents)
    {
        // Passes and groups are never the same, whatever their names.
        QHash<Ordinal, int> byName;
        Ordinals ordinals[2];
        for (const int child : childrenOf(before, parents.older)) {
            const Ordinal ordinal = ordinals[before.node(child).pass].next(before.node(child).name);
            byName.insert({ordinal.first, ordinal.second * 2 + before.node(child).pass}, child);
        }
        Ordinals newerOrdinals[2];
        for (const int child : childrenOf(after, parents.newer)) {
            const bool pass = after.node(child).pass;
            const Ordinal ordinal = newerOrdinals[pass].next(after.node(child).name);
            const auto other = byName.constFind({ordinal.first, ordinal.second * 2 + pass});
            if (other != byName.constEnd() && isFree(*other, child))
                match(*other, child);
        }
    }

    /// Renamed children: of those alike, the ones whose connections and children agree most.
    void matchByVotes(const Pair& parents)
    {
        // What each output fed, for the older nodes that are left.
        using Feed = QPair<QPair<int, int>, QPair<int, int>>; // node and port, direction and input
        QHash<Feed, Table<int>> readers;
        using Look = QPair<QString, int>; // name and shape
        QHash<Look, Table<int>> holders;  // of children that look so
        bool hasOlder = false;
        for (const int child : childrenOf(before, parents.older)) {
            if (before.isMatched(child))
                continue;
            hasOlder = true;
            for (int i = 0; i < before.node(child).inputs.size(); ++i) {
                const PortRef source = before.feeder({child, i, false});
                if (source.node >= 0 && before.isMatched(source.node))
                    readers[{{source.node, source.index}, {source.isOutput, i}}].push_back(child);
            }
            for (const int inner : childrenOf(before, child))
                holders[{before.node(inner).name, at(shapesBefore, inner)}].push_back(child);
        }
        if (!hasOlder)
            return;

        struct Candidate
        {
            Pair pair;
            int votes;
        };
        Table<Candidate> candidates;
        const std::size_t tooMany = 8; // tell too little to be worth the time
        for (const int child : childrenOf(after, parents.newer)) {
            if (after.isMatched(child))
                continue;
            QHash<int, int> votes;
            Table<int> voted; // in the order of the first vote
            const auto vote = [&](int older) {
                if (!areAlike(older, child) || !areSiblings(older, child))
                    return;
                if (votes[older]++ == 0)
                    voted.push_back(older);
            };
            for (int i = 0; i < after.node(child).inputs.size(); ++i) {
                const PortRef source = after.matchOf(after.feeder({child, i, false}));
                if (source.node < 0)
                    continue;
                const auto found =
                    readers.constFind({{source.node, source.index}, {source.isOutput, i}});
                if (found != readers.constEnd() && found->size() <= tooMany)
                    std::for_each(found->begin(), found->end(), vote);
            }
            for (int i = 0; i < after.node(child).outputs.size(); ++i) {
                for (const PortRef& reader : after.readers({child, i, true})) {
                    const PortRef other = after.matchOf(reader);
                    const PortRef source = other.node >= 0 ? before.feeder(other) : PortRef();
                    if (source.node >= 0 && source.isOutput && source.index == i)
                        vote(source.node);
                }
            }
            for (const int inner : childrenOf(after, child)) {
                const auto found =
                    holders.constFind({after.node(inner).name, at(shapesAfter, inner)});
                if (found != holders.constEnd() && found->size() <= tooMany)
                    std::for_each(found->begin(), found->end(), vote);
            }
            for (const int older : voted)
                candidates.push_back({{older, child}, votes.value(older)});
        }
        std::stable_sort(candidates.begin(), candidates.end(),
                         [](const Candidate& a, const Candidate& b) { return a.votes > b.votes; });
        for (const Candidate& candidate : candidates) {
            if (isFree(candidate.pair.older, candidate.pair.newer))
                match(candidate.pair.older, candidate.pair.newer);
        }
    }

    /// From nodes that are the same to what is connected to the same port, along renamed chains.
    void matchNeighbours(const Pair& pair)
    {
        const auto tryMatch = [this](const PortRef& older, const PortRef& newer) {
            if (older.node >= 0 && newer.node >= 0 && older.index == newer.index
                && older.isOutput == newer.isOutput && areAlike(older.node, newer.node)
                && areSiblings(older.node, newer.node))
                match(older.node, newer.node);
        };
        for (const bool isOutput : {false, true}) {
            for (int i = 0; i < after.portsOf(pair.newer, isOutput).size(); ++i) {
                const PortRef newer{pair.newer, i, isOutput};
                const PortRef older = after.matchOf(newer);
                if (older.node < 0)
                    continue;
                tryMatch(before.feeder(older), after.feeder(newer));
                matchReaders(before.readers(older), after.readers(newer), tryMatch);
            }
        }
    }

    template<typename TryMatch>
    void matchReaders(const QVector<PortRef>& older, const QVector<PortRef>& newer,
                      const TryMatch& tryMatch)
    {
        // Those of one shape that read with the same input, in order.
        QHash<QPair<int, int>, QVector<PortRef>> byShape;
        for (const PortRef& reader : older) {
            if (!before.isMatched(reader.node))
                byShape[{at(shapesBefore, reader.node), reader.index}].append(reader);
        }
        if (byShape.isEmpty())
            return;
        QHash<QPair<int, int>, int> used;
        for (const PortRef& reader : newer) {
            if (after.isMatched(reader.node))
                continue;
            const QPair<int, int> key{at(shapesAfter, reader.node), reader.index};
            const auto found = byShape.constFind(key);
            if (found == byShape.constEnd())
                continue;
            int& next = used[key];
            while (next < found->size() && before.isMatched(found->at(next).node))
                ++next;
            if (next < found->size())
                tryMatch(found->at(next++), reader);
        }
    }

    /// Nodes of the same name and shape that lie elsewhere now.
    void matchMoved()
    {
        using Key = QPair<QString, int>;
        QHash<Key, QVector<int>> older;
        for (const int node : before.order) {
            if (!before.isMatched(node))
                older[{before.node(node).name, at(shapesBefore, node)}].append(node);
        }
        QHash<Key, int> used;
        for (const int node : after.order) {
            if (after.isMatched(node))
                continue;
            const Key key{after.node(node).name, at(shapesAfter, node)};
            const auto found = older.constFind(key);
            if (found == older.constEnd())
                continue;
            int& next = used[key];
            while (next < found->size() && before.isMatched(found->at(next)))
                ++next;
            if (next == found->size())
                continue;
            match(found->at(next++), node);
            settle();
        }
    }

    /// Renamed children of which no connection is as it was.
    void matchRest()
    {
        for (std::size_t i = 0; i < pairs.size(); ++i) {
            const Pair parents = pairs[i];
            QHash<int, QVector<int>> older;
            for (const int child : childrenOf(before, parents.older)) {
                const NodeRecord& node = before.node(child);
                const bool hasShape =
                    !node.type.isEmpty() || !node.inputs.isEmpty() || !node.outputs.isEmpty();
                if (!before.isMatched(child) && hasShape)
                    older[at(shapesBefore, child)].append(child);
            }
            if (older.isEmpty())
                continue;
            QHash<int, int> used;
            for (const int child : childrenOf(after, parents.newer)) {
                if (after.isMatched(child))
                    continue;
                const auto found = older.constFind(at(shapesAfter, child));
                if (found == older.constEnd())
                    continue;
                int& next = used[at(shapesAfter, child)];
                while (next < found->size() && before.isMatched(found->at(next)))
                    ++next;
                if (next == found->size())
                    continue;
                match(found->at(next++), child);
                settle();
            }
        }
    }

    /// A port of another name at the same index that is fed and read as the older one was.
    void matchRenamedPorts()
    {
        Table<QPair<PortRef, PortRef>> renamed;
        for (const Pair& pair : pairs) {
            for (const bool isOutput : {false, true}) {
                const int count = qMin(before.portsOf(pair.older, isOutput).size(),
                                       after.portsOf(pair.newer, isOutput).size());
                for (int i = 0; i < count; ++i) {
                    const PortRef older{pair.older, i, isOutput};
                    const PortRef newer{pair.newer, i, isOutput};
                    if (at(before.portMatches, before.number(older)) < 0
                        && at(after.portMatches, after.number(newer)) < 0
                        && areConnectedAlike(older, newer))
                        renamed.push_back({older, newer});
                }
            }
        }
        for (const auto& ports : renamed)
            setPortMatch(ports.first, ports.second);
    }

    /// The older port, where known; ports that have no match yet stand for those at their index.
    PortRef likelyMatch(const PortRef& newer) const
    {
        if (newer.node < 0 || !after.isMatched(newer.node))
            return PortRef();
        const PortRef match = after.matchOf(newer);
        return match.node >= 0
            ? match
            : PortRef{at(after.matches, newer.node), newer.index, newer.isOutput};
    }

    bool areConnectedAlike(const PortRef& older, const PortRef& newer) const
    {
        const PortRef feeder = after.feeder(newer);
        if (before.feeder(older) != likelyMatch(feeder)
            || (feeder.node >= 0 && !after.isMatched(feeder.node)))
            return false;
        QVector<PortRef> expected = before.readers(older);
        QVector<PortRef> found = after.readers(newer);
        if (expected.size() != found.size())
            return false;
        for (PortRef& reader : found)
            reader = likelyMatch(reader);
        const auto isBefore = [](const PortRef& a, const PortRef& b) {
            return a.node != b.node  ? a.node < b.node
                : a.index != b.index ? a.index < b.index
                                     : a.isOutput < b.isOutput;
        };
        std::sort(expected.begin(), expected.end(), isBefore);
        std::sort(found.begin(), found.end(), isBefore);
        return expected == found;
    }

    Side& before;
    Side& after;
    QHash<QString, int> shapeNumbers;
    Shapes shapesBefore;
    Shapes shapesAfter;
    Table<Pair> pairs; // all that match
    std::deque<Pair> toDescend;
    std::deque<Pair> toCompare;
    std::deque<Pair> toSpread;
};

// Changes

class Comparison
{
public:
    Comparison(const Side& older, const Side& newer)
        : before(older)
        , after(newer)
    {
    }

    QVector<Change> run()
    {
        compareTarget();
        for (const int node : after.order) {
            if (after.isMatched(node))
                compareNodes(at(after.matches, node), node);
            else
                add(NodeAdded, after.paths.node(node), QString(), kindText(after.node(node)));
        }
        for (const int node : before.order) {
            if (!before.isMatched(node))
                add(NodeRemoved, before.paths.node(node), kindText(before.node(node)), QString());
        }
        return changes;
    }

private:
    void add(Code code, const QString& path, const QString& was, const QString& is)
    {
        changes.append({QLatin1String(kCodes[code]), path, was, is});
    }

    void addNode(Code code, int newer, const QString& was, const QString& is)
    {
        add(code, after.paths.node(newer), was, is);
    }

    static QString kindText(const NodeRecord& node)
    {
        if (!node.pass)
            return QLatin1String("group");
        return node.type.isEmpty() ? QLatin1String("pass")
                                   : QLatin1String("pass of type ") + oneLine(node.type);
    }

    void compareTarget()
    {
        const int older = before.isShown(before.snapshot.target) ? before.snapshot.target : -1;
        const int newer = after.isShown(after.snapshot.target) ? after.snapshot.target : -1;
        const bool same = newer < 0 ? older < 0 : at(after.matches, newer) == older;
        if (!same)
            add(TargetChanged, QString(), targetText(before, older), targetText(after, newer));
    }

    static QString targetText(const Side& side, int node)
    {
        return node == 0 ? QLatin1String("[root]") : side.paths.node(node);
    }

    void compareNodes(int older, int newer)
    {
        const NodeRecord& was = before.node(older);
        const NodeRecord& is = after.node(newer);
        if (newer != 0 && at(before.matches, was.parent) != is.parent)
            addNode(NodeMoved, newer, before.paths.node(older), after.paths.node(newer));
        if (was.name != is.name)
            addNode(NodeRenamed, newer, nameText(was.name), nameText(is.name));
        if (was.type != is.type)
            addNode(TypeChanged, newer, oneLine(was.type), oneLine(is.type));
        if (is.pass && was.enabled != is.enabled)
            addNode(EnabledChanged, newer, enabledText(was), enabledText(is));
        if (!is.pass && was.value != is.value)
            addNode(NodeValueChanged, newer, QString::number(was.value), QString::number(is.value));
        if (was.groups != is.groups)
            addNode(PortGroupsChanged, newer, namesText(was.groups), namesText(is.groups));
        comparePorts(older, newer, false);
        comparePorts(older, newer, true);
    }

    static QString enabledText(const NodeRecord& node)
    {
        return node.enabled ? QLatin1String("enabled") : QLatin1String("disabled");
    }

    static QString namesText(const QVector<QString>& names)
    {
        QStringList escaped;
        for (const QString& name : names)
            escaped.append(nameText(name));
        return escaped.join(QLatin1String(", "));
    }

    struct Codes
    {
        Code added;
        Code removed;
        Code renamed;
        Code reordered;
    };

    static const Codes& codesOf(int node, bool isOutput)
    {
        static const Codes inputs{InputAdded, InputRemoved, InputRenamed, InputsReordered};
        static const Codes outputs{OutputAdded, OutputRemoved, OutputRenamed, OutputsReordered};
        static const Codes parameters{ParameterAdded, ParameterRemoved, ParameterRenamed,
                                      ParametersReordered};
        return isOutput ? outputs : node == 0 ? parameters : inputs;
    }

    void comparePorts(int older, int newer, bool isOutput)
    {
        const Codes& codes = codesOf(newer, isOutput);
        const QVector<PortRecord>& olderPorts = before.portsOf(older, isOutput);
        const QVector<PortRecord>& newerPorts = after.portsOf(newer, isOutput);
        Table<int> order; // the older indices of the ports that stay, as they come now
        for (int i = 0; i < newerPorts.size(); ++i) {
            const PortRef port{newer, i, isOutput};
            const PortRef match = after.matchOf(port);
            if (match.node < 0) {
                add(codes.added, after.paths.port(port), QString(), portText(after, port));
                continue;
            }
            order.push_back(match.index);
            if (olderPorts.at(match.index).name != newerPorts.at(i).name)
                add(codes.renamed, after.paths.port(port),
                    nameText(olderPorts.at(match.index).name), nameText(newerPorts.at(i).name));
            comparePort(match, port);
        }
        for (int i = 0; i < olderPorts.size(); ++i) {
            const PortRef port{older, i, isOutput};
            if (before.matchOf(port).node < 0)
                add(codes.removed, before.paths.port(port), portText(before, port), QString());
        }
        if (!std::is_sorted(order.begin(), order.end())) {
            QVector<QString> is;
            for (const int index : order)
                is.append(newerPorts.at(before.matchOf({older, index, isOutput}).index).name);
            std::sort(order.begin(), order.end());
            QVector<QString> was;
            for (const int index : order)
                was.append(olderPorts.at(index).name);
            addNode(codes.reordered, newer, namesText(was), namesText(is));
        }
    }

    /// What a new or a lost port holds and where it is connected.
    static QString portText(const Side& side, const PortRef& port)
    {
        const PortRef feeder = side.feeder(port);
        if (port.node == 0 && !port.isOutput)
            return valueText(side.snapshot.parameters.value(port.index));
        if (feeder.node >= 0)
            return QLatin1String("fed by ") + side.paths.port(feeder);
        return QLatin1String("unfed");
    }

    void comparePort(const PortRef& older, const PortRef& newer)
    {
        const PortRecord& was = before.portsOf(older.node, older.isOutput).at(older.index);
        const PortRecord& is = after.portsOf(newer.node, newer.isOutput).at(newer.index);
        const PortRef olderFeeder = before.feeder(older);
        const PortRef newerFeeder = after.feeder(newer);
        if (!isSamePort(olderFeeder, newerFeeder))
            add(newer.isOutput ? OutputRewired : InputRewired, after.paths.port(newer),
                before.text(olderFeeder), after.text(newerFeeder));
        if (newer.node == 0 && !newer.isOutput)
            compareValues(ParameterChanged, newer, before.snapshot.parameters.value(older.index),
                          after.snapshot.parameters.value(newer.index));
        else if (!newer.isOutput)
            compareValues(DefaultChanged, newer, was.defaultValue, is.defaultValue);
        comparePortGroups(older.node, was.group, newer, is.group);
    }

    /// A port that does not exist is the same as one at the same index that does not either.
    bool isSamePort(const PortRef& older, const PortRef& newer) const
    {
        if (older.node < 0 || newer.node < 0)
            return older.node < 0 && newer.node < 0;
        if (after.number(newer) >= 0)
            return after.matchOf(newer) == older;
        return before.number(older) < 0 && at(after.matches, newer.node) == older.node
            && newer.index == older.index && newer.isOutput == older.isOutput;
    }

    void compareValues(Code code, const PortRef& port, const QVariant& was, const QVariant& is)
    {
        if (!isSame(was, is))
            add(code, after.paths.port(port), valueText(was), valueText(is));
    }

    void comparePortGroups(int older, int was, const PortRef& port, int is)
    {
        const QVector<QString>& olderNames = before.node(older).groups;
        const QVector<QString>& newerNames = after.node(port.node).groups;
        const QString wasText = groupText(olderNames, was);
        const QString isText = groupText(newerNames, is);
        if (wasText != isText || (was != is && olderNames == newerNames))
            add(PortGroupChanged, after.paths.port(port), wasText, isText);
    }

    static QString groupText(const QVector<QString>& names, int group)
    {
        if (group == -1)
            return QString();
        if (group < 0 || group >= names.size())
            return QLatin1Char('[') + QString::number(group) + QLatin1Char(']');
        return nameText(names.at(group));
    }

    const Side& before;
    const Side& after;
    QVector<Change> changes;
};

} // namespace

QVector<QString> diffCodes()
{
    QVector<QString> codes;
    for (const char* code : kCodes)
        codes.append(QLatin1String(code));
    return codes;
}

QVector<Change> diff(const Snapshot& before, const Snapshot& after)
{
    Side older(before);
    Side newer(after);
    if (older.order.empty() || newer.order.empty())
        return {};
    Matcher(older, newer).run();
    return Comparison(older, newer).run();
}

QString toText(const QVector<Change>& changes)
{
    const auto shown = [](const QString& text) {
        return text.isEmpty() ? QLatin1String("nothing") : text;
    };
    QString text;
    for (const Change& change : changes) {
        text += change.code;
        if (!change.path.isEmpty())
            text += QLatin1Char(' ') + change.path;
        text += QLatin1String(": ") + shown(change.before) + QLatin1String(" -> ")
            + shown(change.after) + QLatin1Char('\n');
    }
    return text;
}

QJsonArray toJson(const QVector<Change>& changes)
{
    QJsonArray array;
    for (const Change& change : changes) {
        array.append(QJsonObject{{QLatin1String("code"), change.code},
                                 {QLatin1String("path"), change.path},
                                 {QLatin1String("before"), change.before},
                                 {QLatin1String("after"), change.after}});
    }
    return array;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
