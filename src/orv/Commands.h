// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_COMMANDS_H
#define KESTRIN_ORV_PROGRAM_COMMANDS_H

#include "Command.h"

#include <QtCore/QString>

namespace Kestrin::Orv::Program {

/// The table of all commands, in the order of the help.
const QVector<Command>& commands();
/// The command with this name; null if there is none.
const Command* findCommand(const QString& name);

} // namespace Kestrin::Orv::Program

#endif
