// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_COMMANDFUNCTIONS_H
#define KESTRIN_ORV_PROGRAM_COMMANDFUNCTIONS_H

namespace Kestrin::Orv::Program {

class Arguments;
class Output;

// The functions that run the commands. Each one is in a source of its own: LintCommand.cpp and so
// on. They return an ExitCode, and may throw the exceptions of Errors.h.

int runLint(const Arguments& arguments, Output& output);
int runOrder(const Arguments& arguments, Output& output);
int runExplain(const Arguments& arguments, Output& output);
int runDot(const Arguments& arguments, Output& output);
int runPicture(const Arguments& arguments, Output& output);
int runReport(const Arguments& arguments, Output& output);
int runDiff(const Arguments& arguments, Output& output);
int runDryRun(const Arguments& arguments, Output& output);

} // namespace Kestrin::Orv::Program

#endif
