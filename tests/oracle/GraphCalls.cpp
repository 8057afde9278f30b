// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "GraphCalls.h"

#include <climits>
#include <sstream>

// A port count beyond all memory is to end as std::bad_alloc under the sanitizers too.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options();
const char* __asan_default_options()
{
    return "allocator_may_return_null=1";
}
const char* __tsan_default_options()
{
    return "allocator_may_return_null=1";
}

namespace {

struct Info
{
    const char* name;
    const char* roles;
};

const Info kInfo[] = {
#define ORV_INFO(name, roles, expression) {#name, roles},
    ORV_GRAPH_CALLS(ORV_INFO)
#undef ORV_INFO
};

const QString& nameOf(std::uint8_t byte)
{
    static const QString names[] = {
        QString(),
        QStringLiteral("a"),
        QStringLiteral("b"),
        QStringLiteral("A"),
        QStringLiteral(""),
        QStringLiteral("color"),
        QStringLiteral("%n%s%d"),
        QStringLiteral("quote\" and \\ and\nbreak"),
        QStringLiteral(u"\u00e4 \U0001F600"),
        QString(QLatin1String("zero\0inside", 11)),
        QString(10000, QLatin1Char('x')),
        QString(QChar(0xD800)),
    };
    const std::size_t rare = sizeof names / sizeof names[0];
    return byte < 0xC0 ? names[byte % 4] : names[byte % rare];
}

int oddInt(std::uint8_t byte)
{
    static const int odd[] = {-1, INT_MIN, INT_MAX, -2, INT_MIN + 1, INT_MAX - 1, 1 << 30, 65536};
    return odd[byte % 8];
}

/// An int from 0 to size - 1 most of the time.
int ref(std::uint8_t byte, int size)
{
    if (byte < 0xE0)
        return size > 0 ? byte % size : 0;
    return byte < 0xF0 ? size + byte % 2 : oddInt(byte);
}

int argument(char role, std::uint8_t byte, const Oracle::Graph& graph)
{
    switch (role) {
    case 'n':
        return ref(byte, graph.numNodesGlobal());
    case 'e':
        return ref(byte, graph.numEdgesGlobal());
    case 'p':
        return byte < 0xF0 ? byte % 4 : oddInt(byte);
    case 'i':
        return byte < 0xF0 ? byte % 6 : oddInt(byte);
    case 'c':
        // Small, or none, or more than any memory holds: what lies between only costs time.
        return byte < 0xF0 ? byte % 4
            : byte < 0xFC  ? -1 - byte % 2
            : byte < 0xFE  ? INT_MIN
                           : INT_MAX;
    case 'g':
        return byte < 0xF0 ? byte % 4 - 1 : oddInt(byte);
    case 'b':
        return byte & 1;
    default:
        return byte < 0xF0 ? byte % 8 - 1 : oddInt(byte);
    }
}

std::string literal(int value)
{
    return value == INT_MIN ? "INT_MIN" : std::to_string(value);
}

std::string literal(const QString& string)
{
    if (string.isEmpty())
        return "QString()";
    if (string.size() > 100)
        return "QString(" + std::to_string(string.size()) + ", QLatin1Char('x'))";
    std::ostringstream out;
    out << "QStringLiteral(u\"";
    for (const QChar c : string) {
        if (c.unicode() >= 0x20 && c.unicode() < 0x7F && c != QLatin1Char('"')
            && c != QLatin1Char('\\'))
            out << c.toLatin1();
        else
            out << "\\x" << std::hex << c.unicode() << "\" u\""; // ends the escape
    }
    out << "\")";
    return out.str();
}

class Comparison
{
public:
    Comparison(const Kestrin::Orv::Graph& compared, const Oracle::Graph& with)
        : graph(compared)
        , model(with)
    {
    }

    std::string run()
    {
        // One slot more than there are, so that what answers for nothing is compared too.
        if (!same("numNodesGlobal", -1, -1, graph.numNodesGlobal(), model.numNodesGlobal())
            || !same("numEdgesGlobal", -1, -1, graph.numEdgesGlobal(), model.numEdgesGlobal()))
            return found;
        for (int n = -1; n <= model.numNodesGlobal() && found.empty(); ++n)
            node(n);
        for (int e = -1; e <= model.numEdgesGlobal() && found.empty(); ++e)
            edge(e);
        return found;
    }

private:
#define ORV_SAME(query, ...)                                                                       \
    same(#query, ref, port, graph.query(__VA_ARGS__), model.query(__VA_ARGS__))

    void node(int ref)
    {
        int port = -1;
        ORV_SAME(isValidNode, ref);
        ORV_SAME(parentNode, ref);
        ORV_SAME(nodeName, ref);
        ORV_SAME(nodeValue, ref);
        ORV_SAME(indexOfNode, ref);
        ORV_SAME(numNodes, ref);
        for (port = -1; port <= model.numNodes(ref); ++port)
            ORV_SAME(getNode, port, ref);
        ORV_SAME(numInputGroups, ref);
        ORV_SAME(numOutputGroups, ref);
        for (port = -1; port <= model.numInputGroups(ref); ++port)
            ORV_SAME(inputGroupName, ref, port);
        ORV_SAME(numInputs, ref);
        for (port = -1; port <= model.numInputs(ref); ++port) {
            ORV_SAME(inputName, ref, port);
            ORV_SAME(inputGroup, ref, port);
            ORV_SAME(inputSource, ref, port);
            ORV_SAME(numInputDestinations, ref, port);
            for (int d = -1; d <= model.numInputDestinations(ref, port); ++d)
                ORV_SAME(inputDestination, ref, port, d);
        }
        ORV_SAME(numOutputs, ref);
        for (port = -1; port <= model.numOutputs(ref); ++port) {
            ORV_SAME(outputName, ref, port);
            ORV_SAME(outputGroup, ref, port);
            ORV_SAME(outputSource, ref, port);
            ORV_SAME(numOutputDestinations, ref, port);
            for (int d = -1; d <= model.numOutputDestinations(ref, port); ++d)
                ORV_SAME(outputDestination, ref, port, d);
        }
    }

    void edge(int ref)
    {
        const int port = -1;
        ORV_SAME(isValidEdge, ref);
        ORV_SAME(isRegularEdge, ref);
        ORV_SAME(isDownEdge, ref);
        ORV_SAME(isUpEdge, ref);
        ORV_SAME(edgeSourceNode, ref);
        ORV_SAME(edgeSourceIndex, ref);
        ORV_SAME(edgeDestNode, ref);
        ORV_SAME(edgeDestIndex, ref);
    }

#undef ORV_SAME

    static std::string show(int value)
    {
        return std::to_string(value);
    }
    static std::string show(const QString& value)
    {
        return literal(value);
    }

    template<typename T>
    bool same(const char* query, int ref, int port, const T& answer, const T& expected)
    {
        if (answer == expected || !found.empty())
            return answer == expected;
        found = std::string(query) + " of " + std::to_string(ref) + ", " + std::to_string(port)
            + ": " + show(answer) + " instead of " + show(expected);
        return false;
    }

    const Kestrin::Orv::Graph& graph;
    const Oracle::Graph& model;
    std::string found;
};

} // namespace

std::string GraphCall::text() const
{
    const Info& info = kInfo[static_cast<int>(op)];
    const std::string name = info.name;
    std::string arguments;
    int numInts = 0, numStrings = 0;
    for (const char* role = info.roles; *role; ++role) {
        arguments += role == info.roles ? "" : ", ";
        arguments += *role == 's' ? literal(strings[numStrings++]) : literal(ints[numInts++]);
    }
    if (op == GraphOp::dumpAsGraphviz)
        return "dumpAsGraphviz(&graph);";
    if (op == GraphOp::bottomUpInputs || op == GraphOp::breadthFirstInputs
        || op == GraphOp::bottomUpSubgraph)
        return name + "(graph, " + arguments + ");";
    return "graph." + name + "(" + arguments + ");";
}

GraphCall resolve(const GraphStep& step, const Oracle::Graph& graph)
{
    GraphCall call;
    call.op = static_cast<GraphOp>(step.op % kNumGraphOps);
    const std::uint8_t* byte = step.args;
    int* nextInt = call.ints;
    QString* nextString = call.strings;
    for (const char* role = kInfo[static_cast<int>(call.op)].roles; *role; ++role, ++byte) {
        if (*role == 's')
            *nextString++ = nameOf(*byte);
        else
            *nextInt++ = argument(*role, *byte, graph);
    }
    return call;
}

std::string Outcome::print() const
{
    std::string shown = std::to_string(value) + ", " + literal(text) + ", " + std::to_string(node)
        + ", " + std::to_string(port) + (badAlloc ? ", bad_alloc" : "") + ", [";
    for (const int n : order)
        shown += std::to_string(n) + " ";
    return shown + "]";
}

std::string difference(const Kestrin::Orv::Graph& graph, const Oracle::Graph& model)
{
    return Comparison(graph, model).run();
}
