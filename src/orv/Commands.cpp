// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Commands.h"

#include "CommandFunctions.h"

#include <algorithm>

namespace Kestrin::Orv::Program {

namespace {

const Positionals kOptionalFile{"[FILE]", 0, 1};

const Option kTimeout{"timeout", "SECONDS", "wait at most SECONDS for Graphviz; 60 by default"};

/// The options of commands that do a dry run; DryRunOptions.cpp reads them.
const QVector<Option> kDryRunOptions{
    {"slow", "PASS=MS", "let PASS take MS milliseconds in each frame"},
    {"fail", "PASS[=CODE]", "let PASS end each frame with the error code CODE; 1 by default"},
    {"disable", "PASS", "disable PASS"},
    {"parameter", "NAME=VALUE", "set the parameter NAME of the renderer to VALUE"},
    {"staggered", nullptr, "start at most one new pass per frame"},
};

/// All options of a command: those of its own, those that it shares with some commands, and those
/// of every command.
QVector<Option> options(const QVector<Option>& own, const QVector<Option>& shared = {})
{
    return own + shared
        + QVector<Option>{{"json", nullptr, "write one JSON object"},
                          {"help", nullptr, "show this help", 'h'}};
}

const QVector<Command> kCommands{
    {
        "lint",
        "Report what is valid in a graph but rarely intended",
        runLint,
        kOptionalFile,
        options({{"codes", nullptr, "list all codes and their meanings; read no document"}}),
        R"(Prints a line for each finding: file:line:column: code: text
)",
        "no findings",
        "at least one finding",
        R"($ orv lint forgotten.json
forgotten.json:8:9: unneeded-pass: Overlay never runs: neither an output of the renderer nor the target needs it.
)",
    },
    {
        "order",
        "List the passes that run, in execution order",
        runOrder,
        kOptionalFile,
        options({}),
        R"(Prints a line for each pass, with tabs between the fields: its position, its path, and for
each output the number of users that the renderer reports to the pass.
)",
        "the list was written; it may be empty",
        nullptr,
        R"($ orv order clean.json
1	Geometry	color=1
2	Tone	image=1
)",
    },
    {
        "explain",
        "Explain why passes run, where values come from, and which edges are accepted",
        runExplain,
        {"FILE [NODE | NODE.PORT | FROM TO]", 1, 3},
        options({}),
        R"(  NODE       explains why the pass runs or does not run
  NODE.PORT  explains where the value of an input comes from, or which pass produces an output
  FROM TO    explains whether the graph accepts an edge between two ports

With FILE alone, prints a line for each pass, with tabs between the fields: its position in the
execution order, its path, and whether it runs.
)",
        "the pass runs or the edge is accepted; also for inputs, for groups and for FILE alone",
        "the pass does not run, the edge is refused, or no pass produces the output",
        R"($ orv explain scene.json Grain
Grain does not run: it is disabled. The renderer's output Picture leads to it:
  output Picture
  output Tone.image
  input Tone.grain
  output Grain.noise
)",
    },
    {
        "dot",
        "Write a graph as Graphviz text",
        runDot,
        kOptionalFile,
        options({}),
        "",
        "the text was written",
        nullptr,
        R"($ orv dot scene.json >scene.dot
)",
    },
    {
        "picture",
        "Draw a graph with Graphviz",
        runPicture,
        kOptionalFile,
        options({
            {"output", "FILE", "write FILE; its suffix selects the format: .svg, .png or .pdf",
             'o'},
            kTimeout,
        }),
        R"(Without --output, the picture goes to standard output, as SVG.
)",
        "the picture was written",
        nullptr,
        R"($ orv picture -o scene.svg scene.json
)",
    },
    {
        "report",
        "Write a report on a graph and a dry run as one HTML file",
        runReport,
        kOptionalFile,
        options({{"output", "FILE", "write FILE", 'o'},
                 {"frames", "N", "run N frames; 100 by default"},
                 kTimeout},
                kDryRunOptions),
        R"(The dry run has a stand-in for each pass. Without --output, the report goes to standard output.
)",
        "the report was written",
        nullptr,
        R"($ orv report --frames 10 -o scene.html scene.json
)",
    },
    {
        "diff",
        "Report the differences between two graphs",
        runDiff,
        {"OLD NEW", 2, 2},
        options({}),
        R"(Compares nodes and ports by name. Prints a line for each change.
)",
        "no differences",
        "at least one difference",
        R"($ orv diff scene.json new.json
parameter-changed Angle: double 30 -> double 45
enabled-changed Grain: disabled -> enabled
node-removed Overlay: pass of type OverlayPass -> nothing
)",
    },
    {
        "run",
        "Do a dry run: run frames with stand-ins for the passes and show every call",
        runDryRun,
        kOptionalFile,
        options({{"frames", "N", "run N frames; 1 by default"},
                 {"trace", "FILE", "write the times of all calls to FILE, for Perfetto"}},
                kDryRunOptions),
        R"(Prints a line for each pass, with the calls that it receives, in order. The outputs of a
stand-in are numbers that depend on its name and inputs. Each frame ends with the values of the
renderer's outputs.
)",
        "all frames succeeded",
        "at least one frame failed",
        R"($ orv run --fail Tone=3 clean.json
setup
  Geometry: setup
  Tone: setup
frame 1 failed
  Geometry: beginFrame start endFrame
  Tone: beginFrame start endFrame, error code 3
  Picture = 117849884
teardown
  Geometry: teardown
  Tone: teardown
)",
    },
};

} // namespace

const QVector<Command>& commands()
{
    return kCommands;
}

const Command* findCommand(const QString& name)
{
    const auto* const command =
        std::find_if(kCommands.begin(), kCommands.end(),
                     [&name](const Command& each) { return name == QLatin1String(each.name); });
    return command == kCommands.end() ? nullptr : command;
}

} // namespace Kestrin::Orv::Program
