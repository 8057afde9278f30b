// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_DOTPROGRAM_H
#define KESTRIN_ORV_PROGRAM_DOTPROGRAM_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace Kestrin::Orv::Program {

/// Graphviz's program dot. Throws a SystemError if the program fails.
class DotProgram
{
public:
    /// Searches PATH for the program.
    DotProgram();
    bool isInstalled() const { return !program.isEmpty(); }
    /// Draws Graphviz text in a format such as "svg".
    QByteArray draw(const QByteArray& text, const QString& format, int timeoutSeconds) const;

private:
    QString program;
};

} // namespace Kestrin::Orv::Program

#endif
