// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Document.h>
#include <Kestrin/Orv/Inspect/Paths.h>

#include "Document/DocumentValues.h"
#include "Document/JsonText.h"
#include "Model/LookUp.h"
#include "Model/PathSegment.h"
#include "Model/ValueText.h"
#include "Rules/EdgeCheck.h"

#include <QtCore/QSet>
#include <QtCore/QStringList>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {


/// The positions of each name in a list.
using Positions = QHash<QString, QVector<int>>;

class DocumentReader
{
public:
    DocumentReader(const JsonText& json, const ValueTypes& valueTypes)
        : text(json)
        , types(valueTypes)
    {
    }

    ReadResult read();

private:
    struct Member
    {
        QLatin1String key;
        int value; // its item; -1 if the object does not have it
    };
    using Members = std::vector<Member>;

    static constexpr int kSeveral = -2;

    /// One end of an edge.
    struct End
    {
        int node = -1;
        QString path; // of the node, as written
        PathSegment port;
    };

    void report(int item, const char* code, const QString& what);
    Place placeOf(int item) const { return text.place(text.item(item).begin); }
    QString kindName(int item) const;
    bool expect(int item, JsonText::Kind kind, const char* what);
    bool readString(int item, const char* what, QString& string);
    bool readInt(int item, const char* what, int& number);
    void readMembers(int object, Members& members);
    static int memberOf(const Members& members, const char* key);
    void requireMember(int object, const char* key);
    /// Calls \p read with every element of a list, if that is one.
    template<typename Read>
    bool readList(int item, const char* what, const Read& read);

    void reportDuplicateKeys();
    bool readHeader(const Members& members);
    void readRoot(const Members& members);
    QVector<QString> readGroups(int item, bool& complete);
    void readGroup(int item, PortRecord& port);
    QVariant readValueOf(int object, const Members& members, int depth, bool& valid);
    QVariant readValueItem(const QString& type, int item, int depth, bool& valid);
    void beginPorts(const QVector<QString>& groups, bool complete);
    void readParameter(int item);
    bool readPort(int item, const char* what, const NodeRecord* inputOf, PortRecord& port);

    void readNode(int item);
    bool readPath(int item, NodeRecord& node, int& ordinal);
    void readKind(const Members& members, NodeRecord& node);
    int nodeOf(const QString& path) const;
    int parentOf(const QString& path, const QString& parentPath, int item);
    void checkNumbers();
    void checkValues();

    int namedNode(const QString& path, int item, const QString& where);
    bool readEnd(const QString& path, int item, const QString& where, End& end);
    int namedPort(const End& end, bool isOutput, int item, const QString& where);
    void readEdge(int item);
    void checkEdges();
    ReadResult finished();

    const JsonText& text;
    const ValueTypes& types;
    ReadResult result;
    struct Found
    {
        int offset;
        Problem problem;
    };
    std::vector<Found> found;

    // Nodes
    QHash<QString, int> nodesByPath;                      // as their entries write it
    QHash<QPair<int, QString>, QVector<int>> nodesByName; // children of a node, in their order
    std::vector<int> pathItems;                           // by node: the item of its path
    std::vector<int> ordinals;                            // by node: the number that its path says
    std::vector<bool> inputsComplete;                     // by node: all its ports could be read
    std::vector<bool> outputsComplete;
    bool nodesComplete = true; // the path of every entry could be read
    int numPasses = 0;
    std::vector<QPair<int, int>> values; // those of groups, and their items
    QSet<QString> toldPaths;             // what leads nowhere and has been told
    QSet<QString> toldPorts;
    QSet<QString> repeatedPaths; // that several entries have

    // The port groups of the node that is being read
    Positions groupNames;
    bool groupsComplete = true;

    // Edges
    QVector<EdgeRecord> candidates;
    std::vector<int> edgeItems;
    QHash<QPair<int, bool>, Positions>
        ports; // of a node, its inputs or its outputs, once asked for
};

void DocumentReader::report(int item, const char* code, const QString& what)
{
    const int offset = text.item(item).begin;
    found.push_back({offset, {QLatin1String(code), what, text.place(offset)}});
}

QString DocumentReader::kindName(int item) const
{
    switch (text.kind(item)) {
    case JsonText::Object:
        return QLatin1String("an object");
    case JsonText::Array:
        return QLatin1String("a list");
    case JsonText::String:
        return QLatin1String("a string");
    case JsonText::Number:
        return QLatin1String("a number");
    case JsonText::True:
        return QLatin1String("true");
    case JsonText::False:
        return QLatin1String("false");
    case JsonText::Null:
        break;
    }
    return QLatin1String("null");
}

bool DocumentReader::expect(int item, JsonText::Kind kind, const char* what)
{
    if (text.kind(item) == kind)
        return true;
    const char* const expected = kind == JsonText::Object ? " must be an object, not "
        : kind == JsonText::Array                         ? " must be a list, not "
                                                          : " must be a string, not ";
    report(item, "wrong-type", QLatin1String(what) + QLatin1String(expected) + kindName(item));
    return false;
}

bool DocumentReader::readString(int item, const char* what, QString& string)
{
    if (!expect(item, JsonText::String, what))
        return false;
    string = text.string(item);
    return true;
}

bool DocumentReader::readInt(int item, const char* what, int& number)
{
    const double value = text.kind(item) == JsonText::Number ? text.value(item).toDouble(0.5) : 0.5;
    if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()
        || std::floor(value) != value) {
        report(item, "wrong-type", QLatin1String(what) + QLatin1String(" must be a whole number"));
        return false;
    }
    number = static_cast<int>(value);
    return true;
}

/// Fills in the values of the keys that are asked for; others do not belong there.
void DocumentReader::readMembers(int object, Members& members)
{
    const int end = text.item(object).next;
    for (int key = object + 1; key < end; key = text.item(key + 1).next) {
        const QString name = text.string(key);
        const auto member = std::find_if(members.begin(), members.end(),
                                         [&name](const Member& m) { return m.key == name; });
        if (member == members.end()) {
            QStringList known;
            for (const Member& m : members)
                known.append(m.key);
            report(key, "unknown-key",
                   QLatin1String("there is no key ") + quoted(name) + QLatin1String(" here, only ")
                       + known.join(QLatin1String(", ")));
        } else if (member->value < 0) {
            member->value = key + 1;
        }
    }
}

int DocumentReader::memberOf(const Members& members, const char* key)
{
    for (const Member& member : members) {
        if (member.key == QLatin1String(key))
            return member.value;
    }
    return -1;
}

void DocumentReader::requireMember(int object, const char* key)
{
    report(object, "missing-key",
           QLatin1String("the key ") + quoted(QLatin1String(key)) + QLatin1String(" is missing"));
}

template<typename Read>
bool DocumentReader::readList(int item, const char* what, const Read& read)
{
    if (item < 0)
        return true;
    if (!expect(item, JsonText::Array, what))
        return false;
    const int end = text.item(item).next;
    for (int element = item + 1; element < end; element = text.item(element).next)
        read(element);
    return true;
}

void DocumentReader::reportDuplicateKeys()
{
    for (int object = 0; object < text.numItems(); ++object) {
        if (text.kind(object) != JsonText::Object)
            continue;
        QSet<QString> keys;
        const int end = text.item(object).next;
        for (int key = object + 1; key < end; key = text.item(key + 1).next) {
            const QString name = text.string(key);
            if (keys.contains(name))
                report(key, "duplicate-key",
                       QLatin1String("the key ") + quoted(name)
                           + QLatin1String(" is here already"));
            keys.insert(name);
        }
    }
}

/// Whether this is a document of a kind that is known here; if not, nothing else says much.
bool DocumentReader::readHeader(const Members& members)
{
    const int format = memberOf(members, "format");
    const int version = memberOf(members, "version");
    if (format < 0)
        requireMember(0, "format");
    else if (text.kind(format) != JsonText::String
             || text.string(format) != QLatin1String("orv-graph"))
        report(format, "unknown-format", QLatin1String("the format is not \"orv-graph\""));
    if (version < 0)
        requireMember(0, "version");
    else if (text.kind(version) != JsonText::Number || text.value(version).toDouble() != 1)
        report(version, "unknown-version", QLatin1String("the version is not 1"));
    return found.empty();
}

QVector<QString> DocumentReader::readGroups(int item, bool& complete)
{
    QVector<QString> groups;
    const bool isList = readList(item, "\"groups\"", [&](int element) {
        QString name;
        complete = readString(element, "a group", name) && complete;
        groups.append(name);
    });
    complete = isList && complete;
    return groups;
}

void DocumentReader::beginPorts(const QVector<QString>& groups, bool complete)
{
    groupNames.clear();
    for (int i = 0; i < groups.size(); ++i)
        groupNames[groups.at(i)].append(i);
    groupsComplete = complete;
}

void DocumentReader::readGroup(int item, PortRecord& port)
{
    if (text.kind(item) == JsonText::Number) {
        readInt(item, "a group", port.group);
        return;
    }
    QString name;
    if (text.kind(item) != JsonText::String) {
        report(item, "wrong-type",
               QLatin1String("a group must be a string or a number, not ") + kindName(item));
        return;
    }
    name = text.string(item);
    const QVector<int> groups = groupNames.value(name);
    if (groups.size() == 1)
        port.group = groups.first();
    else if (groups.size() > 1)
        report(item, "ambiguous-group",
               QLatin1String("several groups are called ") + quoted(name)
                   + QLatin1String(": give its number"));
    else if (groupsComplete)
        report(item, "unknown-group", QLatin1String("there is no group ") + quoted(name));
}

/// Of the keys "type" and "value"; an invalid value if neither is there.
QVariant DocumentReader::readValueOf(int object, const Members& members, int depth, bool& valid)
{
    const int typeItem = memberOf(members, "type");
    const int item = memberOf(members, "value");
    if (typeItem < 0 && item < 0)
        return QVariant();
    QString type;
    if (typeItem >= 0 && !readString(typeItem, "\"type\"", type)) {
        valid = false;
        return QVariant();
    }
    if (item < 0) {
        requireMember(object, "value");
        valid = false;
        return QVariant();
    }
    if (typeItem < 0) {
        switch (text.kind(item)) {
        case JsonText::String:
            return text.string(item);
        case JsonText::True:
        case JsonText::False:
            return text.kind(item) == JsonText::True;
        default:
            report(item, "missing-type",
                   QLatin1String("only strings, true and false need no \"type\""));
            valid = false;
            return QVariant();
        }
    }
    return readValueItem(type, item, depth, valid);
}

QVariant DocumentReader::readValueItem(const QString& type, int item, int depth, bool& valid)
{
    const bool isMap = isValueMap(type);
    if (!isMap && !isValueList(type)) {
        QVariant value;
        if (!readValue(type, text.value(item), types, value)) {
            report(item, "wrong-value", QLatin1String("this is no value of type ") + quoted(type));
            valid = false;
        }
        return value;
    }

    if (depth >= kMaxValueDepth) {
        report(item, "too-deep",
               QLatin1String("lists are nested deeper than ") + QString::number(kMaxValueDepth));
        valid = false;
        return QVariant();
    }
    if (!expect(item, isMap ? JsonText::Object : JsonText::Array, "such a value")) {
        valid = false;
        return QVariant();
    }
    QVariantList list;
    QVariantMap map;
    const int end = text.item(item).next;
    for (int next = item + 1; next < end; next = text.item(next).next) {
        const int key = next;
        if (isMap)
            ++next;
        if (!expect(next, JsonText::Object, "an element")) {
            valid = false;
            continue;
        }
        Members members{{QLatin1String("type"), -1}, {QLatin1String("value"), -1}};
        readMembers(next, members);
        const QVariant value = readValueOf(next, members, depth + 1, valid);
        if (isMap)
            map.insert(text.string(key), value);
        else
            list.append(value);
    }
    return isMap ? QVariant(map) : QVariant(list);
}

/// Whether at least its name could be read.
bool DocumentReader::readPort(int item, const char* what, const NodeRecord* inputOf,
                              PortRecord& port)
{
    if (text.kind(item) == JsonText::String) {
        port.name = text.string(item);
        return true;
    }
    if (text.kind(item) != JsonText::Object) {
        report(item, "wrong-type",
               QLatin1String(what) + QLatin1String(" must be a string or an object, not ")
                   + kindName(item));
        return false;
    }
    Members members{{QLatin1String("group"), -1}, {QLatin1String("name"), -1}};
    if (inputOf)
        members.insert(members.begin(), {QLatin1String("default"), -1});
    readMembers(item, members);
    if (memberOf(members, "group") >= 0)
        readGroup(memberOf(members, "group"), port);
    const int standard = inputOf ? memberOf(members, "default") : -1;
    if (standard >= 0 && !inputOf->pass) {
        report(standard, "misplaced-key",
               QLatin1String("only inputs of passes have a default value"));
    } else if (standard >= 0 && expect(standard, JsonText::Object, "\"default\"")) {
        Members value{{QLatin1String("type"), -1}, {QLatin1String("value"), -1}};
        readMembers(standard, value);
        bool valid = true;
        port.defaultValue = readValueOf(standard, value, 0, valid);
    }
    const int name = memberOf(members, "name");
    if (name < 0)
        requireMember(item, "name");
    return name >= 0 && readString(name, "\"name\"", port.name);
}

void DocumentReader::readParameter(int item)
{
    PortRecord port;
    QVariant value;
    if (text.kind(item) == JsonText::Object) {
        Members members{{QLatin1String("group"), -1},
                        {QLatin1String("name"), -1},
                        {QLatin1String("type"), -1},
                        {QLatin1String("value"), -1}};
        readMembers(item, members);
        if (memberOf(members, "group") >= 0)
            readGroup(memberOf(members, "group"), port);
        bool valid = true;
        value = readValueOf(item, members, 0, valid);
        const int name = memberOf(members, "name");
        if (name < 0)
            requireMember(item, "name");
        if (name < 0 || !readString(name, "\"name\"", port.name))
            inputsComplete[0] = false;
    } else if (!readPort(item, "a parameter", nullptr, port)) {
        inputsComplete[0] = false;
    }
    result.snapshot.nodes[0].inputs.append(port);
    result.snapshot.parameters.append(value);
    result.places.inputs[0].append(placeOf(item));
}

void DocumentReader::readRoot(const Members& members)
{
    NodeRecord& root = result.snapshot.nodes[0];
    if (memberOf(members, "name") >= 0)
        readString(memberOf(members, "name"), "\"name\"", root.name);
    const int value = memberOf(members, "value");
    if (value >= 0 && readInt(value, "\"value\"", root.value))
        values.emplace_back(root.value, value);
    bool groupsRead = true;
    root.groups = readGroups(memberOf(members, "groups"), groupsRead);
    beginPorts(root.groups, groupsRead);
    if (!readList(memberOf(members, "parameters"), "\"parameters\"",
                  [this](int item) { readParameter(item); }))
        inputsComplete[0] = false;
    const auto readOutput = [this, &root](int item) {
        PortRecord port;
        if (!readPort(item, "an output", nullptr, port))
            outputsComplete[0] = false;
        root.outputs.append(port);
        result.places.outputs[0].append(placeOf(item));
    };
    if (!readList(memberOf(members, "outputs"), "\"outputs\"", readOutput))
        outputsComplete[0] = false;
    result.snapshot.numOutputs = root.outputs.size();
}

/// The node that a path leads to; -1 if none, kSeveral if it leaves out a number.
int DocumentReader::nodeOf(const QString& path) const
{
    const auto exact = nodesByPath.constFind(path);
    if (exact != nodesByPath.constEnd() || path.isEmpty())
        return path.isEmpty() ? 0 : *exact;
    int node = 0;
    const QStringList parts = path.split(QLatin1Char('/'));
    for (const QString& part : parts) {
        const PathSegment segment = parsePathSegment(part);
        const QVector<int> all = nodesByName.value(qMakePair(node, segment.name));
        if (!segment.valid || all.isEmpty() || segment.ordinal >= all.size())
            return -1;
        if (segment.ordinal < 0 && all.size() > 1)
            return kSeveral;
        node = all.at(qMax(segment.ordinal, 0));
    }
    return node;
}

/// The parent that a path names, which has been listed.
int DocumentReader::parentOf(const QString& path, const QString& parentPath, int item)
{
    const int parent = nodeOf(parentPath);
    if (parent >= 0)
        return parent;
    const bool told = toldPaths.contains(parentPath) || !nodesComplete;
    toldPaths.insert(path);
    if (told)
        return -1;
    toldPaths.insert(parentPath);
    report(item, "unknown-parent",
           quoted(path) + QLatin1String(": no entry before this one is the group ")
               + quoted(parentPath));
    return -1;
}

bool DocumentReader::readPath(int item, NodeRecord& node, int& ordinal)
{
    QString path;
    if (!readString(item, "\"path\"", path)) {
        nodesComplete = false;
        return false;
    }
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    const PathSegment segment = parsePathSegment(path.mid(slash + 1));
    if (!segment.valid || slash == 0) {
        report(item, "bad-path", quoted(path) + QLatin1String(" is not the path of a node"));
        toldPaths.insert(path);
        return false;
    }
    const QString parentPath = path.left(qMax(slash, 0));
    const int parent = slash < 0 ? 0 : parentOf(path, parentPath, item);
    if (parent < 0)
        return false;
    const auto known = nodesByPath.constFind(path);
    if (known != nodesByPath.constEnd()) {
        const auto first = static_cast<std::size_t>(*known);
        // Of two groups of one path, the nodes within have the same paths, too.
        if (!repeatedPaths.contains(parentPath))
            report(item, "duplicate-path",
                   quoted(path) + QLatin1String(" is in line ")
                       + QString::number(text.place(text.item(pathItems[first]).begin).line)
                       + QLatin1String(" already; several of one name are numbered, from ")
                       + quoted(Paths::escaped(segment.name) + QLatin1String("[0]")));
        repeatedPaths.insert(path);
        inputsComplete[first] = false; // which one is meant nobody knows
        outputsComplete[first] = false;
        return false;
    }
    nodesByPath.insert(path, result.snapshot.nodes.size());
    node.name = segment.name;
    node.parent = parent;
    ordinal = segment.ordinal;
    return true;
}

/// What only passes have, or only groups.
void DocumentReader::readKind(const Members& members, NodeRecord& node)
{
    const int pass = memberOf(members, "pass");
    const int enabled = memberOf(members, "enabled");
    const int value = memberOf(members, "value");
    node.pass = pass >= 0;
    node.enabled = node.pass;
    if (node.pass)
        readString(pass, "\"pass\"", node.type);
    if (enabled >= 0 && !node.pass) {
        report(enabled, "misplaced-key", QLatin1String("only passes are enabled or disabled"));
    } else if (enabled >= 0) {
        const JsonText::Kind kind = text.kind(enabled);
        node.enabled = kind != JsonText::False;
        if (kind != JsonText::True && kind != JsonText::False)
            report(enabled, "wrong-type",
                   QLatin1String("\"enabled\" must be true or false, not ") + kindName(enabled));
    }
    if (value >= 0 && node.pass)
        report(value, "misplaced-key",
               QLatin1String("the value of a pass is its number and not written"));
    else if (value >= 0 && readInt(value, "\"value\"", node.value))
        values.emplace_back(node.value, value);
}

void DocumentReader::readNode(int item)
{
    if (!expect(item, JsonText::Object, "a node")) {
        nodesComplete = false;
        return;
    }
    Members members;
    for (const char* key : {"enabled", "groups", "inputs", "outputs", "pass", "path", "value"})
        members.push_back({QLatin1String(key), -1});
    readMembers(item, members);

    NodeRecord node;
    node.removed = false;
    readKind(members, node);
    bool groupsRead = true;
    node.groups = readGroups(memberOf(members, "groups"), groupsRead);
    beginPorts(node.groups, groupsRead);
    QVector<Place> inputPlaces;
    QVector<Place> outputPlaces;
    bool allInputs = true;
    bool allOutputs = true;
    allInputs = readList(memberOf(members, "inputs"), "\"inputs\"",
                         [&](int element) {
                             PortRecord port;
                             allInputs = readPort(element, "an input", &node, port) && allInputs;
                             node.inputs.append(port);
                             inputPlaces.append(placeOf(element));
                         })
        && allInputs;
    allOutputs = readList(memberOf(members, "outputs"), "\"outputs\"",
                          [&](int element) {
                              PortRecord port;
                              allOutputs =
                                  readPort(element, "an output", nullptr, port) && allOutputs;
                              node.outputs.append(port);
                              outputPlaces.append(placeOf(element));
                          })
        && allOutputs;

    const int pathItem = memberOf(members, "path");
    int ordinal = PathSegment::kNoOrdinal;
    if (pathItem < 0) {
        requireMember(item, "path");
        nodesComplete = false;
        return;
    }
    if (!readPath(pathItem, node, ordinal))
        return;
    if (node.pass)
        node.value = numPasses++;
    const int ref = result.snapshot.nodes.size();
    nodesByName[qMakePair(node.parent, node.name)].append(ref);
    result.snapshot.nodes[node.parent].children.append(ref);
    result.snapshot.nodes.append(node);
    result.places.nodes.append(placeOf(item));
    result.places.inputs.append(inputPlaces);
    result.places.outputs.append(outputPlaces);
    pathItems.push_back(pathItem);
    ordinals.push_back(ordinal);
    inputsComplete.push_back(allInputs);
    outputsComplete.push_back(allOutputs);
}

/// Whether the numbers in the paths are those of the order of the entries.
void DocumentReader::checkNumbers()
{
    for (int ref = 1; ref < result.snapshot.nodes.size(); ++ref) {
        const NodeRecord& node = result.snapshot.nodes.at(ref);
        const QVector<int> all = nodesByName.value(qMakePair(node.parent, node.name));
        const int item = pathItems[static_cast<std::size_t>(ref)];
        const int ordinal = ordinals[static_cast<std::size_t>(ref)];
        const bool unique = all.size() == 1;
        const int position =
            static_cast<int>(std::lower_bound(all.cbegin(), all.cend(), ref) - all.cbegin());
        if (ordinal == position || (unique && ordinal < 0 && !node.name.isEmpty()))
            continue;
        const QString path = text.string(item);
        if (repeatedPaths.contains(path))
            continue;
        const QString right = path.left(path.lastIndexOf(QLatin1Char('/')) + 1)
            + Paths::escaped(node.name)
            + (unique && !node.name.isEmpty()
                   ? QString()
                   : QLatin1Char('[') + QString::number(position) + QLatin1Char(']'));
        report(item, "wrong-number",
               quoted(path) + QLatin1String(" must be ") + quoted(right)
                   + QLatin1String(" by the order of the entries"));
    }
}

/// A group's value must not be the number of a pass, which the group would then be.
void DocumentReader::checkValues()
{
    for (const QPair<int, int>& entry : values) {
        const int value = entry.first;
        if (value >= 0 && value < numPasses)
            report(entry.second, "value-names-pass",
                   QLatin1String("the value ") + QString::number(value)
                       + QLatin1String(" is the number of a pass: they are numbered from 0 to ")
                       + QString::number(numPasses - 1));
    }
}

/// A node that an edge or the target names; -1 if there is none, which has been told.
int DocumentReader::namedNode(const QString& path, int item, const QString& where)
{
    const int node = nodeOf(path);
    if (node >= 0 || toldPaths.contains(path))
        return node;
    if (node == kSeveral) {
        toldPaths.insert(path);
        report(item, "ambiguous-node",
               where + QLatin1String("several nodes are called ") + quoted(path)
                   + QLatin1String(": give a number, as in ")
                   + quoted(path + QLatin1String("[0]")));
    } else if (nodesComplete) {
        toldPaths.insert(path);
        report(item, "unknown-node", where + QLatin1String("there is no node ") + quoted(path));
    }
    return node;
}

bool DocumentReader::readEnd(const QString& path, int item, const QString& where, End& end)
{
    const int dot = path.lastIndexOf(QLatin1Char('.'));
    end.path = path.left(qMax(dot, 0));
    end.port = parsePathSegment(path.mid(dot + 1));
    if (!end.port.valid || dot == 0) {
        report(item, "bad-path",
               where + quoted(path) + QLatin1String(" is not the path of a port"));
        return false;
    }
    end.node = namedNode(end.path, item, where);
    return end.node >= 0;
}

/// The port at one end of an edge; -1 if there is none, which has been told.
int DocumentReader::namedPort(const End& end, bool isOutput, int item, const QString& where)
{
    const auto key = qMakePair(end.node, isOutput);
    auto names = ports.find(key);
    if (names == ports.end()) {
        names = ports.insert(key, Positions());
        const NodeRecord& node = result.snapshot.nodes.at(end.node);
        const QVector<PortRecord>& list = isOutput ? node.outputs : node.inputs;
        for (int i = 0; i < list.size(); ++i)
            (*names)[list.at(i).name].append(i);
    }
    const auto all = names->constFind(end.port.name);
    const int number = all == names->constEnd() ? 0 : all->size();
    if (end.port.ordinal >= 0 ? end.port.ordinal < number : number == 1)
        return all->at(qMax(end.port.ordinal, 0));

    const auto& complete = isOutput ? outputsComplete : inputsComplete;
    const QString told = QString::number(end.node)
        + (isOutput ? QLatin1String(">") : QLatin1String("<")) + QString::number(end.port.ordinal)
        + end.port.name;
    if (!complete[static_cast<std::size_t>(end.node)] || toldPorts.contains(told))
        return -1;
    toldPorts.insert(told);
    const bool isRoot = end.node == 0;
    const char* const kind =
        isRoot ? (isOutput ? "output" : "parameter") : (isOutput ? "output" : "input");
    const QString owner = isRoot ? QLatin1String("the renderer") : quoted(end.path);
    if (number > 1 && end.port.ordinal < 0)
        report(item, "ambiguous-port",
               where + owner + QLatin1String(" has several ") + QLatin1String(kind)
                   + QLatin1String("s called ") + quoted(end.port.name)
                   + QLatin1String(": give a number, as in ")
                   + quoted(Paths::escaped(end.port.name) + QLatin1String("[0]")));
    else
        report(item, "unknown-port",
               where + owner + QLatin1String(" has no ") + QLatin1String(kind) + QLatin1Char(' ')
                   + quoted(end.port.name)
                   + (end.port.ordinal > 0
                          ? QLatin1String(" of number ") + QString::number(end.port.ordinal)
                          : QString()));
    return -1;
}

void DocumentReader::readEdge(int item)
{
    QString edge;
    if (!readString(item, "an edge", edge))
        return;
    const QString where = quoted(edge) + QLatin1String(": ");
    const QStringList ends = edge.split(QLatin1String(" -> "));
    if (ends.size() != 2) {
        report(item, "bad-edge", where + QLatin1String("an edge is written as \"FROM -> TO\""));
        return;
    }
    End from;
    End to;
    const bool knowsFrom = readEnd(ends.first(), item, where, from);
    const bool knowsTo = readEnd(ends.last(), item, where, to);
    if (!knowsFrom || !knowsTo)
        return;
    const EdgeKind kind = result.snapshot.kindBetween(from.node, to.node);
    if (kind == EdgeKind::None) {
        report(item, "unrelated-nodes",
               where + QLatin1String("the nodes are neither siblings nor a group and its child"));
        return;
    }
    EdgeRecord record;
    record.srcNode = from.node;
    record.srcIndex = namedPort(from, kind != EdgeKind::Down, item, where);
    record.dstNode = to.node;
    record.dstIndex = namedPort(to, kind == EdgeKind::Up, item, where);
    if (record.srcIndex < 0 || record.dstIndex < 0)
        return;
    candidates.append(record);
    edgeItems.push_back(item);
}

/// Adds the edges as a graph would.
void DocumentReader::checkEdges()
{
    EdgeCheck check(result.snapshot, candidates);
    const Paths paths(result.snapshot);
    for (int i = 0; i < candidates.size(); ++i) {
        const EdgeRecord& edge = candidates.at(i);
        const int item = edgeItems[static_cast<std::size_t>(i)];
        const EdgeCheck::Verdict verdict = check.add(edge);
        if (verdict == EdgeCheck::Accepted) {
            result.places.edges.append(placeOf(item));
            continue;
        }
        const QString where = quoted(text.string(item)) + QLatin1String(": ");
        const EdgeKind kind = result.snapshot.kindBetween(edge.srcNode, edge.dstNode);
        const PortRef from = Snapshot::sourceOf(edge, kind);
        const PortRef to = Snapshot::destinationOf(edge, kind);
        const auto otherEnd = [&](int other) {
            const EdgeRecord& record = result.snapshot.edge(other);
            return QPair<PortRef, PortRef>(
                Snapshot::sourceOf(record, result.snapshot.kindOf(other)),
                Snapshot::destinationOf(record, result.snapshot.kindOf(other)));
        };
        if (verdict == EdgeCheck::AlreadyFed) {
            const PortRecord& port = to.isOutput ? result.snapshot.output(to.node, to.index)
                                                 : result.snapshot.input(to.node, to.index);
            report(item, "already-fed",
                   where + paths.port(to) + QLatin1String(" is fed by ")
                       + paths.port(otherEnd(port.source).first) + QLatin1String(" already"));
        } else if (verdict == EdgeCheck::LeavesGroup) {
            const int oldest =
                result.snapshot.output(from.node, from.index).destinations.value(0, -1);
            report(item, "leaves-group",
                   where + paths.port(from) + QLatin1String(" feeds ")
                       + paths.port(otherEnd(oldest).second)
                       + QLatin1String(" of its group first; list its edges to siblings before"));
        } else {
            QStringList names;
            const QVector<PortRef> cycle = check.cycle();
            for (const PortRef& port : cycle)
                names.append(paths.port(port));
            report(item, "cycle",
                   where + QLatin1String("it closes the cycle ") + names.join(QLatin1String(" -> "))
                       + QLatin1String(" -> ") + names.first());
        }
    }
}

ReadResult DocumentReader::read()
{
    result.places.nodes.append(placeOf(0));
    result.places.inputs.resize(1);
    result.places.outputs.resize(1);
    pathItems.push_back(0);
    ordinals.push_back(PathSegment::kNoOrdinal);
    inputsComplete.push_back(true);
    outputsComplete.push_back(true);

    Members members;
    for (const char* key : {"edges", "format", "groups", "name", "nodes", "outputs", "parameters",
                            "target", "value", "version"})
        members.push_back({QLatin1String(key), -1});
    if (!expect(0, JsonText::Object, "the document"))
        return finished();
    const int end = text.item(0).next;
    for (int key = 1; key < end; key = text.item(key + 1).next) {
        for (Member& member : members) {
            if (member.value < 0 && text.string(key) == member.key)
                member.value = key + 1;
        }
    }
    if (!readHeader(members))
        return finished();
    for (Member& member : members)
        member.value = -1;
    readMembers(0, members);
    reportDuplicateKeys();
    readRoot(members);
    if (!readList(memberOf(members, "nodes"), "\"nodes\"", [this](int item) { readNode(item); }))
        nodesComplete = false;
    checkNumbers();
    checkValues();
    readList(memberOf(members, "edges"), "\"edges\"", [this](int item) { readEdge(item); });
    checkEdges();
    const int target = memberOf(members, "target");
    QString path;
    if (target >= 0 && readString(target, "\"target\"", path)) {
        result.snapshot.target = namedNode(path, target, QLatin1String("target: "));
        result.places.target = placeOf(target);
    }
    return finished();
}

ReadResult DocumentReader::finished()
{
    if (found.empty())
        return result;
    std::stable_sort(found.begin(), found.end(),
                     [](const Found& a, const Found& b) { return a.offset < b.offset; });
    ReadResult failed;
    for (const Found& entry : found)
        failed.problems.append(entry.problem);
    return failed;
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
