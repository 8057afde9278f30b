// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Document.h"

#include "Program.h"

#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QStringList>

#include <gtest/gtest.h>

#include <functional>

namespace {

const QString edges = QStringLiteral("edges");
const QString nodes = QStringLiteral("nodes");
const QString inputs = QStringLiteral("inputs");
const QString parameters = QStringLiteral("parameters");

QString property(const QJsonValue& entry, const char* key)
{
    return entry.toObject().value(QLatin1String(key)).toString();
}

/// The name of a port, which is written as a name alone or as an object.
QString nameOf(const QJsonValue& port)
{
    return port.isString() ? port.toString() : property(port, "name");
}

/// Whether a path is that of a node, of one inside it or of a port of either.
bool isPartOf(const QString& path, const QString& node)
{
    return path == node || path.startsWith(node + QLatin1Char('/'))
        || path.startsWith(node + QLatin1Char('.'));
}

using Test = std::function<bool(const QJsonValue&)>;

int findIn(const QJsonArray& list, const Test& isIt, const QString& what)
{
    for (int i = 0; i < list.size(); ++i) {
        if (isIt(list.at(i)))
            return i;
    }
    ADD_FAILURE() << "the document does not have " << qPrintable(what);
    return -1;
}

int removeFrom(QJsonArray& list, const Test& isIt)
{
    const int before = list.size();
    for (int i = list.size() - 1; i >= 0; --i) {
        if (isIt(list.at(i)))
            list.removeAt(i);
    }
    return before - list.size();
}

/// Sets a property of the entry at an index of a list; -1 for none.
void setAt(QJsonArray& list, int index, const QString& key, const QJsonValue& value)
{
    if (index < 0)
        return;
    QJsonObject entry = list.at(index).toObject();
    entry.insert(key, value);
    list.replace(index, entry);
}

} // namespace

Document::Document(const QString& path)
    : content(QJsonDocument::fromJson(bytesOf(path)).object())
{
    EXPECT_FALSE(content.isEmpty());
}

void Document::write(const QString& path) const
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
    file.write(QJsonDocument(content).toJson());
}

void Document::set(const QString& path, const QString& key, const QJsonValue& value)
{
    QJsonArray list = take(nodes);
    const auto isIt = [&](const QJsonValue& node) { return property(node, "path") == path; };
    setAt(list, findIn(list, isIt, path), key, value);
    content.insert(nodes, list);
}

void Document::setInput(const QString& path, const QString& input, const QString& key,
                        const QJsonValue& value)
{
    const QJsonArray list = take(nodes);
    const auto isNode = [&](const QJsonValue& node) { return property(node, "path") == path; };
    const int node = findIn(list, isNode, path);
    QJsonArray ports = list.at(node).toObject().value(inputs).toArray();
    const auto isInput = [&](const QJsonValue& port) { return nameOf(port) == input; };
    const int index = findIn(ports, isInput, path + QLatin1Char('.') + input);
    if (index >= 0 && ports.at(index).isString())
        ports.replace(index, QJsonObject{{QStringLiteral("name"), input}});
    setAt(ports, index, key, value);
    set(path, inputs, ports);
}

void Document::setParameter(const QString& name, const QString& key, const QJsonValue& value)
{
    QJsonArray list = take(parameters);
    const auto isIt = [&](const QJsonValue& entry) { return nameOf(entry) == name; };
    setAt(list, findIn(list, isIt, name), key, value);
    content.insert(parameters, list);
}

void Document::rewire(const QString& edge, const QString& replacement)
{
    QJsonArray list = take(edges);
    const auto isIt = [&](const QJsonValue& entry) { return entry.toString() == edge; };
    const int index = findIn(list, isIt, edge);
    if (index >= 0 && replacement.isEmpty())
        list.removeAt(index);
    else if (index >= 0)
        list.replace(index, replacement);
    content.insert(edges, list);
}

void Document::connect(const QString& edge)
{
    QJsonArray list = take(edges);
    list.append(edge);
    content.insert(edges, list);
}

void Document::addCopy(const QString& path, const QString& newPath)
{
    QJsonArray list = take(nodes);
    const auto isIt = [&](const QJsonValue& node) { return property(node, "path") == path; };
    const int index = findIn(list, isIt, path);
    QJsonObject copy = list.at(index).toObject();
    copy.insert(QStringLiteral("path"), newPath);
    list.append(copy);
    content.insert(nodes, list);
}

void Document::remove(const QString& path)
{
    QJsonArray list = take(nodes);
    const int numRemoved = removeFrom(
        list, [&](const QJsonValue& node) { return isPartOf(property(node, "path"), path); });
    EXPECT_GT(numRemoved, 0) << qPrintable(path);
    content.insert(nodes, list);

    QJsonArray connections = take(edges);
    removeFrom(connections, [&](const QJsonValue& edge) {
        const QStringList ends = edge.toString().split(QStringLiteral(" -> "));
        return isPartOf(ends.value(0), path) || isPartOf(ends.value(1), path);
    });
    content.insert(edges, connections);
}

void Document::removePort(const QString& listName, const QString& name)
{
    QJsonArray list = take(listName);
    EXPECT_EQ(removeFrom(list, [&](const QJsonValue& entry) { return nameOf(entry) == name; }), 1)
        << qPrintable(name);
    content.insert(listName, list);

    QJsonArray connections = take(edges);
    removeFrom(connections, [&](const QJsonValue& edge) {
        return edge.toString().split(QStringLiteral(" -> ")).contains(name);
    });
    content.insert(edges, connections);
}

QStringList Document::disabled() const
{
    QStringList paths;
    const QJsonArray list = take(nodes);
    for (const QJsonValue& node : list) {
        if (!node.toObject().value(QStringLiteral("enabled")).toBool(true))
            paths.append(property(node, "path"));
    }
    return paths;
}
