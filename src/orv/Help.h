// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_HELP_H
#define KESTRIN_ORV_PROGRAM_HELP_H

#include <QtCore/QString>

namespace Kestrin::Orv::Program {

struct Command;

/// The purpose of the program and its commands.
QString help();
/// The purpose of a command, its options, its exit statuses and an example.
QString help(const Command& command);

} // namespace Kestrin::Orv::Program

#endif
