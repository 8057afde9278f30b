// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_DOCS_PLUGIN_PASSES_H
#define ORV_TESTS_DOCS_PLUGIN_PASSES_H

#include <QtCore/QByteArray>
#include <QtCore/QMetaType>

/// A value that a pass of the plugin hands to the host.
struct Mesh
{
    QByteArray vertices;
};
Q_DECLARE_METATYPE(Mesh)

#endif
