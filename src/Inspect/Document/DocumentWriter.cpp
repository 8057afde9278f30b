// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Document.h>
#include <Kestrin/Orv/Inspect/Paths.h>

#include "Document/CanonicalSnapshot.h"
#include "Document/DocumentValues.h"
#include "Model/EdgeText.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

class DocumentWriter
{
public:
    DocumentWriter(const Snapshot& shown, const ValueTypes& valueTypes, QVector<Problem>* lossList)
        : snapshot(shown)
        , paths(shown)
        , types(valueTypes)
        , losses(lossList)
    {
    }

    QByteArray write();

private:
    static void insertList(QJsonObject& object, const char* key, const QJsonArray& list)
    {
        if (!list.isEmpty())
            object.insert(QLatin1String(key), list);
    }
    QJsonArray groups(const NodeRecord& node);
    QJsonObject port(const PortRecord& port) const;
    /// A port as its name alone, if it has no other keys.
    static QJsonValue shortened(const QJsonObject& port)
    {
        return port.size() == 1 ? port.constBegin().value() : QJsonValue(port);
    }
    void insertValue(QJsonObject& object, const QVariant& value, const QString& path);
    QJsonArray parameters();
    QJsonArray inputs(int ref);
    QJsonArray outputs(const NodeRecord& node) const;
    QJsonObject node(int ref);
    QJsonArray edges() const;

    const Snapshot& snapshot;
    const Paths paths;
    const ValueTypes& types;
    QVector<Problem>* const losses;
    /// The groups of the node that is being written, as its ports name them: by name, or by number
    /// where several groups have the same name.
    QVector<QJsonValue> groupNames;
};

QJsonArray DocumentWriter::groups(const NodeRecord& node)
{
    QJsonArray list;
    QHash<QString, int> firsts;
    groupNames.clear();
    for (int group = 0; group < node.groups.size(); ++group) {
        const QString& name = node.groups.at(group);
        list.append(name);
        const auto first = firsts.constFind(name);
        if (first == firsts.constEnd()) {
            firsts.insert(name, group);
            groupNames.append(name);
        } else {
            groupNames[*first] = *first;
            groupNames.append(group);
        }
    }
    return list;
}

QJsonObject DocumentWriter::port(const PortRecord& port) const
{
    QJsonObject object;
    object.insert(QLatin1String("name"), port.name);
    if (port.group != -1)
        object.insert(QLatin1String("group"), groupNames.value(port.group, port.group));
    return object;
}

void DocumentWriter::insertValue(QJsonObject& object, const QVariant& value, const QString& path)
{
    if (writeValue(value, types, object) || !losses)
        return;
    Problem loss;
    loss.code = QLatin1String("unwritable-value");
    loss.text = path + QLatin1String(": a value of type ") + QLatin1String(value.typeName())
        + QLatin1String(" has no written form");
    losses->append(loss);
}

QJsonArray DocumentWriter::parameters()
{
    QJsonArray list;
    const NodeRecord& root = snapshot.nodes.first();
    for (int i = 0; i < root.inputs.size(); ++i) {
        QJsonObject object = port(root.inputs.at(i));
        const QVariant& value = snapshot.parameters.at(i);
        if (value.isValid())
            insertValue(object, value, paths.input(0, i));
        list.append(shortened(object));
    }
    return list;
}

QJsonArray DocumentWriter::inputs(int ref)
{
    QJsonArray list;
    const NodeRecord& record = snapshot.nodes.at(ref);
    for (int i = 0; i < record.inputs.size(); ++i) {
        const PortRecord& input = record.inputs.at(i);
        QJsonObject object = port(input);
        if (input.defaultValue.isValid()) {
            QJsonObject value;
            insertValue(value, input.defaultValue, paths.input(ref, i));
            if (!value.isEmpty())
                object.insert(QLatin1String("default"), value);
        }
        list.append(shortened(object));
    }
    return list;
}

QJsonArray DocumentWriter::outputs(const NodeRecord& node) const
{
    QJsonArray list;
    for (const PortRecord& output : node.outputs)
        list.append(shortened(port(output)));
    return list;
}

QJsonObject DocumentWriter::node(int ref)
{
    const NodeRecord& record = snapshot.nodes.at(ref);
    QJsonObject object;
    object.insert(QLatin1String("path"), paths.node(ref));
    if (record.pass) {
        object.insert(QLatin1String("pass"), record.type);
        if (!record.enabled)
            object.insert(QLatin1String("enabled"), false);
    } else if (record.value != -1) {
        object.insert(QLatin1String("value"), record.value);
    }
    insertList(object, "groups", groups(record));
    insertList(object, "inputs", inputs(ref));
    insertList(object, "outputs", outputs(record));
    return object;
}

QJsonArray DocumentWriter::edges() const
{
    QJsonArray list;
    for (int i = 0; i < snapshot.edges.size(); ++i) {
        list.append(edgeText(paths, snapshot, i));
    }
    return list;
}

QByteArray DocumentWriter::write()
{
    QJsonObject document;
    document.insert(QLatin1String("format"), QLatin1String("orv-graph"));
    document.insert(QLatin1String("version"), 1);
    const NodeRecord& root = snapshot.nodes.first();
    if (!root.name.isEmpty())
        document.insert(QLatin1String("name"), root.name);
    if (root.value != -1)
        document.insert(QLatin1String("value"), root.value);
    insertList(document, "groups", groups(root));
    insertList(document, "parameters", parameters());
    insertList(document, "outputs", outputs(root));
    QJsonArray nodes;
    for (int ref = 1; ref < snapshot.nodes.size(); ++ref)
        nodes.append(node(ref));
    insertList(document, "nodes", nodes);
    insertList(document, "edges", edges());
    if (snapshot.target >= 0)
        document.insert(QLatin1String("target"), paths.node(snapshot.target));
    return QJsonDocument(document).toJson(QJsonDocument::Indented);
}

} // namespace

QByteArray writeDocument(const Snapshot& snapshot, QVector<Problem>* losses,
                         const ValueTypes& types)
{
    const CanonicalSnapshot canonical(snapshot);
    if (losses) {
        losses->clear();
        for (const CanonicalSnapshot::Loss& loss : canonical.losses)
            losses->append({loss.code, loss.text, Place()});
    }
    return DocumentWriter(canonical.snapshot, types, losses).write();
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
