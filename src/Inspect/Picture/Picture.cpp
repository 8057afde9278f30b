// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Picture.h>

#include "Model/LookUp.h"
#include "Model/ValueText.h"
#include "Picture/Markup.h"
#include "Picture/NodeTree.h"
#include "Rules/PredictSchedule.h"
#include "Rules/ValueFlow.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

const int kLongestName = 48;
const int kLongestValue = 16;
const int kDeepestIndent = 12; // keeps the size of the text linear, however deep groups are nested

/// How a node is drawn. The colours differ for colour-blind readers too; lines and words
/// distinguish states without colour. Dark pages replace these colours one by one, see Report.cpp.
struct Look
{
    const char* name; // the class of the drawn node
    const char* fill;
    const char* line;
    const char* style;
};

const Look kScheduled = {"scheduled", "#e8f1fb", "#1f5fa8", "solid"};
const Look kNotNeeded = {"not-needed", "#f4f4f5", "#5f6673", "dashed"};
const Look kDisabled = {"disabled", "#fdf3dc", "#7f5200", "dotted"};
const Look kFailed = {"failed", "#fdeaea", "#b3261e", "bold"};
const Look kBoundary = {"boundary", "#ffffff", "#64748b", "solid"};
const Look kRenderer = {"renderer", "#e6f4ee", "#1b6e53", "solid"};

// The attributes of edges: a line style and an arrow head of its own for each kind.
const char kRegular[] = R"(class="regular" color="#1f2937")";
const char kDown[] = R"(class="down" style=dashed color="#1f5fa8" arrowhead=onormal)";
const char kUp[] = R"(class="up" style=dotted penwidth=1.8 color="#1b6e53" arrowhead=odiamond)";
const char kDead[] = R"(class="dead" style=dashed color="#8f3a2b" arrowhead=tee )"
                     R"(label="carries nothing" fontcolor="#8f3a2b")";

const char kBeginning[] = R"(digraph orv {
  graph [rankdir=LR bgcolor="#ffffff" pad=0.25 nodesep=0.3 ranksep=0.5 fontsize=12 labeljust=l fontname="Helvetica,Arial,sans-serif" fontcolor="#111827"]
  node [shape=box margin=0 height=0 width=0 penwidth=1.3 fontsize=11 fontname="Helvetica,Arial,sans-serif" fontcolor="#111827"]
  edge [fontsize=9 arrowsize=0.7 penwidth=1.3 fontname="Helvetica,Arial,sans-serif" fontcolor="#4b5563"]
)";

QByteArray number(int value)
{
    return QByteArray::number(value);
}

/// The attributes of a box.
QByteArray box(const QByteArray& kind, const Look& look, const char* fill)
{
    return "class=\"" + kind + R"(" style="rounded,filled,)" + look.style + R"(" fillcolor=")"
        + fill + R"(" color=")" + look.line + '"';
}

/// Any text for a label. Graphviz has its own escapes there, which begin with a backslash.
QByteArray escapedLabel(const QString& text, int length = kLongestName)
{
    return escapedMarkup(shortened(text, length)).replace("\\", "\\\\");
}

QByteArray label(const QString& name, const QByteArray& ifEmpty)
{
    if (name.isEmpty())
        return "<i>" + ifEmpty + "</i>";
    const QByteArray text = escapedLabel(name);
    return name.trimmed().isEmpty() ? "&quot;" + text + "&quot;" : text;
}

/// A value that is short enough to be shown beside a port; empty for any other.
QByteArray shortValue(const QVariant& value)
{
    if (value.userType() == QMetaType::QString)
        return " = &quot;" + escapedLabel(value.toString(), kLongestValue) + "&quot;";
    const QString text = scalarText(value);
    return text.isEmpty() ? QByteArray() : " = " + text.toUtf8();
}

class Drawing
{
public:
    Drawing(const Snapshot& shown, const QVector<int>& failed);

    QByteArray draw();

private:
    void enter(int ref, int depth);
    void leave(int ref, int depth);
    void drawPass(int ref);
    void openGroup(int ref, int depth);
    void drawPorts(int ref, bool areOutputs, const Look& drawnAs, const QByteArray& title);
    void drawSource(const PortRef& to);
    void drawDeadEdge(int ref);
    void drawEdge(const PortRef& from, const PortRef& to, const char* attributes);

    bool exists(const PortRef& port) const;
    bool isGroup(int ref) const;
    const Look& look(int ref) const;
    QByteArray state(int ref) const;
    QByteArray heading(int ref) const;
    QByteArray cell(int ref, int index, bool isOutput, const char* align);
    QByteArray end(const PortRef& port);
    void indent(int depth);

    const Snapshot& snapshot;
    const NodeTree tree;
    const ValueFlow flow;
    const Schedule schedule;
    QVector<bool> hasFailed;
    QVector<bool> drawn;      // by node ref
    QVector<bool> drawnEdges; // by edge ref: those that carry something
    int numLooseEnds = 0;
    QByteArray out;
};

Drawing::Drawing(const Snapshot& shown, const QVector<int>& failed)
    : snapshot(shown)
    , tree(shown)
    , flow(shown)
    , schedule(predictSchedule(shown, flow))
    , hasFailed(shown.nodes.size(), false)
    , drawn(shown.nodes.size(), false)
    , drawnEdges(shown.edges.size(), false)
{
    for (const int ref : failed) {
        if (ref >= 0 && ref < hasFailed.size())
            hasFailed[ref] = true;
    }
}

void Drawing::indent(int depth)
{
    out += QByteArray(2 * qMin(depth, kDeepestIndent), ' ');
}

bool Drawing::isGroup(int ref) const
{
    return !snapshot.node(ref).pass || !tree.children(ref).isEmpty();
}

const Look& Drawing::look(int ref) const
{
    if (hasFailed.at(ref))
        return kFailed;
    if (lookUp(schedule.positions, ref) >= 0 && snapshot.isLivePass(ref))
        return kScheduled;
    return snapshot.node(ref).enabled ? kNotNeeded : kDisabled;
}

QByteArray Drawing::state(int ref) const
{
    if (!snapshot.node(ref).pass)
        return QByteArray();
    const int position = schedule.positions.value(ref, -1);
    QByteArray text;
    if (position >= 0)
        text = number(position + 1);
    else
        text = snapshot.node(ref).enabled ? "not needed" : "disabled";
    if (hasFailed.at(ref))
        text += " failed";
    return text;
}

/// Name, kind and state, as rows of a table.
QByteArray Drawing::heading(int ref) const
{
    const NodeRecord& node = snapshot.node(ref);
    const Look& drawnAs = look(ref);
    QByteArray notes;
    if (!node.type.isEmpty())
        notes += escapedLabel(node.type);
    if (ref == snapshot.target)
        notes += QByteArray(notes.isEmpty() ? "" : ", ") + "target";
    if (!tree.isListed(ref))
        notes += QByteArray(notes.isEmpty() ? "" : ", ") + "unlisted";

    QByteArray text = "<table border='0' cellborder='0' cellspacing='0' cellpadding='3'><tr>";
    if (node.pass) {
        text += QByteArray("<td border='1' style='rounded' cellpadding='3' color='") + drawnAs.line
            + "' bgcolor='" + drawnAs.line + "'><font color='#ffffff' point-size='10'><b>"
            + state(ref) + "</b></font></td>";
    }
    text += "<td><b>" + label(node.name, "no name") + "</b></td>";
    if (!notes.isEmpty())
        text += "<td><font point-size='9' color='#4b5563'>" + notes + "</font></td>";
    // Takes most of the width that wide rows below leave free.
    return text + "<td colspan='12' cellpadding='0'></td></tr></table>";
}

QByteArray Drawing::cell(int ref, int index, bool isOutput, const char* align)
{
    const PortRecord& port = snapshot.port({ref, index, isOutput});
    QByteArray text = "<td port='" + QByteArray(isOutput ? "o" : "i") + number(index) + "' align='"
        + align + "'>" + label(port.name, (isOutput ? "output " : "input ") + number(index));
    if (ref == 0 && !isOutput)
        text += shortValue(lookUp(snapshot.parameters, index));
    if (!isOutput && snapshot.node(ref).pass && !flow.carriesValue({ref, index, false}))
        text += " <font color='#4b5563'><i>default" + shortValue(port.defaultValue) + "</i></font>";
    return text + "</td>";
}

void Drawing::drawPass(int ref)
{
    const NodeRecord& node = snapshot.node(ref);
    const Look& drawnAs = look(ref);
    out += "n" + number(ref) + " [" + box(QByteArray("pass ") + drawnAs.name, drawnAs, drawnAs.fill)
        + " label=<<table border='0' cellborder='0' cellspacing='0' cellpadding='4'>"
          "<tr><td colspan='2'>"
        + heading(ref) + "</td></tr>";
    const int numRows = qMax(node.inputs.size(), node.outputs.size());
    if (numRows > 0)
        out += "<hr/>";
    for (int i = 0; i < numRows; ++i) {
        out += "<tr>";
        out += i < node.inputs.size() ? cell(ref, i, false, "left") : QByteArray("<td></td>");
        out += i < node.outputs.size() ? cell(ref, i, true, "right") : QByteArray("<td></td>");
        out += "</tr>";
    }
    out += "</table>>]\n";
}

/// The inputs or outputs of a group or of the renderer, as a separate node.
void Drawing::drawPorts(int ref, bool areOutputs, const Look& drawnAs, const QByteArray& title)
{
    const int numPorts =
        areOutputs ? snapshot.node(ref).outputs.size() : snapshot.node(ref).inputs.size();
    out += "n" + number(ref) + (areOutputs ? "o" : "i") + " ["
        + box(drawnAs.name, drawnAs, drawnAs.fill)
        + " label=<<table border='0' cellborder='0' cellspacing='0' cellpadding='4'>";
    if (!title.isEmpty())
        out += "<tr><td><b>" + title + "</b></td></tr><hr/>";
    for (int i = 0; i < numPorts; ++i)
        out += "<tr>" + cell(ref, i, areOutputs, "center") + "</tr>";
    out += "</table>>]\n";
}

void Drawing::openGroup(int ref, int depth)
{
    const NodeRecord& node = snapshot.node(ref);
    const Look& drawnAs = node.pass ? look(ref) : kBoundary;
    indent(depth);
    out += "subgraph cluster_n" + number(ref) + " {\n";
    indent(depth + 1);
    out += box("group", drawnAs, depth % 2 == 0 ? "#f8fafc" : "#eef2f7") + " label=<" + heading(ref)
        + ">\n";
    if (!node.inputs.isEmpty()) {
        indent(depth + 1);
        drawPorts(ref, false, kBoundary, QByteArray());
    }
    if (!node.outputs.isEmpty()) {
        indent(depth + 1);
        drawPorts(ref, true, kBoundary, QByteArray());
    }
    if (node.inputs.isEmpty() && node.outputs.isEmpty() && tree.children(ref).isEmpty()) {
        indent(depth + 1);
        out += "n" + number(ref) + " [shape=plaintext label=empty]\n";
    }
}

void Drawing::enter(int ref, int depth)
{
    drawn[ref] = true;
    if (ref != 0) {
        if (isGroup(ref)) {
            openGroup(ref, depth);
        } else {
            indent(depth);
            drawPass(ref);
        }
        return;
    }
    if (!snapshot.node(0).inputs.isEmpty()) {
        indent(1);
        drawPorts(0, false, kRenderer, "Parameters");
    }
    if (!snapshot.node(0).outputs.isEmpty()) {
        indent(1);
        drawPorts(0, true, kRenderer, "Outputs");
    }
}

void Drawing::leave(int ref, int depth)
{
    if (ref == 0 || !isGroup(ref))
        return;
    indent(depth);
    out += "}\n";
}

bool Drawing::exists(const PortRef& port) const
{
    return lookUp(drawn, port.node) && snapshot.hasPort(port);
}

/// The cell of a port. For a port that does not exist, a text is drawn instead.
QByteArray Drawing::end(const PortRef& port)
{
    const char* side = port.isOutput ? "o" : "i";
    if (exists(port)) {
        const bool isSplit = port.node == 0 || isGroup(port.node);
        return "n" + number(port.node) + (isSplit ? side : "") + ":" + side + number(port.index);
    }
    QByteArray id = "x" + number(numLooseEnds++);
    indent(1);
    out += id + " [shape=plaintext label=<no " + (port.isOutput ? "output " : "input ")
        + number(port.index) + " of "
        + (lookUp(drawn, port.node) ? label(snapshot.node(port.node).name, "no name")
                                    : "node " + number(port.node))
        + ">]\n";
    return id;
}

void Drawing::drawEdge(const PortRef& from, const PortRef& to, const char* attributes)
{
    const QByteArray tail = end(from);
    const QByteArray head = end(to);
    indent(1);
    out += tail + (tail.startsWith('n') ? ":e" : "") + " -> " + head
        + (head.startsWith('n') ? ":w" : "") + " [" + attributes + "]\n";
}

/// The edge that feeds a port.
void Drawing::drawSource(const PortRef& to)
{
    const PortRef from = snapshot.feeder(to);
    if (!exists(from))
        return;
    drawnEdges[snapshot.port(to).source] = true;
    drawEdge(from, to, to.isOutput ? kUp : from.isOutput ? kRegular : kDown);
}

/// An edge that carries nothing.
void Drawing::drawDeadEdge(int ref)
{
    drawEdge(snapshot.sourceOf(ref), snapshot.destinationOf(ref), kDead);
}

QByteArray Drawing::draw()
{
    out = kBeginning;
    const auto entering = [this](int ref, int depth) { enter(ref, depth); };
    const auto leaving = [this](int ref, int depth) { leave(ref, depth); };
    QVector<bool> visited(snapshot.nodes.size(), false);
    if (!visited.isEmpty())
        traverse(tree, 0, 0, visited, entering, leaving);
    for (const int detached : tree.detached())
        traverse(tree, detached, 1, visited, entering, leaving);

    for (int ref = 0; ref < snapshot.nodes.size(); ++ref) {
        if (!drawn.at(ref))
            continue;
        const NodeRecord& node = snapshot.nodes.at(ref);
        for (int i = 0; i < node.inputs.size(); ++i)
            drawSource({ref, i, false});
        for (int i = 0; i < node.outputs.size(); ++i)
            drawSource({ref, i, true});
    }
    for (int ref = 0; ref < snapshot.edges.size(); ++ref) {
        if (!snapshot.edges.at(ref).removed && !drawnEdges.at(ref))
            drawDeadEdge(ref);
    }
    return out + "}\n";
}

} // namespace

QByteArray toGraphviz(const Snapshot& snapshot, const QVector<int>& failed)
{
    return Drawing(snapshot, failed).draw();
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
