// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Lint.h>

#include "Model/PortNumbers.h"

#include <QtCore/QHash>
#include <QtCore/QStringList>

#include <algorithm>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// All codes. Everything that is reported takes its code from here.
enum Code {
    CycleThroughGroup,
    DeadOutput,
    DuplicateName,
    DuplicatePort,
    EmptyGroup,
    FewerReaders,
    HierarchyOutOfStep,
    InvalidDefault,
    RemovedButListed,
    SharedPass,
    StaleIndex,
    StaleTarget,
    StuckPort,
    UncountedUsers,
    UnfedGroupInput,
    UnfedGroupOutput,
    UnneededPass,
    UnreadGroupInput,
    UnreadOutput,
    UnreadParameter,
    UnregisteredPort,
    UnrelatedEdge,
    NumCodes
};

struct CodeRow
{
    const char* code;
    const char* meaning;
};

const CodeRow kCodes[] = {
    {"cycle-through-group", "passes feed each other in a cycle"},
    {"dead-output", "an output of the renderer is fed by no pass"},
    {"duplicate-name", "a node has the name of an older sibling"},
    {"duplicate-port", "a port has the name of an earlier one of its node"},
    {"empty-group", "a group holds no pass"},
    {"fewer-readers", "a group output has fewer readers than the pass output behind it has edges"},
    {"hierarchy-out-of-step", "parents and lists of children contradict each other"},
    {"invalid-default", "an input takes its default value, which is invalid"},
    {"removed-but-listed", "a removed node is still on its parent's list"},
    {"shared-pass", "two nodes have the same pass"},
    {"stale-index", "an edge names another port than the one that it is connected to"},
    {"stale-target", "the target is no live node"},
    {"stuck-port", "a port is taken by an edge that is not there"},
    {"uncounted-users", "an output has more readers than the renderer counts"},
    {"unfed-group-input", "a group hands an input in that nothing feeds"},
    {"unfed-group-output", "a group output is read but nothing inside feeds it"},
    {"unneeded-pass", "an enabled pass never runs"},
    {"unread-group-input", "an input of a group is fed but nothing inside reads it"},
    {"unread-output", "nobody reads an output"},
    {"unread-parameter", "no pass reads a parameter"},
    {"unregistered-port", "the root's ports are not those that the renderer knows"},
    {"unrelated-edge",
     "an edge carries nothing, as its ends are neither siblings nor parent and child"},
};
static_assert(sizeof kCodes / sizeof *kCodes == NumCodes, "a row for each code");

const char* const kStaggered = "Orv_bool_staggeredFirstFrame";

/// A port as the walks name it; it need not exist.
struct Position
{
    int node = -1;
    int port = -1;
};

/// Where a walk ends, and how many edges it followed.
struct End
{
    Position at;
    int steps = 0;
};

/// The output that an input takes its value from, and the way there.
struct Source
{
    bool found = false; // false: no sibling feeds the input or those that it is handed in from
    Position at;        // the output that produces the value, or the input that the way up ends at
    int ups = 0;        // down edges followed back, out of groups
    int edge = -1;      // the edge between siblings
    int downs = 0;      // up edges followed back, into groups
};

/// How values flow: for each port, where the walks of the snapshot lead. Each edge is followed
/// once, however many ports lie behind it.
class Flow
{
public:
    explicit Flow(const Snapshot& shown)
        : snapshot(shown)
        , numbers(shown)
        , ends(tableOf(numbers.size(), End()))
    {
        followAll();
    }

    /// The port that feeds a port, by number; -1 for none.
    int feeder(int node, int index, bool isOutput) const
    {
        const PortRecord& port =
            isOutput ? snapshot.output(node, index) : snapshot.input(node, index);
        const EdgeRecord& edge = snapshot.edge(port.source);
        if (edge.removed)
            return -1;
        if (isOutput) {
            return snapshot.node(edge.srcNode).parent == node
                ? numbers.output(edge.srcNode, edge.srcIndex)
                : -1;
        }
        const int parent = snapshot.node(node).parent;
        if (edge.srcNode == parent)
            return numbers.input(edge.srcNode, edge.srcIndex);
        return snapshot.node(edge.srcNode).parent == parent
            ? numbers.output(edge.srcNode, edge.srcIndex)
            : -1;
    }

    /// What produces the value of an input: Snapshot::walkToSourceNode().
    Source source(int node, int input) const
    {
        Source source;
        const End up = end(numbers.input(node, input), {node, input});
        source.at = up.at;
        source.ups = up.steps;
        const int edgeRef = snapshot.input(up.at.node, up.at.port).source;
        const EdgeRecord& edge = snapshot.edge(edgeRef);
        if (edge.removed || snapshot.node(edge.srcNode).parent != snapshot.node(up.at.node).parent)
            return source;
        source.found = true;
        source.edge = edgeRef;
        const End down = bottom(edge.srcNode, edge.srcIndex);
        source.at = down.at;
        source.downs = down.steps;
        return source;
    }

    /// What produces the value of an output: Snapshot::walkDown().
    End bottom(int node, int output) const
    {
        return end(numbers.output(node, output), {node, output});
    }

    const PortNumbers& ports() const { return numbers; }

private:
    enum State : char { Unknown, OnTheWay, Known };

    End end(int number, const Position& position) const
    {
        return number >= 0 ? at(ends, number) : End{position, 0};
    }

    /// One step of walkUp() or walkDown(). False if there is none.
    bool step(Position& position, bool isOutput) const
    {
        const PortRecord& port = isOutput ? snapshot.output(position.node, position.port)
                                          : snapshot.input(position.node, position.port);
        const EdgeRecord& edge = snapshot.edge(port.source);
        if (edge.removed)
            return false;
        if (isOutput ? snapshot.node(edge.srcNode).parent != position.node
                     : edge.srcNode != snapshot.node(position.node).parent)
            return false;
        position = {edge.srcNode, edge.srcIndex};
        return true;
    }

    void followAll()
    {
        Table<State> states = tableOf(numbers.size(), Unknown);
        for (int node = 0; node < snapshot.nodes.size(); ++node) {
            for (int i = 0; i < snapshot.nodes.at(node).inputs.size(); ++i)
                follow({node, i}, false, states);
            for (int i = 0; i < snapshot.nodes.at(node).outputs.size(); ++i)
                follow({node, i}, true, states);
        }
    }

    void follow(Position position, bool isOutput, Table<State>& states)
    {
        End end;
        for (;;) {
            const int current = isOutput ? numbers.output(position.node, position.port)
                                         : numbers.input(position.node, position.port);
            end.at = position;
            if (current < 0 || at(states, current) == OnTheWay) // a cycle ends where it closes
                break;
            if (at(states, current) == Known) {
                end = at(ends, current);
                break;
            }
            if (!step(position, isOutput)) {
                at(states, current) = Known;
                at(ends, current) = end;
                break;
            }
            at(states, current) = OnTheWay;
            way.push_back(current);
        }
        for (; !way.empty(); way.pop_back()) {
            ++end.steps;
            at(ends, way.back()) = end;
            at(states, way.back()) = Known;
        }
    }

    const Snapshot& snapshot;
    PortNumbers numbers;
    Table<End> ends; // by port number
    Table<int> way;
};

class Linter
{
public:
    explicit Linter(const Snapshot& shown)
        : snapshot(shown)
        , paths(shown)
        , flow(shown)
        , numNodes(shown.nodes.size())
    {
    }

    QVector<Finding> run()
    {
        climbHierarchy();
        findNeeded();
        findRead();
        checkHierarchy();
        checkNames();
        checkPasses();
        checkRoot();
        checkEdges();
        checkReaders();
        checkUserCounts();
        checkCycles();
        std::stable_sort(findings.begin(), findings.end(), isBefore);
        return findings;
    }

private:
    // What is worked out first

    void climbHierarchy();
    void findNeeded();
    void findRead();

    // What is looked for

    void checkHierarchy();
    void checkParent(int node);
    void checkChildren(int node, Table<int>& listedBy);
    void checkNames();
    void checkPortNames(int node, bool isOutput);
    void checkPasses();
    void checkDefaults(int node);
    void checkRoot();
    void checkEdges();
    void checkEdgeEnd(int edge, const PortRef& connected, bool isSource);
    void checkTaken(const PortRef& port);
    void checkReaders();
    void checkInputReaders(int node, int index);
    void checkOutputReaders(int node, int index);
    void checkFewerReaders(int node, int index);
    void checkUserCounts();
    void checkCycles();
    void reportCycle(int start, const Table<int>& component, Table<int>& consumer);

    // Answers

    bool isLive(int node) const { return node >= 0 && node < numNodes && !record(node).removed; }
    bool isGroup(int node) const { return node > 0 && isLive(node) && !record(node).pass; }
    const NodeRecord& record(int node) const { return snapshot.node(node); }
    bool isRead(int number) const { return number >= 0 && at(read, number); }
    /// The circumstances under which an output that nobody reads is as it should be.
    bool mayStayUnread(int node) const
    {
        return (record(node).pass && !hasRunningPass(node)) || node == snapshot.target
            || isIdleGroup(node);
    }
    bool isIdleGroup(int node) const { return isGroup(node) && !at(holdsPass, node); }
    bool isSoundChild(int node) const
    {
        const int parent = record(node).parent;
        return parent >= 0 && parent < numNodes && !at(circular, node);
    }
    /// Graph::contains(), for nodes whose parents do not form a cycle.
    bool contains(int ancestor, int node) const
    {
        return ancestor >= 0 && ancestor < numNodes && at(position, node) > at(position, ancestor)
            && at(position, node) < at(position, ancestor) + at(extent, ancestor);
    }
    bool hasRunningPass(int node) const
    {
        return node >= 0 && node < numNodes && snapshot.isLivePass(node) && at(needed, node);
    }
    int firstLedTo(const PortRecord& port) const;
    QString edgeText(int ref) const;
    QString pathOf(int node) const
    {
        if (node < 0 || node >= numNodes)
            return QLatin1String("node ") + QString::number(node)
                + QLatin1String(", which is none");
        return node == 0 ? QLatin1String("the root") : paths.node(node);
    }

    static bool isBefore(const Finding& a, const Finding& b);
    void report(Code code, int node, const QString& text);
    void report(Code code, const PortRef& port, const QString& text, int edge = -1);
    void reportEdge(Code code, int edge, const QString& text);

    const Snapshot& snapshot;
    const Paths paths;
    const Flow flow;
    const int numNodes;
    Table<char> needed;    // by node: whether the walk over the graph at setup meets it
    Table<char> holdsPass; // by node: whether a pass lies below it
    Table<char> circular;  // by node: whether its parents lead into a cycle
    Table<int> position;   // by node: where it stands when each node is followed by all below it
    Table<int> extent;     // by node: how many nodes there are of it and below it
    Table<char> read;      // by port: whether a pass or an output of the renderer takes its value
    QVector<Finding> findings;
};

// Reporting

/// The order in which findings about one node come.
int rankOf(const Finding& finding)
{
    if (finding.port.node >= 0)
        return finding.port.isOutput ? 2 : 1;
    return finding.edge >= 0 ? 3 : 0;
}

bool Linter::isBefore(const Finding& a, const Finding& b)
{
    if (a.node != b.node)
        return a.node < b.node;
    const int rank = rankOf(a);
    if (rank != rankOf(b))
        return rank < rankOf(b);
    return rank == 3 ? a.edge < b.edge : a.port.index < b.port.index;
}

void Linter::report(Code code, int node, const QString& text)
{
    findings.append({QLatin1String(kCodes[code].code), text, node, PortRef(), -1});
}

void Linter::report(Code code, const PortRef& port, const QString& text, int edge)
{
    findings.append({QLatin1String(kCodes[code].code), text, port.node, port, edge});
}

void Linter::reportEdge(Code code, int edge, const QString& text)
{
    const int node = snapshot.edge(edge).dstNode;
    findings.append({QLatin1String(kCodes[code].code), text,
                     node >= 0 && node < numNodes ? node : -1, PortRef(), edge});
}

/// Names an edge by its ends.
QString Linter::edgeText(int ref) const
{
    const EdgeRecord& edge = snapshot.edge(ref);
    const EdgeKind kind = snapshot.kindOf(ref);
    return paths.port({edge.srcNode, edge.srcIndex, kind != EdgeKind::Down}) + QLatin1String(" -> ")
        + paths.port({edge.dstNode, edge.dstIndex, kind == EdgeKind::Up});
}

QString counted(int number, const char* things)
{
    return QString::number(number) + QLatin1Char(' ') + QLatin1String(things)
        + QLatin1String(number == 1 ? "" : "s");
}

// What is worked out first

/// Tells which parents form a cycle, and which nodes have a pass below them.
void Linter::climbHierarchy()
{
    enum : char { Unknown, OnTheWay, Sound };
    Table<char> state = tableOf(numNodes, char(Unknown));
    circular = tableOf(numNodes, char(0));
    holdsPass = tableOf(numNodes, char(0));
    position = tableOf(numNodes, 0);
    extent = tableOf(numNodes, 1);
    Table<int> way;
    Table<int> order; // parents before children
    for (int start = 0; start < numNodes; ++start) {
        int node = start;
        while (node >= 0 && node < numNodes && at(state, node) == Unknown) {
            at(state, node) = OnTheWay;
            way.push_back(node);
            node = record(node).parent;
        }
        const bool inCircle =
            node >= 0 && node < numNodes && (at(state, node) == OnTheWay || at(circular, node));
        for (; !way.empty(); way.pop_back()) {
            at(state, way.back()) = Sound;
            at(circular, way.back()) = inCircle ? 1 : 0;
            order.push_back(way.back());
        }
    }
    for (auto node = order.rbegin(); node != order.rend(); ++node) {
        const int parent = record(*node).parent;
        if (parent >= 0 && parent < numNodes && isLive(*node)
            && (record(*node).pass || at(holdsPass, *node)))
            at(holdsPass, parent) = 1;
        if (isSoundChild(*node))
            at(extent, parent) += at(extent, *node);
    }
    Table<int> next = tableOf(numNodes, 0);
    int nextRoot = 0;
    for (const int node : order) {
        int& place = isSoundChild(node) ? at(next, record(node).parent) : nextRoot;
        at(position, node) = place;
        at(next, node) = place + 1;
        place += at(extent, node);
    }
}

/// The walk over the graph that decides what runs.
void Linter::findNeeded()
{
    needed = tableOf(numNodes, char(0));
    Table<int> pending;
    const auto visit = [&](int node) {
        if (node < 0 || node >= numNodes || at(needed, node))
            return;
        at(needed, node) = 1;
        pending.push_back(node);
    };
    for (int i = 0; i < record(0).outputs.size() && i < snapshot.numOutputs; ++i) {
        const End end = flow.bottom(0, i);
        if (end.steps > 0)
            visit(end.at.node);
    }
    if (snapshot.target != 0 && isLive(snapshot.target))
        visit(snapshot.target);
    while (!pending.empty()) {
        const int node = pending.back();
        pending.pop_back();
        for (int i = 0; i < record(node).inputs.size(); ++i) {
            const Source source = flow.source(node, i);
            if (source.found)
                visit(source.at.node);
        }
    }
}

/// From the inputs of passes and the outputs of the renderer back along the edges.
void Linter::findRead()
{
    read = tableOf(flow.ports().size(), char(0));
    Table<PortRef> pending;
    const auto visit = [&](const PortRef& port) {
        const int number = port.isOutput ? flow.ports().output(port.node, port.index)
                                         : flow.ports().input(port.node, port.index);
        if (number < 0 || at(read, number))
            return;
        at(read, number) = 1;
        pending.push_back(port);
    };
    for (int i = 0; i < record(0).outputs.size(); ++i)
        visit({0, i, true});
    for (int node = 1; node < numNodes; ++node) {
        if (!record(node).pass || record(node).removed)
            continue;
        for (int i = 0; i < record(node).inputs.size(); ++i)
            visit({node, i, false});
    }
    while (!pending.empty()) {
        const PortRef port = pending.back();
        pending.pop_back();
        const PortRecord& portRecord = port.isOutput ? snapshot.output(port.node, port.index)
                                                     : snapshot.input(port.node, port.index);
        if (flow.feeder(port.node, port.index, port.isOutput) < 0)
            continue;
        const EdgeRecord& edge = snapshot.edge(portRecord.source);
        visit({edge.srcNode, edge.srcIndex,
               port.isOutput || edge.srcNode != record(port.node).parent});
    }
}

// The hierarchy

void Linter::checkHierarchy()
{
    Table<int> listedBy = tableOf(numNodes, -1); // by node: the last parent that lists it
    Table<char> listedByParent = tableOf(numNodes, char(0));
    for (int node = 0; node < numNodes; ++node) {
        for (const int child : record(node).children) {
            if (child > 0 && child < numNodes && record(child).parent == node)
                at(listedByParent, child) = 1;
        }
    }
    for (int node = 0; node < numNodes; ++node) {
        if (record(node).removed)
            continue;
        if (node != 0 && !at(listedByParent, node))
            checkParent(node);
        checkChildren(node, listedBy);
    }
}

void Linter::checkParent(int node)
{
    const int parent = record(node).parent;
    QString text = paths.node(node);
    if (at(circular, node))
        text += QLatin1String(" has parents that form a cycle.");
    else if (parent < 0 || parent >= numNodes)
        text += QLatin1String(" has no parent: node ") + QString::number(parent)
            + QLatin1String(" does not exist.");
    else if (record(parent).removed)
        text += QLatin1String(" has a parent that has been removed, ") + paths.node(parent)
            + QLatin1Char('.');
    else
        text += QLatin1String(" is not among the children of its parent, ") + pathOf(parent)
            + QLatin1Char('.');
    report(HierarchyOutOfStep, node, text);
}

void Linter::checkChildren(int node, Table<int>& listedBy)
{
    const auto complain = [this, node](const QLatin1String& what, const QString& child) {
        report(HierarchyOutOfStep, node,
               (node == 0 ? QLatin1String("The root") : paths.node(node))
                   + QLatin1String(" lists a child ") + what + QLatin1String(", ") + child
                   + QLatin1Char('.'));
    };
    for (const int child : record(node).children) {
        if (child < 0 || child >= numNodes) {
            complain(QLatin1String("that does not exist"),
                     QLatin1String("node ") + QString::number(child));
            continue;
        }
        if (at(listedBy, child) == node)
            complain(QLatin1String("twice"), pathOf(child));
        else if (record(child).removed)
            report(RemovedButListed, child,
                   paths.node(child) + QLatin1String(" has been removed but is still a child of ")
                       + pathOf(node) + QLatin1Char('.'));
        else if (record(child).parent != node)
            complain(QLatin1String("that has another parent"), pathOf(child));
        at(listedBy, child) = node;
    }
}

// Names

void Linter::checkNames()
{
    QHash<QString, int> firsts;
    for (int node = 0; node < numNodes; ++node) {
        if (record(node).removed)
            continue;
        firsts.clear();
        for (const int child : record(node).children) {
            if (!isLive(child) || record(child).parent != node)
                continue;
            const auto first = firsts.constFind(record(child).name);
            if (first == firsts.constEnd())
                firsts.insert(record(child).name, child);
            else if (*first != child)
                report(DuplicateName, child,
                       paths.node(child) + QLatin1String(" has the name of an older sibling, ")
                           + paths.node(*first)
                           + QLatin1String(", which is the only one that look-ups by name find."));
        }
        checkPortNames(node, false);
        checkPortNames(node, true);
    }
}

void Linter::checkPortNames(int node, bool isOutput)
{
    const QVector<PortRecord>& ports = isOutput ? record(node).outputs : record(node).inputs;
    QHash<QString, int> firsts;
    for (int i = 0; i < ports.size(); ++i) {
        const QString& name = ports.at(i).name;
        if (name.isEmpty())
            continue; // ports that go without names are meant to be numbered
        const auto first = firsts.constFind(name);
        if (first == firsts.constEnd())
            firsts.insert(name, i);
        else
            report(DuplicatePort, PortRef{node, i, isOutput},
                   paths.port({node, i, isOutput}) + QLatin1String(" has the name of ")
                       + paths.port({node, *first, isOutput})
                       + QLatin1String(", which is the only one that look-ups by name find."));
    }
}

// Passes and groups

void Linter::checkPasses()
{
    QHash<int, int> firsts;
    for (int node = 1; node < numNodes; ++node) {
        if (!isLive(node))
            continue;
        if (!record(node).pass) {
            const int parent = record(node).parent;
            if (isIdleGroup(node) && record(node).value < 0 && !isIdleGroup(parent))
                report(EmptyGroup, node, paths.node(node) + QLatin1String(" holds no pass."));
            continue;
        }
        const auto first = firsts.constFind(record(node).value);
        if (first == firsts.constEnd())
            firsts.insert(record(node).value, node);
        else
            report(SharedPass, node,
                   paths.node(node) + QLatin1String(" has the same pass as ") + paths.node(*first)
                       + QLatin1String(", which therefore takes the inputs of both."));
        if (!record(node).enabled)
            continue;
        if (!hasRunningPass(node)) {
            report(UnneededPass, node,
                   paths.node(node)
                       + (isGroup(snapshot.target) && contains(snapshot.target, node)
                              ? QLatin1String(" never runs: a target that is a group asks for what "
                                              "feeds the group, not for what lies inside it.")
                              : QLatin1String(" never runs: neither an output of the renderer nor "
                                              "the target needs it.")));
        }
        checkDefaults(node);
    }
}

void Linter::checkDefaults(int node)
{
    for (int i = 0; i < record(node).inputs.size(); ++i) {
        if (record(node).inputs.at(i).defaultValue.isValid())
            continue;
        const Source source = flow.source(node, i);
        QString reason;
        if (!source.found) {
            if (source.ups > 0 && source.at.node == 0)
                continue; // a parameter
            reason = QLatin1String("nothing feeds ")
                + (source.ups > 0 ? paths.input(source.at.node, source.at.port)
                                  : QLatin1String("it"));
        } else if (!record(source.at.node).pass) {
            reason = QLatin1String("it reads ") + paths.output(source.at.node, source.at.port)
                + QLatin1String(", which no pass feeds");
        } else if (!record(source.at.node).enabled) {
            reason = QLatin1String("it reads ") + paths.output(source.at.node, source.at.port)
                + QLatin1String(", whose pass is disabled");
        } else {
            continue;
        }
        report(InvalidDefault, PortRef{node, i, false},
               paths.input(node, i) + QLatin1String(" takes its default value, which is invalid: ")
                   + reason + QLatin1Char('.'));
    }
}

// The renderer

void Linter::checkRoot()
{
    const NodeRecord& root = record(0);
    if (snapshot.target != -1 && !isLive(snapshot.target)) {
        report(StaleTarget, 0,
               QLatin1String("The target, node ") + QString::number(snapshot.target)
                   + (snapshot.target >= 0 && snapshot.target < numNodes
                          ? QLatin1String(", has been removed.")
                          : QLatin1String(", does not exist.")));
    }
    if (!isLive(0))
        return;

    if (root.inputs.size() < snapshot.parameters.size()) {
        report(UnregisteredPort, 0,
               QLatin1String("The renderer has ") + QString::number(snapshot.parameters.size())
                   + QLatin1String(" parameters but the root has ")
                   + QString::number(root.inputs.size()) + QLatin1String(" inputs."));
    }
    if (root.outputs.size() < snapshot.numOutputs) {
        report(UnregisteredPort, 0,
               QLatin1String("The renderer has ") + QString::number(snapshot.numOutputs)
                   + QLatin1String(" outputs but the root has ")
                   + QString::number(root.outputs.size()) + QLatin1Char('.'));
    }
    for (int i = 0; i < root.inputs.size(); ++i) {
        if (i >= snapshot.parameters.size())
            report(UnregisteredPort, PortRef{0, i, false},
                   paths.input(0, i)
                       + QLatin1String(" is an input of the root but no parameter of the renderer: "
                                       "its readers take an invalid value."));
        else if (!isRead(flow.ports().input(0, i))
                 && root.inputs.at(i).name != QLatin1String(kStaggered))
            report(UnreadParameter, PortRef{0, i, false},
                   QLatin1String("No pass reads the parameter ") + paths.input(0, i)
                       + QLatin1Char('.'));
    }
    for (int i = 0; i < root.outputs.size(); ++i) {
        if (i >= snapshot.numOutputs) {
            report(UnregisteredPort, PortRef{0, i, true},
                   paths.output(0, i)
                       + QLatin1String(" is an output of the root but none of the renderer: it is "
                                       "never filled."));
            continue;
        }
        const End end = flow.bottom(0, i);
        if (end.steps > 0 && record(end.at.node).pass)
            continue;
        report(DeadOutput, PortRef{0, i, true},
               QLatin1String("No pass feeds the output ") + paths.output(0, i)
                   + (end.steps > 0
                          ? QLatin1String(": it reads ") + paths.output(end.at.node, end.at.port)
                              + QLatin1String(", which nothing feeds")
                          : QString())
                   + QLatin1Char('.'));
    }
}

// Edges

void Linter::checkEdges()
{
    // Where each edge is connected, as the ports have it.
    const int numEdges = snapshot.edges.size();
    Table<PortRef> leaves = tableOf(numEdges, PortRef());
    Table<PortRef> feeds = tableOf(numEdges, PortRef());
    const auto isEdge = [numEdges](int edge) { return edge >= 0 && edge < numEdges; };
    for (int node = 0; node < numNodes; ++node) {
        if (record(node).removed)
            continue;
        for (const bool isOutput : {false, true}) {
            const QVector<PortRecord>& ports =
                isOutput ? record(node).outputs : record(node).inputs;
            for (int i = 0; i < ports.size(); ++i) {
                const PortRef port{node, i, isOutput};
                const EdgeRecord& source = snapshot.edge(ports.at(i).source);
                if (ports.at(i).source != -1 && source.removed)
                    checkTaken(port);
                else if (isEdge(ports.at(i).source)
                         && (at(feeds, ports.at(i).source).node < 0
                             || (source.dstNode == node && source.dstIndex == i)))
                    at(feeds, ports.at(i).source) = port;
                for (const int edge : ports.at(i).destinations) {
                    if (isEdge(edge)
                        && (at(leaves, edge).node < 0
                            || (snapshot.edges.at(edge).srcNode == node
                                && snapshot.edges.at(edge).srcIndex == i)))
                        at(leaves, edge) = port;
                }
            }
        }
    }
    for (int edge = 0; edge < numEdges; ++edge) {
        if (snapshot.edges.at(edge).removed)
            continue;
        if (snapshot.kindOf(edge) == EdgeKind::None)
            reportEdge(UnrelatedEdge, edge,
                       edgeText(edge)
                           + QLatin1String(" carries nothing: its ends are neither siblings nor "
                                           "parent and child."));
        checkEdgeEnd(edge, at(leaves, edge), true);
        checkEdgeEnd(edge, at(feeds, edge), false);
    }
}

/// What an edge says of one of its ends against what the ports say.
void Linter::checkEdgeEnd(int edge, const PortRef& connected, bool isSource)
{
    const EdgeRecord& edgeRecord = snapshot.edges.at(edge);
    const int node = isSource ? edgeRecord.srcNode : edgeRecord.dstNode;
    const int index = isSource ? edgeRecord.srcIndex : edgeRecord.dstIndex;
    if (connected.node == node && connected.index == index)
        return;

    const EdgeKind kind = snapshot.kindOf(edge);
    const bool isOutput = isSource ? kind != EdgeKind::Down : kind == EdgeKind::Up;
    const bool exists = isOutput ? index >= 0 && index < record(node).outputs.size()
                                 : index >= 0 && index < record(node).inputs.size();
    const QString named = QLatin1String(isOutput ? "output " : "input ") + QString::number(index)
        + QLatin1String(" of ") + pathOf(node)
        + (exists ? QLatin1String(", now ") + paths.port({node, index, isOutput})
                  : QLatin1String(", which does not exist"));
    const QString meant = connected.node >= 0
        ? QLatin1String("but is connected to ") + paths.port(connected)
        : QLatin1String("but no port of the node has it");
    reportEdge(StaleIndex, edge,
               QLatin1String("Edge ") + QString::number(edge)
                   + QLatin1String(isSource ? " leaves " : " enters ") + named + QLatin1String(", ")
                   + meant + QLatin1Char('.'));
}

void Linter::checkTaken(const PortRef& port)
{
    const int edge = (port.isOutput ? snapshot.output(port.node, port.index)
                                    : snapshot.input(port.node, port.index))
                         .source;
    report(StuckPort, port,
           paths.port(port)
               + (edge >= 0 && edge < snapshot.edges.size()
                      ? QLatin1String(" is taken by an edge that has been removed")
                      : QLatin1String(" is taken by an edge that does not exist"))
               + QLatin1String(", so that nothing can feed it."),
           edge);
}

// Readers

void Linter::checkReaders()
{
    for (int node = 1; node < numNodes; ++node) {
        if (!isLive(node))
            continue;
        if (isGroup(node) && !isIdleGroup(node)) {
            for (int i = 0; i < record(node).inputs.size(); ++i)
                checkInputReaders(node, i);
        }
        for (int i = 0; i < record(node).outputs.size(); ++i) {
            checkOutputReaders(node, i);
            checkFewerReaders(node, i);
        }
    }
}

/// The first port that a port feeds, by the number of the edge; -1 for none.
int Linter::firstLedTo(const PortRecord& port) const
{
    for (const int edge : port.destinations) {
        if (snapshot.kindOf(edge) != EdgeKind::None)
            return edge;
    }
    return -1;
}

void Linter::checkInputReaders(int node, int index)
{
    const bool wanted = isRead(flow.ports().input(node, index));
    const PortRecord& port = record(node).inputs.at(index);
    const int feeder = flow.feeder(node, index, false);
    if (wanted && port.source == -1) {
        report(UnfedGroupInput, PortRef{node, index, false},
               QLatin1String("Nothing feeds ") + paths.input(node, index)
                   + QLatin1String(", which is read inside the group."));
    } else if (!wanted && isRead(feeder)) {
        report(UnreadGroupInput, PortRef{node, index, false},
               QLatin1String("Nothing inside the group reads ") + paths.input(node, index)
                   + QLatin1Char('.'));
    }
}

void Linter::checkOutputReaders(int node, int index)
{
    const bool wanted = isRead(flow.ports().output(node, index));
    const PortRecord& port = record(node).outputs.at(index);
    const int feeder = flow.feeder(node, index, true);
    const bool group = isGroup(node);
    if (wanted) {
        if (group && !isIdleGroup(node) && port.source == -1)
            report(UnfedGroupOutput, PortRef{node, index, true},
                   QLatin1String("Nothing inside the group feeds ") + paths.output(node, index)
                       + QLatin1String(", which is read outside."));
    } else if (!mayStayUnread(node) && (group ? isRead(feeder) : feeder < 0 || isRead(feeder))) {
        const int led = firstLedTo(port);
        const EdgeRecord& edge = snapshot.edge(led);
        report(UnreadOutput, PortRef{node, index, true},
               QLatin1String("Nobody reads ") + paths.output(node, index)
                   + (led >= 0 ? QLatin1String(": ")
                              + paths.port({edge.dstNode, edge.dstIndex,
                                            snapshot.kindOf(led) == EdgeKind::Up})
                              + QLatin1String(", which it feeds, leads to no pass")
                               : QString())
                   + QLatin1Char('.'));
    }
}

/// The renderer counts the users of a pass output by looking at as many readers of the group output
/// that it feeds as there are edges from the pass output. There should be that many.
void Linter::checkFewerReaders(int node, int index)
{
    const int parent = record(node).parent;
    const QVector<int>& destinations = record(node).outputs.at(index).destinations;
    if (!record(node).pass || parent <= 0)
        return;
    for (const int edge : destinations) {
        const int groupOutput = snapshot.edge(edge).dstIndex;
        if (snapshot.kindOf(edge) != EdgeKind::Up)
            continue;
        const int numReaders = snapshot.output(parent, groupOutput).destinations.size();
        if (numReaders == 0 || numReaders >= destinations.size())
            continue;
        report(FewerReaders, PortRef{parent, groupOutput, true},
               paths.output(parent, groupOutput) + QLatin1String(" has ")
                   + counted(numReaders, "reader") + QLatin1String(", fewer than the ")
                   + counted(destinations.size(), "edge") + QLatin1String(" that leave ")
                   + paths.output(node, index) + QLatin1String(", which feeds it."),
               edge);
    }
}

/// How many users the renderer counts for an output, by the rule of its setup.
class UserCount
{
public:
    UserCount(const Snapshot& shown, const PortNumbers& portNumbers,
              const Table<char>& visitedNodes)
        : snapshot(shown)
        , ports(portNumbers)
        , visited(visitedNodes)
        , handedIn(tableOf(ports.size(), 0))
        , firstSum(tableOf(ports.size(), 0))
    {
        for (int node = 0; node < snapshot.nodes.size(); ++node) {
            const NodeRecord& record = snapshot.nodes.at(node);
            for (int i = 0; i < record.inputs.size(); ++i) {
                int& sum = at(handedIn, ports.input(node, i));
                for (const int edge : record.inputs.at(i).destinations)
                    sum += isVisited(snapshot.edge(edge).dstNode);
            }
            for (int i = 0; i < record.outputs.size(); ++i) {
                at(firstSum, ports.output(node, i)) = static_cast<int>(sums.size());
                int sum = 0;
                sums.push_back(sum);
                for (const int edge : record.outputs.at(i).destinations) {
                    sum += isVisitedOrRoot(snapshot.edge(edge).dstNode);
                    sums.push_back(sum);
                }
            }
        }
    }

    template<typename Contains>
    int of(int node, int output, const Contains& contains) const
    {
        const QVector<int>& destinations = snapshot.output(node, output).destinations;
        const int parent = snapshot.node(node).parent;
        int count = 0;
        for (const int destination : destinations) {
            const EdgeRecord& edge = snapshot.edge(destination);
            const int dest = edge.dstNode;
            if (!snapshot.node(dest).children.isEmpty() && !contains(dest, node)) {
                const int input = ports.input(dest, edge.dstIndex);
                count += input >= 0 ? at(handedIn, input) : 0;
            }
            if (dest != parent) {
                count += isVisitedOrRoot(dest);
            } else if (parent == 0) {
                ++count;
            } else {
                const int groupOutput = ports.output(parent, edge.dstIndex);
                const int numReaders = snapshot.output(parent, edge.dstIndex).destinations.size();
                if (groupOutput >= 0)
                    count +=
                        at(sums, at(firstSum, groupOutput) + qMin(numReaders, destinations.size()));
                count += isVisited(parent);
            }
        }
        return count;
    }

private:
    bool isVisited(int node) const
    {
        return node >= 0 && node < snapshot.nodes.size() && at(visited, node);
    }
    bool isVisitedOrRoot(int node) const { return node == 0 || isVisited(node); }

    const Snapshot& snapshot;
    const PortNumbers& ports;
    const Table<char>& visited;
    Table<int> handedIn; // by input: how many of the nodes that it is handed in to are visited
    Table<int> sums;     // for each output: of its first 0, 1, 2... readers, how many are visited
    Table<int> firstSum; // by output: where those begin
};

void Linter::checkUserCounts()
{
    const PortNumbers& ports = flow.ports();
    Table<int> places = tableOf(snapshot.edges.size(), 0); // by edge: among those of its output
    for (const NodeRecord& node : snapshot.nodes) {
        for (const PortRecord& output : node.outputs) {
            for (int i = output.destinations.size() - 1; i >= 0; --i) {
                const int edge = output.destinations.at(i);
                if (edge >= 0 && edge < snapshot.edges.size())
                    at(places, edge) = i;
            }
        }
    }

    // Who takes the value of which output, and who of them goes uncounted.
    Table<int> numUsers = tableOf(ports.size(), 0);
    QHash<int, QVector<PortRef>> uncounted;
    const auto addUser = [&](const PortRef& user, const Position& output, int edge, int ups,
                             int downs) {
        const int number = ports.output(output.node, output.port);
        if (number < 0 || !hasRunningPass(output.node))
            return;
        ++at(numUsers, number);
        const int numEdges = snapshot.output(output.node, output.port).destinations.size();
        const bool isCounted =
            downs == 0 ? ups <= 1 : downs == 1 && ups == 0 && at(places, edge) < numEdges;
        if (!isCounted)
            uncounted[number].append(user);
    };
    for (int node = 1; node < numNodes; ++node) {
        if (!hasRunningPass(node))
            continue;
        for (int i = 0; i < record(node).inputs.size(); ++i) {
            const Source source = flow.source(node, i);
            if (source.found)
                addUser({node, i, false}, source.at, source.edge, source.ups, source.downs);
        }
    }
    for (int i = 0; i < record(0).outputs.size() && i < snapshot.numOutputs; ++i) {
        const int edge = snapshot.output(0, i).source;
        const End end = flow.bottom(0, i);
        if (end.steps > 0)
            addUser({0, i, true}, end.at, edge, 0, end.steps - 1);
    }

    const UserCount userCount(snapshot, ports, needed);
    const int numShown = 3;
    for (int node = 1; node < numNodes; ++node) {
        if (!hasRunningPass(node) || at(circular, node))
            continue;
        for (int i = 0; i < record(node).outputs.size(); ++i) {
            const int number = ports.output(node, i);
            const int count = userCount.of(
                node, i, [this](int ancestor, int below) { return contains(ancestor, below); });
            if (count >= at(numUsers, number))
                continue;
            const QVector<PortRef> users = uncounted.value(number);
            QStringList names;
            for (int k = 0; k < users.size() && k < numShown; ++k)
                names.append(paths.port(users.at(k)));
            if (users.size() > numShown)
                names.append(QString::number(users.size() - numShown) + QLatin1String(" more"));
            report(UncountedUsers, PortRef{node, i, true},
                   paths.output(node, i) + QLatin1String(" has ")
                       + counted(at(numUsers, number), "user")
                       + QLatin1String(", of whom the renderer counts ") + QString::number(count)
                       + QLatin1String("; not counted: ") + names.join(QLatin1String(", "))
                       + QLatin1Char('.'));
        }
    }
}

// Cycles

/// Finds the sets of nodes in which each lies upstream of every other: Tarjan's algorithm, with the
/// path on a list of its own.
void Linter::checkCycles()
{
    struct Step
    {
        int node;
        int nextInput;
    };
    const int none = -1;
    Table<int> indices = tableOf(numNodes, none);
    Table<int> lows = tableOf(numNodes, 0);
    Table<int> component = tableOf(numNodes, none); // by node: the first node of its set
    Table<char> readsItself = tableOf(numNodes, char(0));
    Table<int> open;
    Table<Step> path;
    Table<int> cycles; // the first node of each
    int nextIndex = 0;
    const auto enter = [&](int node) {
        at(indices, node) = at(lows, node) = nextIndex++;
        open.push_back(node);
        path.push_back({node, 0});
    };
    for (int start = 1; start < numNodes; ++start) {
        if (at(indices, start) != none || record(start).removed)
            continue;
        enter(start);
        while (!path.empty()) {
            const int node = path.back().node;
            if (path.back().nextInput < record(node).inputs.size()) {
                const Source source = flow.source(node, path.back().nextInput++);
                const int producer = source.at.node;
                if (!source.found || !isLive(producer))
                    continue;
                if (producer == node)
                    at(readsItself, node) = 1;
                if (at(indices, producer) == none)
                    enter(producer);
                else if (at(component, producer) == none)
                    at(lows, node) = qMin(at(lows, node), at(indices, producer));
                continue;
            }
            path.pop_back();
            if (!path.empty()) {
                int& low = at(lows, path.back().node);
                low = qMin(low, at(lows, node));
            }
            if (at(lows, node) != at(indices, node))
                continue;
            // All from `node` on make one set.
            auto first = open.end();
            int smallest = node;
            bool hasPass = false;
            do {
                --first;
                smallest = qMin(smallest, *first);
                hasPass = hasPass || record(*first).pass;
            } while (*first != node);
            const auto size = open.end() - first;
            for (auto member = first; member != open.end(); ++member)
                at(component, *member) = smallest;
            open.erase(first, open.end());
            if (hasPass && (size > 1 || at(readsItself, node)))
                cycles.push_back(smallest);
        }
    }
    Table<int> consumer = tableOf(numNodes, none);
    for (const int cycle : cycles)
        reportCycle(cycle, component, consumer);
}

/// Reports the shortest cycle through `start`.
/// \param consumer by node: who was found to read it; -1 in all of this set at first.
void Linter::reportCycle(int start, const Table<int>& component, Table<int>& consumer)
{
    Table<int> pending{start};
    int closing = -1; // the node that reads `start`
    for (std::size_t next = 0; next < pending.size() && closing < 0; ++next) {
        const int node = pending[next];
        for (int i = 0; i < record(node).inputs.size(); ++i) {
            const Source source = flow.source(node, i);
            const int producer = source.at.node;
            if (!source.found || !isLive(producer) || at(component, producer) != start)
                continue;
            if (producer == start) {
                closing = node;
                break;
            }
            if (at(consumer, producer) < 0) {
                at(consumer, producer) = node;
                pending.push_back(producer);
            }
        }
    }
    if (closing < 0)
        return;

    // From `start` along the flow of values.
    const int numShown = 16;
    QStringList names;
    int length = 0;
    int beforeStart = start;
    for (int node = closing; node != start; node = at(consumer, node)) {
        if (++length < numShown)
            names.append(paths.node(node));
        beforeStart = node;
    }
    if (length >= numShown)
        names.append(QString::number(length + 1 - numShown) + QLatin1String(" more"));
    names.prepend(paths.node(start));
    names.append(paths.node(start));

    int input = 0;
    for (; input < record(start).inputs.size(); ++input) {
        const Source source = flow.source(start, input);
        if (source.found && source.at.node == beforeStart)
            break;
    }
    report(CycleThroughGroup, PortRef{start, input, false},
           QLatin1String("Values run in a cycle: ") + names.join(QLatin1String(" -> "))
               + QLatin1Char('.'),
           snapshot.input(start, input).source);
}

} // namespace

QVector<LintCode> lintCodes()
{
    QVector<LintCode> codes;
    for (const CodeRow& row : kCodes)
        codes.append({QLatin1String(row.code), QLatin1String(row.meaning)});
    return codes;
}

QVector<Finding> lint(const Snapshot& snapshot)
{
    return Linter(snapshot).run();
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
