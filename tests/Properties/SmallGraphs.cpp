// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "SmallGraphs.h"

#include "GraphTables.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <utility>

namespace {

using Library = Kestrin::Orv::Graph;
using Model = Oracle::Graph;

/// An answer that the oracle leaves open.
const int kOpen = INT_MIN + 12345;

bool wasOpen(const Library&)
{
    return false;
}
bool wasOpen(const Model& model)
{
    return std::exchange(model.open, false);
}

std::uint64_t mixed(std::uint64_t digest, std::uint64_t value)
{
    digest = (digest ^ value) * 0x9FB21C651E98DF25u;
    return digest ^ digest >> 32;
}

std::uint64_t digestOf(const std::string& bytes, std::uint64_t digest)
{
    for (std::size_t at = 0; at < bytes.size(); at += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + at, std::min<std::size_t>(8, bytes.size() - at));
        digest = mixed(digest, word);
    }
    return mixed(digest, bytes.size());
}

/// The answers to all queries, as numbers, in a fixed order.
struct Answers
{
    std::vector<int> values;
    std::vector<std::string> questions; // if they are wanted
    bool wantsQuestions = false;
    bool anyOpen = false;

    std::uint64_t digest() const
    {
        std::uint64_t all = 1;
        for (const int value : values)
            all = mixed(all, static_cast<std::uint32_t>(value));
        return std::max<std::uint64_t>(all, 1);
    }
};

template<typename G>
class Interview
{
public:
    Interview(const G& asked, Answers& answers)
        : g(asked)
        , into(answers)
    {
    }

    void run()
    {
        const int numNodes = g.numNodesGlobal();
        const int numEdges = g.numEdgesGlobal();
        note("numNodesGlobal", numNodes);
        note("numEdgesGlobal", numEdges);
        // One slot more than there are on either side: what answers for nothing is asked, too.
        for (int n = -1; n <= numNodes; ++n) {
            node(n);
            for (int m = -1; m <= numNodes; ++m)
                pair(n, m);
        }
        for (int e = -1; e <= numEdges; ++e)
            edge(e);
    }

private:
#define ORV_ASK(query, ...) note(#query "(" #__VA_ARGS__ ")", g.query(__VA_ARGS__), __VA_ARGS__)

    void node(int n)
    {
        ORV_ASK(isValidNode, n);
        ORV_ASK(parentNode, n);
        ORV_ASK(nodeName, n);
        ORV_ASK(nodeValue, n);
        ORV_ASK(indexOfNode, n);
        const int numChildren = ORV_ASK(numNodes, n);
        for (int i = -1; i <= numChildren; ++i)
            ORV_ASK(getNode, i, n);
        note("findNode", g.findNode(QString(), n), n);
        note("findNodeFromValue", g.findNodeFromValue(-1, n), n);
        note("findInput", g.findInput(n, QStringLiteral("a")), n);
        note("findOutput", g.findOutput(n, QStringLiteral("a")), n);
        ORV_ASK(numInputGroups, n);
        const int inputs = ORV_ASK(numInputs, n);
        for (int p = -1; p <= inputs; ++p) {
            ORV_ASK(isValidInput, n, p);
            ORV_ASK(inputName, n, p);
            ORV_ASK(inputGroup, n, p);
            ORV_ASK(inputSource, n, p);
            const int numDestinations = ORV_ASK(numInputDestinations, n, p);
            for (int i = -1; i <= numDestinations; ++i) {
                ORV_ASK(inputDestination, n, p, i);
                ORV_ASK(isValidInputDestination, n, p, i);
            }
        }
        const int outputs = ORV_ASK(numOutputs, n);
        for (int p = -1; p <= outputs; ++p) {
            ORV_ASK(isValidOutput, n, p);
            ORV_ASK(outputName, n, p);
            ORV_ASK(outputGroup, n, p);
            ORV_ASK(outputSource, n, p);
            const int numDestinations = ORV_ASK(numOutputDestinations, n, p);
            for (int i = -1; i <= numDestinations; ++i) {
                ORV_ASK(outputDestination, n, p, i);
                ORV_ASK(isValidOutputDestination, n, p, i);
            }
        }
        for (int p = -1; p <= std::max(inputs, outputs); ++p) {
            walk("walkUp", &G::walkUp, n, p);
            walk("walkAcross", &G::walkAcross, n, p);
            walk("walkDown", &G::walkDown, n, p);
            walk("walkToSourceNode", &G::walkToSourceNode, n, p);
        }
        for (const bool follow : {false, true}) {
            noteList("BottomUpInputWalker", bottomUpInputs(g, n, follow), n, follow);
            noteList("BreadthFirstInputWalker", breadthFirstInputs(g, n, follow), n, follow);
        }
        noteList("BottomUpSubgraphWalker", bottomUpSubgraph(g, n), n, false);
    }

    void pair(int n, int m)
    {
        ORV_ASK(contains, n, m);
        ORV_ASK(precedes, n, m, false);
        ORV_ASK(precedes, n, m, true);
    }

    void edge(int e)
    {
        ORV_ASK(isValidEdge, e);
        ORV_ASK(isRegularEdge, e);
        ORV_ASK(isDownEdge, e);
        ORV_ASK(isUpEdge, e);
        ORV_ASK(edgeSourceNode, e);
        ORV_ASK(edgeSourceIndex, e);
        ORV_ASK(edgeDestNode, e);
        ORV_ASK(edgeDestIndex, e);
    }

#undef ORV_ASK

    void walk(const char* query, bool (G::*walked)(int&, int&) const, int n, int p)
    {
        int node = n, port = p;
        const bool moved = (g.*walked)(node, port);
        note(query, (moved ? 1 : 0) + 2 * (node + 8) + 128 * (port + 8), n, p);
    }

    void noteList(const char* query, const std::vector<int>& list, int n, bool follow)
    {
        std::uint64_t digest = 1;
        for (const int value : list)
            digest = mixed(digest, static_cast<std::uint32_t>(value));
        note(query, static_cast<int>(digest >> 33), n, follow);
    }

    template<typename... Args>
    void note(const char* query, const QString& answer, Args... args)
    {
        note(query, answer.isEmpty() ? -1 : answer.at(0).unicode() + 65536 * answer.size(),
             args...);
    }

    template<typename... Args>
    int note(const char* query, int answer, Args... args)
    {
        if (wasOpen(g)) {
            into.anyOpen = true;
            into.values.push_back(kOpen);
        } else {
            into.values.push_back(answer);
        }
        if (into.wantsQuestions) {
            into.questions.emplace_back(query);
            ((into.questions.back() += " " + std::to_string(int(args))), ...);
        }
        return answer;
    }

    const G& g;
    Answers& into;
};

template<typename G>
Answers ask(const G& graph, bool wantsQuestions = false)
{
    Answers answers;
    answers.values.reserve(2048);
    answers.wantsQuestions = wantsQuestions;
    Interview<G>(graph, answers).run();
    return answers;
}

/// The first question that two answer differently, or nothing.
std::string difference(const Answers& answers, const Answers& expected)
{
    const std::size_t both = std::min(answers.values.size(), expected.values.size());
    for (std::size_t i = 0; i < both; ++i) {
        if (expected.values[i] != kOpen && answers.values[i] != expected.values[i])
            return expected.questions.empty()
                ? std::string("differs")
                : expected.questions[i] + ": " + std::to_string(answers.values[i]) + " instead of "
                    + std::to_string(expected.values[i]);
    }
    return answers.values.size() == expected.values.size() ? "" : "more or fewer answers";
}

/// Every field of the library's records. A new field does not compile until it has its place here.
std::string recordsOf(const Library& graph)
{
    std::string bytes;
    const auto number = [&bytes](int value) {
        bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    };
    const auto name = [&](const QString& string) {
        number(string.size());
        bytes.append(reinterpret_cast<const char*>(string.constData()),
                     static_cast<std::size_t>(string.size()) * sizeof(QChar));
    };
    const auto list = [&number](const QVector<int>& values) {
        number(values.size());
        for (const int value : values)
            number(value);
    };
    const auto names = [&](const QVector<QString>& values) {
        number(values.size());
        for (const QString& value : values)
            name(value);
    };
    const auto ports = [&](const QVector<Kestrin::Orv::Port>& values) {
        number(values.size());
        for (const auto& [portName, source, destinations, group] : values) {
            name(portName);
            number(source);
            list(destinations);
            number(group);
        }
    };
    const Kestrin::Orv::GraphTables& tables = tablesOf(graph);
    static_assert(sizeof tables == 2 * sizeof(void*), "the two tables are all there is");
    number(tables.nodes.size());
    for (const Kestrin::Orv::Node& node : tables.nodes) {
        const auto& [nodeName, parent, value, inputs, outputs, inputGroups, outputGroups, children,
                     removed, numSourceEdges] = node;
        number(numSourceEdges);
        name(nodeName);
        number(parent);
        number(value);
        ports(inputs);
        ports(outputs);
        names(inputGroups);
        names(outputGroups);
        list(children);
        number(removed);
    }
    for (const auto& [srcNode, srcIndex, dstNode, dstIndex, removed] : tables.edges) {
        for (const int value : {srcNode, srcIndex, dstNode, dstIndex, int(removed)})
            number(value);
    }
    return bytes;
}

/// The first node whose count of source edges is not that of the table, or nothing. A count that is
/// too high gives no wrong answer, but searches that are not needed.
std::string wrongCount(const Library& graph)
{
    for (int n = 0; n < graph.numNodesGlobal(); ++n) {
        int count = 0;
        for (int e = 0; e < graph.numEdgesGlobal(); ++e)
            count += graph.edgeSourceNode(e) == n && (graph.isRegularEdge(e) || graph.isUpEdge(e));
        const int kept = tablesOf(graph).nodes.at(n).numSourceEdges;
        if (kept != count)
            return "node " + std::to_string(n) + " counts " + std::to_string(kept)
                + " source edges instead of " + std::to_string(count);
    }
    return std::string();
}

template<typename G>
void replay(G& graph, const SmallGraphs::Path& path)
{
    for (const SmallGraphs::Edit& edit : path)
        perform(graph, edit.call());
}

const int kMaxNodes = 4;
const int kMaxPorts = 2;

} // namespace

GraphCall SmallGraphs::Edit::call() const
{
    static const QString portNames[] = {QStringLiteral("a"), QStringLiteral("b")};
    GraphCall call = {};
    call.op = op;
    for (int i = 0; i < 4; ++i)
        call.ints[i] = args[i];
    if (op == GraphOp::setInputName || op == GraphOp::setOutputName)
        call.strings[0] = portNames[args[1]];
    return call;
}

SmallGraphs::SmallGraphs(const Plan& searched)
    : plan(searched)
    , basePath(base(searched))
{
}

SmallGraphs::Path SmallGraphs::base(const Plan& plan)
{
    Path path;
    const auto add = [&path](GraphOp op, int a, int b, int c = 0) {
        path.push_back({op,
                        {static_cast<std::int8_t>(a), static_cast<std::int8_t>(b),
                         static_cast<std::int8_t>(c), 0}});
    };
    for (const int parent : plan.parents)
        add(GraphOp::addNode, plan.numPorts, plan.numPorts, parent);
    for (int port = 0; port < plan.numPorts; ++port) {
        add(GraphOp::addInput, 0, -1);
        add(GraphOp::addOutput, 0, -1);
    }
    for (int node = 0; node < kMaxNodes; ++node) {
        for (int port = 0; port < plan.numPorts; ++port) {
            add(GraphOp::setInputName, node, port);
            add(GraphOp::setOutputName, node, port);
        }
    }
    if (!plan.wired)
        return path;
    for (int parent = 0; parent < kMaxNodes; ++parent) {
        int last = -1;
        for (int node = 1; node < kMaxNodes; ++node) {
            if (plan.parents[static_cast<std::size_t>(node - 1)] != parent)
                continue;
            if (last == -1)
                add(GraphOp::addDownEdge, 0, node);
            else
                add(GraphOp::addEdge, last, 0, node);
            last = node;
        }
        if (last != -1)
            add(GraphOp::addUpEdge, 0, last);
    }
    return path;
}

std::vector<SmallGraphs::Edit> SmallGraphs::editsOf(const Oracle::Graph& graph) const
{
    std::vector<Edit> edits;
    const auto add = [&edits](GraphOp op, int a = 0, int b = 0, int c = 0, int d = 0) {
        edits.push_back({op,
                         {static_cast<std::int8_t>(a), static_cast<std::int8_t>(b),
                          static_cast<std::int8_t>(c), static_cast<std::int8_t>(d)}});
    };
    const int numNodes = graph.numNodesGlobal();
    int numLive = 0;
    for (int n = 0; n < numNodes; ++n)
        numLive += graph.isValidNode(n);

    const auto allows = [this](Kind kind) { return (plan.edits & kind) != 0; };
    for (int n = 0; n < numNodes; ++n) {
        const int parent = graph.parentNode(n);
        for (int m = 0; m < numNodes; ++m) {
            const bool siblings = n != m && parent == graph.parentNode(m) && graph.isValidNode(n)
                && graph.isValidNode(m);
            if (!siblings && !allows(AnyPair))
                continue;
            for (int p = 0; p < graph.numOutputs(n); ++p) {
                for (int q = 0; q < graph.numInputs(m); ++q)
                    add(GraphOp::addEdge, n, p, m, q);
            }
        }
        for (int p = 0; p < graph.numOutputs(parent); ++p) {
            for (int q = 0; q < graph.numOutputs(n); ++q)
                add(GraphOp::addUpEdge, p, n, q);
        }
        for (int p = 0; p < graph.numInputs(parent); ++p) {
            for (int q = 0; q < graph.numInputs(n); ++q)
                add(GraphOp::addDownEdge, p, n, q);
        }
        if (allows(AnyPair)) {
            add(GraphOp::connectUpByName, n);
            add(GraphOp::connectDownByName, n);
            for (int m = 0; m < numNodes; ++m)
                add(GraphOp::connectByName, n, m);
        }
        if (allows(Disconnect)) {
            add(GraphOp::disconnectInputGroup, n, -1);
            for (int p = 0; p < graph.numInputs(n); ++p)
                add(GraphOp::disconnectInput, n, p);
        }
        if (allows(RemovePorts)) {
            for (int p = 0; p < graph.numInputs(n); ++p)
                add(GraphOp::removeInput, n, p);
            for (int p = 0; p < graph.numOutputs(n); ++p)
                add(GraphOp::removeOutput, n, p);
        }
        if (allows(AddPorts) && graph.numInputs(n) < kMaxPorts)
            add(GraphOp::addInput, n, -1);
        if (allows(AddPorts) && graph.numOutputs(n) < kMaxPorts)
            add(GraphOp::addOutput, n, -1);
        if (allows(RemoveNodes)) {
            add(GraphOp::removeChildNode, n);
            if (n > 0)
                add(GraphOp::removeNode, n);
        }
        if (allows(AddNodes) && numLive < kMaxNodes)
            add(GraphOp::addNode, 1, 1, n);
    }
    for (int e = 0; e < graph.numEdgesGlobal(); ++e) {
        if (graph.isValidEdge(e) || allows(AnyPair))
            add(GraphOp::removeEdge, e);
    }
    add(GraphOp::purge);
    return edits;
}

SmallGraphs::Path SmallGraphs::pathTo(int state) const
{
    Path path;
    for (; state > 0; state = states[static_cast<std::size_t>(state)].from)
        path.push_back(states[static_cast<std::size_t>(state)].edit);
    path.insert(path.end(), basePath.rbegin(), basePath.rend());
    std::reverse(path.begin(), path.end());
    return path;
}

std::string SmallGraphs::failure(Path path, const Edit& edit, const std::string& what) const
{
    path.push_back(edit);
    std::string text = what + "\nGraph graph;\n";
    for (const Edit& made : path)
        text += made.call().text() + "\n";
    return text;
}

std::string SmallGraphs::leave(int state)
{
    const Path path = pathTo(state);
    Model before;
    replay(before, path);
    before.open = false;
    for (const Edit& edit : editsOf(before)) {
        Model model = before;
        Library graph;
        replay(graph, path);
        const Outcome expected = perform(model, edit.call());
        const Outcome answered = perform(graph, edit.call());
        ++count.edits;
        if (std::exchange(model.open, false))
            continue; // that it ended is all there is to check
        ++count.comparisons;
        if (!(answered == expected))
            return failure(path, edit,
                           "answered " + answered.print() + " instead of " + expected.print());

        const Answers answers = ask(graph);
        const std::string records = recordsOf(graph);
        const std::string key = model.tables() + records;
        const auto [found, isNew] = numbers.emplace(
            std::make_pair(digestOf(key, 1), digestOf(key, 2)), static_cast<int>(states.size()));
        transitions.emplace_back(state, found->second);
        const State* known = isNew ? nullptr : &states[static_cast<std::size_t>(found->second)];
        count.comparisons += answers.values.size();
        if (!known || known->answers != answers.digest()) {
            if (!wrongCount(graph).empty())
                return failure(path, edit, wrongCount(graph));
            const Answers right = ask(model);
            if (!difference(answers, right).empty())
                return failure(path, edit, difference(ask(graph), ask(model, true)));
            if (isNew)
                states.push_back({state, edit, right.anyOpen ? 0 : right.digest()});
        }
        if (isNew && onState) {
            Path whole = path;
            whole.push_back(edit);
            const std::string wrong = onState(whole);
            if (!wrong.empty())
                return failure(path, edit, wrong);
        }
    }
    return std::string();
}

/// Over all lengths: how many sequences end in a state is how many end in those that lead to it.
void SmallGraphs::countSequences()
{
    std::vector<double> ending(states.size(), 0);
    ending[0] = 1;
    for (int length = 1; length <= plan.length; ++length) {
        std::vector<double> longer(states.size(), 0);
        for (const auto& [from, to] : transitions)
            longer[static_cast<std::size_t>(to)] += ending[static_cast<std::size_t>(from)];
        for (const double number : longer)
            count.sequences += number;
        ending.swap(longer);
    }
}

std::string SmallGraphs::run()
{
    states.push_back({-1, {}, 0});
    Model model;
    replay(model, basePath);
    Library graph;
    replay(graph, basePath);
    const std::string key = model.tables() + recordsOf(graph);
    numbers.emplace(std::make_pair(digestOf(key, 1), digestOf(key, 2)), 0);

    std::size_t next = 0;
    for (int length = 1; length <= plan.length; ++length) {
        const std::size_t level = states.size();
        for (; next < level; ++next) {
            const std::string found = leave(static_cast<int>(next));
            if (!found.empty())
                return found;
        }
    }
    count.states = states.size();
    countSequences();
    return std::string();
}
