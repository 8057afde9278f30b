// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Document.h>

#include "Document/DocumentSyntax.h"
#include "Document/EdgeReader.h"
#include "Document/NodeIndex.h"
#include "Document/ValueReader.h"
#include "Model/Positions.h"
#include "Model/ValueText.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// The port groups of one node.
class GroupNames
{
public:
    /// \param allKnown whether all names could be read
    GroupNames(const QVector<QString>& names, bool allKnown)
        : positions(positionsOf(names))
        , complete(allKnown)
    {
    }

    QVector<int> find(const QString& name) const { return positions.value(name); }
    bool isComplete() const { return complete; }

private:
    Positions positions;
    bool complete;
};

/// Reads the graph: the root, the nodes with their ports, the edges and the target.
class DocumentReader
{
public:
    DocumentReader(const JsonText& json, const ValueTypes& types)
        : syntax(json)
        , values(syntax, types)
        , nodes(syntax, result.snapshot)
    {
    }

    ReadResult read();

private:
    /// A list of ports of one node.
    struct Ports
    {
        QVector<PortRecord> records;
        QVector<Place> places;
        bool complete = true; // the name of each could be read
    };

    void readGraph();
    bool readHeader(const DocumentMembers& members);
    void readRoot(const DocumentMembers& members);
    void readNode(int item);
    void readKind(const DocumentMembers& members, NodeRecord& node);
    void readTarget(int item);
    void checkNodeValues();

    GroupNames readGroups(int item, NodeRecord& node);
    void readGroup(int item, const GroupNames& groups, PortRecord& port);
    template<typename ReadPort>
    Ports readPorts(int item, const char* what, const ReadPort& readPort);
    bool readParameter(int item, const GroupNames& groups, PortRecord& port);
    bool readInput(int item, const GroupNames& groups, bool isOfPass, PortRecord& port);
    bool readOutput(int item, const GroupNames& groups, PortRecord& port);
    bool readShortPort(int item, const char* what, PortRecord& port);
    bool readPortName(int object, const DocumentMembers& members, PortRecord& port);

    struct NodeValue
    {
        int value;
        int item;
    };

    DocumentSyntax syntax;
    ReadResult result;
    ValueReader values;
    NodeIndex nodes;
    int numPasses = 0;
    std::vector<NodeValue> nodeValues; // of the root and the groups
};

ReadResult DocumentReader::read()
{
    readGraph();
    if (!syntax.hasProblems())
        return result;
    ReadResult failed;
    failed.problems = syntax.problems();
    return failed;
}

void DocumentReader::readGraph()
{
    if (!syntax.expect(0, JsonText::Object, "the document"))
        return;
    const DocumentMembers members =
        syntax.members(0,
                       {"edges", "format", "groups", "name", "nodes", "outputs", "parameters",
                        "target", "value", "version"});
    if (!readHeader(members))
        return;
    syntax.reportUnknownKeys(0, members);
    syntax.reportDuplicateKeys();
    readRoot(members);
    if (!syntax.readList(members["nodes"], "\"nodes\"", [this](int item) { readNode(item); }))
        nodes.setIncomplete();
    nodes.checkOrdinals();
    checkNodeValues();
    EdgeReader edges(syntax, nodes, result.snapshot);
    syntax.readList(members["edges"], "\"edges\"", [&edges](int item) { edges.read(item); });
    result.places.edges = edges.addAll();
    if (members["target"] >= 0)
        readTarget(members["target"]);
}

/// \return whether the document is of a format and version that can be read. If it is not, other
/// problems would say little.
bool DocumentReader::readHeader(const DocumentMembers& members)
{
    const int format = members["format"];
    const int version = members["version"];
    if (format < 0)
        syntax.reportMissingKey(0, "format");
    else if (syntax.kind(format) != JsonText::String
             || syntax.string(format) != QLatin1String("orv-graph"))
        syntax.report(format, "unknown-format", QLatin1String("the format is not \"orv-graph\""));
    if (version < 0)
        syntax.reportMissingKey(0, "version");
    else if (syntax.kind(version) != JsonText::Number
             || syntax.json().value(version).toDouble() != 1)
        syntax.report(version, "unknown-version", QLatin1String("the version is not 1"));
    return !syntax.hasProblems();
}

void DocumentReader::readRoot(const DocumentMembers& members)
{
    NodeRecord& root = result.snapshot.nodes[0];
    if (members["name"] >= 0)
        syntax.readString(members["name"], "\"name\"", root.name);
    const int value = members["value"];
    if (value >= 0 && syntax.readInt(value, "\"value\"", root.value))
        nodeValues.push_back({root.value, value});
    const GroupNames groups = readGroups(members["groups"], root);
    const Ports inputs =
        readPorts(members["parameters"], "\"parameters\"",
                  [&](int item, PortRecord& port) { return readParameter(item, groups, port); });
    const Ports outputs =
        readPorts(members["outputs"], "\"outputs\"",
                  [&](int item, PortRecord& port) { return readOutput(item, groups, port); });
    root.inputs = inputs.records;
    root.outputs = outputs.records;
    nodes.entry(0).hasAllInputs = inputs.complete;
    nodes.entry(0).hasAllOutputs = outputs.complete;
    result.snapshot.numOutputs = root.outputs.size();
    result.places.nodes = {syntax.place(0)};
    result.places.inputs = {inputs.places};
    result.places.outputs = {outputs.places};
}

void DocumentReader::readNode(int item)
{
    if (!syntax.expect(item, JsonText::Object, "a node")) {
        nodes.setIncomplete();
        return;
    }
    const DocumentMembers members = syntax.readMembers(
        item, {"enabled", "groups", "inputs", "outputs", "pass", "path", "value"});

    NodeRecord node;
    node.removed = false;
    readKind(members, node);
    const GroupNames groups = readGroups(members["groups"], node);
    const Ports inputs =
        readPorts(members["inputs"], "\"inputs\"", [&](int element, PortRecord& port) {
            return readInput(element, groups, node.pass, port);
        });
    const Ports outputs =
        readPorts(members["outputs"], "\"outputs\"",
                  [&](int element, PortRecord& port) { return readOutput(element, groups, port); });
    node.inputs = inputs.records;
    node.outputs = outputs.records;

    if (members["path"] < 0) {
        syntax.reportMissingKey(item, "path");
        nodes.setIncomplete();
        return;
    }
    NodeIndex::Entry entry;
    entry.hasAllInputs = inputs.complete;
    entry.hasAllOutputs = outputs.complete;
    if (!nodes.readPath(members["path"], node, entry))
        return;
    if (node.pass)
        node.value = numPasses++;
    nodes.add(node, entry);
    result.snapshot.nodes[node.parent].children.append(result.snapshot.nodes.size());
    result.snapshot.nodes.append(node);
    result.places.nodes.append(syntax.place(item));
    result.places.inputs.append(inputs.places);
    result.places.outputs.append(outputs.places);
}

/// Reads whether a node is a pass, and the keys that only passes or only groups may have.
void DocumentReader::readKind(const DocumentMembers& members, NodeRecord& node)
{
    const int pass = members["pass"];
    const int enabled = members["enabled"];
    const int value = members["value"];
    node.pass = pass >= 0;
    node.enabled = node.pass;
    if (node.pass)
        syntax.readString(pass, "\"pass\"", node.type);
    if (enabled >= 0 && !node.pass) {
        syntax.report(enabled, "misplaced-key",
                      QLatin1String("only passes can be enabled or disabled"));
    } else if (enabled >= 0) {
        const JsonText::Kind kind = syntax.kind(enabled);
        node.enabled = kind != JsonText::False;
        if (kind != JsonText::True && kind != JsonText::False)
            syntax.reportType(enabled, "\"enabled\"", "true or false");
    }
    if (value >= 0 && node.pass)
        syntax.report(value, "misplaced-key",
                      QLatin1String("only groups have a \"value\"; passes are numbered in order"));
    else if (value >= 0 && syntax.readInt(value, "\"value\"", node.value))
        nodeValues.push_back({node.value, value});
}

/// A group whose value is the number of a pass would be that pass.
void DocumentReader::checkNodeValues()
{
    for (const NodeValue& entry : nodeValues) {
        if (entry.value >= 0 && entry.value < numPasses)
            syntax.report(entry.item, "value-names-pass",
                          QLatin1String("the value ") + QString::number(entry.value)
                              + QLatin1String(" is the number of a pass: passes are numbered from "
                                              "0 to ")
                              + QString::number(numPasses - 1));
    }
}

void DocumentReader::readTarget(int item)
{
    QString path;
    if (!syntax.readString(item, "\"target\"", path))
        return;
    result.snapshot.target = nodes.find(path, item, QLatin1String("target: "));
    result.places.target = syntax.place(item);
}

// Ports

GroupNames DocumentReader::readGroups(int item, NodeRecord& node)
{
    bool complete = true;
    const bool isList = syntax.readList(item, "\"groups\"", [&](int element) {
        QString name;
        complete = syntax.readString(element, "a group", name) && complete;
        node.groups.append(name);
    });
    return {node.groups, isList && complete};
}

/// Reads the group of a port: a name, or a number where several groups have that name.
void DocumentReader::readGroup(int item, const GroupNames& groups, PortRecord& port)
{
    if (item < 0)
        return;
    if (syntax.kind(item) == JsonText::Number) {
        syntax.readInt(item, "a group", port.group);
        return;
    }
    if (syntax.kind(item) != JsonText::String) {
        syntax.reportType(item, "a group", "a string or a number");
        return;
    }
    const QString name = syntax.string(item);
    const QVector<int> found = groups.find(name);
    if (found.size() == 1)
        port.group = found.first();
    else if (found.size() > 1)
        syntax.report(item, "ambiguous-group",
                      QLatin1String("several groups are called ") + quoted(name)
                          + QLatin1String(": give the number of one"));
    else if (groups.isComplete())
        syntax.report(item, "unknown-group", QLatin1String("there is no group ") + quoted(name));
}

/// Reads a list of ports, each with \p readPort, which returns whether the port has a name.
template<typename ReadPort>
DocumentReader::Ports DocumentReader::readPorts(int item, const char* what,
                                                const ReadPort& readPort)
{
    Ports ports;
    const bool isList = syntax.readList(item, what, [&](int element) {
        PortRecord port;
        ports.complete = readPort(element, port) && ports.complete;
        ports.records.append(port);
        ports.places.append(syntax.place(element));
    });
    ports.complete = isList && ports.complete;
    return ports;
}

bool DocumentReader::readParameter(int item, const GroupNames& groups, PortRecord& port)
{
    result.snapshot.parameters.append(QVariant());
    if (syntax.kind(item) != JsonText::Object)
        return readShortPort(item, "a parameter", port);
    const DocumentMembers members = syntax.readMembers(item, {"group", "name", "type", "value"});
    readGroup(members["group"], groups, port);
    result.snapshot.parameters.last() = values.read(item, members);
    return readPortName(item, members, port);
}

bool DocumentReader::readInput(int item, const GroupNames& groups, bool isOfPass, PortRecord& port)
{
    if (syntax.kind(item) != JsonText::Object)
        return readShortPort(item, "an input", port);
    const DocumentMembers members = syntax.readMembers(item, {"default", "group", "name"});
    readGroup(members["group"], groups, port);
    const int value = members["default"];
    if (value >= 0 && !isOfPass)
        syntax.report(value, "misplaced-key",
                      QLatin1String("only inputs of passes can have a default value"));
    else if (value >= 0 && syntax.expect(value, JsonText::Object, "\"default\""))
        port.defaultValue = values.read(value);
    return readPortName(item, members, port);
}

bool DocumentReader::readOutput(int item, const GroupNames& groups, PortRecord& port)
{
    if (syntax.kind(item) != JsonText::Object)
        return readShortPort(item, "an output", port);
    const DocumentMembers members = syntax.readMembers(item, {"group", "name"});
    readGroup(members["group"], groups, port);
    return readPortName(item, members, port);
}

/// Reads a port that is written as its name alone.
bool DocumentReader::readShortPort(int item, const char* what, PortRecord& port)
{
    if (syntax.kind(item) != JsonText::String) {
        syntax.reportType(item, what, "a string or an object");
        return false;
    }
    port.name = syntax.string(item);
    return true;
}

bool DocumentReader::readPortName(int object, const DocumentMembers& members, PortRecord& port)
{
    const int name = members["name"];
    if (name < 0)
        syntax.reportMissingKey(object, "name");
    return name >= 0 && syntax.readString(name, "\"name\"", port.name);
}

} // namespace

ReadResult readDocument(const QByteArray& json, const ValueTypes& types)
{
    const JsonText text(json);
    if (text.problem().code.isEmpty())
        return DocumentReader(text, types).read();
    ReadResult failed;
    failed.problems.append(text.problem());
    return failed;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
