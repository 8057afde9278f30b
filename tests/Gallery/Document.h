// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_GALLERY_DOCUMENT_H
#define ORV_TESTS_GALLERY_DOCUMENT_H

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QString>

/// A document of the gallery's graph, to be edited as one does in a text editor. Edits of what is
/// not there fail the test.
class Document
{
public:
    /// Reads what --save-graph has written.
    explicit Document(const QString& path);
    void write(const QString& path) const;

    /// Sets a property of the pass or group of this path.
    void set(const QString& path, const QString& key, const QJsonValue& value);
    /// Sets a property of an input of a pass.
    void setInput(const QString& path, const QString& input, const QString& key,
                  const QJsonValue& value);
    /// Sets a property of a parameter.
    void setParameter(const QString& name, const QString& key, const QJsonValue& value);
    /// Replaces a connection by another one, or removes it if that is empty.
    void rewire(const QString& edge, const QString& replacement = QString());
    void connect(const QString& edge);
    /// Adds a pass or group like another one, not connected yet.
    void addCopy(const QString& path, const QString& newPath);
    /// Removes a pass, or a group with all that it holds, and all connections.
    void remove(const QString& path);
    /// Removes a parameter or an output of the renderer, and its connections.
    void removePort(const QString& list, const QString& name);

    /// The paths of the passes that are written as disabled.
    QStringList disabled() const;

private:
    QJsonArray take(const QString& list) const { return content.value(list).toArray(); }

    QJsonObject content;
};

#endif
