// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Report.h>

#include "Model/LookUp.h"
#include "Picture/Markup.h"
#include "Report/FrameHistogram.h"
#include "Report/ReportNumbers.h"
#include "Report/ReportStyle.h"
#include "Report/ReportTimelines.h"
#include "Report/SvgSanitizer.h"

#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Inspect/Picture.h>
#include <Kestrin/Orv/Inspect/Schedule.h>
#include <Kestrin/Orv/Inspect/Trace.h>

#include <QtCore/QHash>

#include <algorithm>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

class Page
{
public:
    explicit Page(const ReportContent& shown);

    QByteArray write();

private:
    void writeHead();
    void writeFacts();
    void writePicture();
    void writeLegend();
    void writePasses();
    void writePass(int ref);
    void writeUnknownPass(const TraceSummary& times);
    void writeTimes(const TraceSummary* times);
    void writeFrameTimes();
    void writeTimelines();

    void findNeeders();
    QByteArray reason(int ref) const;
    const char* state(int ref) const;

    const ReportContent& content;
    const Snapshot& snapshot;
    const Paths paths;
    const Schedule schedule;
    QVector<bool> hasFailed;
    QVector<int> neededBy; // by node ref: the renderer's output that led to it; -1 for the target
    QVector<TraceEvent> wholeFrames; // in their order
    TraceSummary frameTimes;
    QVector<TraceSummary> passTimes;
    QHash<QString, int> timesOf; // by path, the index in `passTimes`
    qint64 longestMedian = 0;
    QByteArray out;
};

Page::Page(const ReportContent& shown)
    : content(shown)
    , snapshot(*shown.snapshot)
    , paths(snapshot)
    , schedule(predictSchedule(snapshot))
    , hasFailed(snapshot.nodes.size(), false)
{
    findNeeders();
    for (const int ref : content.failed) {
        if (ref >= 0 && ref < hasFailed.size())
            hasFailed[ref] = true;
    }
    if (!content.trace)
        return;
    frameTimes = content.trace->frames();
    passTimes = content.trace->passes();
    const QVector<TraceEvent> events = content.trace->events();
    for (const TraceEvent& event : events) {
        if (event.kind == TraceEvent::Frame)
            wholeFrames.append(event);
    }
    // The last one may not have been recorded to its end.
    wholeFrames.resize(qMin(wholeFrames.size(), frameTimes.count));
    for (int i = 0; i < passTimes.size(); ++i) {
        // Of passes with the same name, the one that was called: another may have replaced it.
        if (passTimes.at(i).count == 0)
            continue;
        timesOf.insert(passTimes.at(i).name, i);
        longestMedian = qMax(longestMedian, passTimes.at(i).median);
    }
}

void Page::findNeeders()
{
    const int unknown = -2;
    neededBy.fill(unknown, snapshot.nodes.size());
    QVector<int> path;
    for (int ref = 0; ref < neededBy.size(); ++ref) {
        // Back to where the path begins, or to a node for which this is known.
        int needer = ref;
        int output = -1;
        while (needer > 0 && neededBy.at(needer) == unknown) {
            neededBy[needer] = -1;
            path.append(needer);
            const PortRef by = lookUp(schedule.reachedBy, needer);
            if (by.node == 0)
                output = by.index;
            needer = by.node;
        }
        if (needer > 0)
            output = neededBy.at(needer);
        for (const int node : qAsConst(path))
            neededBy[node] = output;
        path.clear();
    }
}

const char* Page::state(int ref) const
{
    if (hasFailed.at(ref))
        return "failed";
    if (schedule.positions.value(ref, -1) >= 0)
        return "scheduled";
    return snapshot.node(ref).enabled ? "not-needed" : "disabled";
}

/// Why a pass runs or not: what needs it, and through which input.
QByteArray Page::reason(int ref) const
{
    const PortRef by = lookUp(schedule.reachedBy, ref);
    if (!schedule.needed.value(ref, false))
        return "No output of the renderer and no target leads to it.";
    if (by.node < 0)
        return "It is the target.";
    const int output = lookUp(neededBy, ref);
    const QByteArray needer = output >= 0
        ? "the renderer's output " + escapedMarkup(paths.output(0, output))
        : "the target " + escapedMarkup(paths.node(snapshot.target));
    const bool runs = schedule.positions.value(ref, -1) >= 0;
    QByteArray text = "Needed by " + needer;
    if (by.node != 0)
        text += ", feeds " + escapedMarkup(paths.port(by));
    return text + (runs ? "." : "; its readers take their defaults.");
}

void Page::writeHead()
{
    const QByteArray title =
        content.title.isEmpty() ? QByteArray("Render graph") : escapedMarkup(content.title);
    out += "<!DOCTYPE html>\n<html lang='en'>\n<head>\n<meta charset='utf-8'>\n"
           // Loads and runs nothing, whatever the names or the picture contain.
           "<meta http-equiv='Content-Security-Policy' content="
           R"("default-src 'none'; style-src 'unsafe-inline'; img-src data:; )"
           R"(base-uri 'none'; form-action 'none'">)"
           "\n"
           "<meta name='viewport' content='width=device-width, initial-scale=1'>\n"
           "<meta name='color-scheme' content='light dark'>\n"
           "<link rel='icon' href='data:,'>\n<title>"
        + title + "</title>\n<style>" + kReportStyle + "</style>\n</head>\n<body>\n<header>\n<h1>"
        + title + "</h1>\n";
    writeFacts();
    out += "<nav aria-label='Sections'><ul><li><a href='#picture'>Picture</a></li>"
           "<li><a href='#passes'>Passes</a></li>";
    if (!wholeFrames.isEmpty()) {
        out += "<li><a href='#times'>Frame times</a></li>"
               "<li><a href='#timelines'>Timelines</a></li>";
    }
    out += "</ul></nav>\n</header>\n<main>\n";
}

void Page::writeFacts()
{
    int disabled = 0, notNeeded = 0, failed = 0;
    for (int ref = 0; ref < snapshot.nodes.size(); ++ref) {
        const NodeRecord& node = snapshot.nodes.at(ref);
        if (node.removed || !node.pass)
            continue;
        failed += hasFailed.at(ref);
        if (!node.enabled)
            ++disabled;
        else if (schedule.positions.value(ref, -1) < 0)
            ++notNeeded;
    }
    const auto fact = [this](const QByteArray& value, const char* name) {
        out += QByteArray("<div><dt>") + name + "</dt><dd>" + value + "</dd></div>";
    };
    out += "<dl class='facts'>";
    fact(count(schedule.order.size()), schedule.order.size() == 1 ? "pass runs" : "passes run");
    fact(count(notNeeded), "not needed");
    fact(count(disabled), "disabled");
    if (failed > 0)
        fact(count(failed), "failed");
    if (frameTimes.count > 0) {
        fact(count(frameTimes.count), frameTimes.count == 1 ? "frame" : "frames");
        fact(timeText(frameTimes.median), "median frame");
        fact(timeText(frameTimes.maximum), "longest frame");
    }
    out += "</dl>\n";
}

void Page::writePicture()
{
    out += "<section aria-labelledby='picture'>\n<h2 id='picture'>Picture</h2>\n";
    const QByteArray drawn =
        sanitizedSvg(content.picture, "The graph; the table of passes says the same in words");
    if (drawn.isEmpty()) {
        out += "<p>The graph as text for Graphviz, whose <code>dot -Tsvg</code> draws it.</p>\n"
               "<pre class='scroll' tabindex='0' role='region' "
               "aria-label='Text for Graphviz, scrollable'>";
        const QList<QByteArray> lines = toGraphviz(snapshot, content.failed).split('\n');
        for (const QByteArray& line : lines)
            out += escapedMarkup(QString::fromUtf8(line)) + "\n";
        out += "</pre>\n";
    } else {
        out += "<div class='zoom' role='group' aria-label='The picture and its size'>\n"
               "<input type='radio' name='zoom' id='zoom-fit' checked>"
               "<label for='zoom-fit'>Fit</label>"
               "<input type='radio' name='zoom' id='zoom-1'>"
               "<label for='zoom-1'>100 %</label>"
               "<input type='radio' name='zoom' id='zoom-2'>"
               "<label for='zoom-2'>200 %</label>\n"
               "<div class='scroll' tabindex='0' role='region' "
               "aria-label='Picture of the graph, scrollable'>\n"
            + drawn + "</div>\n</div>\n";
        writeLegend();
    }
    out += "</section>\n";
}

void Page::writeLegend()
{
    const auto sample = [this](const char* name, const char* style) {
        out += QByteArray("<li><svg width='34' height='12' aria-hidden='true'>"
                          "<path d='M1 6H33' fill='none' stroke='currentColor' ")
            + style + "/></svg>" + name + "</li>";
    };
    out += "<ul class='legend' aria-label='Lines in the picture'>";
    sample("between siblings", "stroke-width='1.5'");
    sample("into a group", "stroke-width='1.5' stroke-dasharray='5 3'");
    sample("out of a group", "stroke-width='2' stroke-dasharray='1 4'");
    out += "<li>The number of a pass is its place in the order of execution.</li></ul>\n";
}

void Page::writeTimes(const TraceSummary* times)
{
    if (!content.trace)
        return;
    if (!times) {
        out += "<td role='cell'></td><td role='cell'></td><td role='cell'></td>"
               "<td role='cell'></td>";
        return;
    }
    const auto cell = [this](const char* name, qint64 time, const QByteArray& more) {
        out += "<td role='cell' class='n" + more + " data-label='" + name + "'>" + timeText(time)
            + "</td>";
    };
    const double part = longestMedian > 0
        ? static_cast<double>(times->median) / static_cast<double>(longestMedian)
        : 0;
    cell("median", times->median, " share' style='--part:" + percent(part) + "'");
    cell("90 %", times->percentile90, "'");
    cell("99 %", times->percentile99, "'");
    cell("longest", times->maximum, "'");
}

/// A path that is broken between nodes rather than within their names.
QByteArray breakable(const QString& path)
{
    return escapedMarkup(path).replace("/", "/<wbr>");
}

void Page::writePass(int ref)
{
    const NodeRecord& node = snapshot.node(ref);
    const QString path = paths.node(ref);
    const int position = schedule.positions.value(ref, -1);
    const char* drawn = state(ref);
    const QByteArray word = hasFailed.at(ref) ? "failed"
        : position >= 0                       ? "runs"
        : node.enabled                        ? "not needed"
                                              : "disabled";
    out += "<tr role='row'><td role='cell' class='n place'"
        + (position < 0 ? QByteArray(">") : " data-label='position'>" + count(position + 1))
        + "</td><th role='rowheader' scope='row'>" + breakable(path)
        + "</th><td role='cell' class='type'>" + escapedMarkup(node.type)
        + "</td><td role='cell' class='why'><span class='state " + drawn + "'>" + word
        + "</span> <span class='reason'>" + reason(ref) + "</span></td>";
    const auto times = timesOf.constFind(path);
    writeTimes(times == timesOf.constEnd() ? nullptr : &passTimes.at(*times));
    out += "</tr>\n";
    timesOf.remove(path);
}

void Page::writeUnknownPass(const TraceSummary& times)
{
    out += "<tr role='row'><td role='cell'></td><th role='rowheader' scope='row'>"
        + breakable(times.name)
        + "</th><td role='cell'></td><td role='cell' class='why'><span class='reason'>Not "
          "in this graph."
          "</span></td>";
    writeTimes(&times);
    out += "</tr>\n";
}

void Page::writePasses()
{
    out += "<section aria-labelledby='passes'>\n<h2 id='passes'>Passes</h2>\n"
           "<div class='scroll' tabindex='0' role='region' "
           "aria-label='Table of passes, scrollable'>\n"
           "<table role='table' class='cards'>\n<thead role='rowgroup'><tr role='row'>"
           "<th role='columnheader' scope='col' class='n'>Position</th>"
           "<th role='columnheader' scope='col'>Pass</th>"
           "<th role='columnheader' scope='col'>Type</th>"
           "<th role='columnheader' scope='col'>State</th>";
    if (content.trace) {
        for (const char* name : {"Median", "90&#160;%", "99&#160;%", "Longest"}) {
            out += QByteArray("<th role='columnheader' scope='col' class='n'>") + name + "</th>";
        }
    }
    out += "</tr></thead>\n<tbody role='rowgroup'>\n";
    for (const int ref : schedule.order)
        writePass(ref);
    for (int ref = 0; ref < snapshot.nodes.size(); ++ref) {
        const NodeRecord& node = snapshot.nodes.at(ref);
        if (!node.removed && node.pass && schedule.positions.value(ref, -1) < 0)
            writePass(ref);
    }
    for (int i = 0; i < passTimes.size(); ++i) {
        if (timesOf.value(passTimes.at(i).name, -1) == i)
            writeUnknownPass(passTimes.at(i));
    }
    out += "</tbody>\n</table>\n</div>\n";
    if (content.trace) {
        out +=
            "<p class='soft'>A time is that of all calls of a pass in one frame, waiting included. "
            "90&#160;% and 99&#160;% are percentiles: so many of the frames took no "
            "longer.</p>\n";
    }
    out += "</section>\n";
}

void Page::writeFrameTimes()
{
    QVector<qint64> times;
    times.reserve(wholeFrames.size());
    for (const TraceEvent& frame : qAsConst(wholeFrames))
        times.append(qMax<qint64>(0, frame.endNs - frame.beginNs));
    std::sort(times.begin(), times.end());
    out += "<section aria-labelledby='times'>\n<h2 id='times'>Frame times</h2>\n"
        + frameHistogram(times, frameTimes);
    if (content.trace->numDropped() > 0) {
        out += "<p class='soft'>The trace was full before the end: "
            + count(content.trace->numDropped())
            + " events and the frames that they belong to are missing.</p>\n";
    }
    out += "</section>\n";
}

void Page::writeTimelines()
{
    out += "<section aria-labelledby='timelines'>\n<h2 id='timelines'>Timelines</h2>\n"
        + timelinesOf(*content.trace, wholeFrames) + "</section>\n";
}

QByteArray Page::write()
{
    writeHead();
    writePicture();
    writePasses();
    if (!wholeFrames.isEmpty()) {
        writeFrameTimes();
        writeTimelines();
    } else if (content.trace) {
        out += "<p>No frame has been recorded.</p>\n";
    }
    out += "</main>\n<footer>Written by libOrvInspect. This page loads nothing and runs no scripts."
           "</footer>\n</body>\n</html>\n";
    return out;
}

} // namespace

QByteArray toHtml(const ReportContent& content)
{
    const Snapshot none;
    ReportContent shown = content;
    if (!shown.snapshot)
        shown.snapshot = &none;
    return Page(shown).write();
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
