// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Report/ReportTimelines.h"

#include "Picture/Markup.h"
#include "Report/ReportNumbers.h"

#include <QtCore/QHash>

#include <algorithm>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

const int kMostRows = 60; // of a timeline; readers do not look any further
const int kRowHeight = 34;
const int kBarHeight = 12;
const int kLongestName = 36;

qint64 durationOf(const TraceEvent& event)
{
    return event.endNs - event.beginNs;
}

/// What one pass does in a frame.
struct Row
{
    qint64 total() const { return called + waited; }

    int pass;
    qint64 begin;
    qint64 end;
    qint64 called = 0;
    qint64 waited = 0;
    unsigned int errorCode = 0;
    QVector<TraceEvent> events;
};

/// One for each pass, in the order of their first calls.
QVector<Row> rowsOf(const QVector<TraceEvent>& events)
{
    QVector<Row> rows;
    QHash<int, int> rowOf; // by pass
    for (TraceEvent event : events) {
        auto index = rowOf.find(event.pass);
        if (index == rowOf.end()) {
            index = rowOf.insert(event.pass, rows.size());
            rows.append({event.pass, event.beginNs, event.endNs, 0, 0, 0, {}});
        }
        Row& row = rows[*index];
        // A call within a call has been counted.
        if (!row.events.isEmpty())
            event.beginNs = qMax(event.beginNs, row.end);
        if (event.endNs < event.beginNs)
            continue;
        row.end = event.endNs;
        (event.kind == TraceEvent::Wait ? row.waited : row.called) += durationOf(event);
        row.errorCode = qMax(row.errorCode, event.errorCode);
        row.events.append(event);
    }
    return rows;
}

/// Leaves the rows that took longest, in the order of their first calls.
void keepLongest(QVector<Row>& rows, int most)
{
    if (rows.size() <= most)
        return;
    std::stable_sort(rows.begin(), rows.end(),
                     [](const Row& a, const Row& b) { return a.total() > b.total(); });
    rows.resize(most);
    std::stable_sort(rows.begin(), rows.end(),
                     [](const Row& a, const Row& b) { return a.begin < b.begin; });
}

class Timeline
{
public:
    Timeline(const Trace& shown, const TraceEvent& drawnFrame)
        : trace(shown)
        , frame(drawnFrame)
        , length(qMax(1.0, static_cast<double>(durationOf(frame))))
    {
    }

    QByteArray write(const QByteArray& id, const QByteArray& title,
                     const QVector<TraceEvent>& events);

private:
    void writeChart();
    void writeRow(const Row& row, int y);
    void writeTicks(int height);
    void writeTable();

    double partAt(qint64 time) const
    {
        return qBound(0.0, static_cast<double>(time - frame.beginNs) / length, 1.0);
    }

    const Trace& trace;
    const TraceEvent frame;
    const double length; // of the frame, and not 0
    QVector<Row> rows;
    QByteArray out;
};

void Timeline::writeRow(const Row& row, int y)
{
    const QByteArray bar =
        "' y='" + count(y + 17) + "' height='" + count(kBarHeight) + "'/>\n"; // below the text
    out += "<rect class='track' x='0' width='100%" + bar;
    for (const TraceEvent& event : row.events) {
        const bool isWait = event.kind == TraceEvent::Wait;
        out += QByteArray("<rect class='") + (isWait ? "waited" : "call")
            + (row.errorCode != 0 && !isWait ? " bad'" : "'")
            + (isWait ? " fill='url(#waited)'" : "") + " x='" + percent(partAt(event.beginNs))
            + "' width='" + percent(partAt(event.endNs) - partAt(event.beginNs)) + bar;
    }
    const QByteArray line = "' y='" + count(y + 12) + "'";
    out += "<text x='0" + line + ">"
        + escapedMarkup(shortened(trace.passName(row.pass), kLongestName))
        + "</text><text class='quiet' x='100%" + line + " text-anchor='end'>"
        + timeText(row.total()) + (row.errorCode != 0 ? ", failed" : "") + "</text>\n";
}

void Timeline::writeTicks(int height)
{
    const double step = roundedUp(length / 4);
    for (int tick = 0; tick * step <= length; ++tick) {
        const double part = tick * step / length;
        out += "<line class='grid' x1='" + percent(part) + "' x2='" + percent(part) + "' y1='"
            + count(height - 22) + "' y2='" + count(height - 16) + "'/>";
        if (part < 0.9) { // further right, the text would not fit
            out += "<text class='quiet' x='" + percent(part) + "' y='" + count(height - 3) + "'>"
                + tickText(tick * step) + "</text>\n";
        }
    }
}

void Timeline::writeChart()
{
    const int height = kRowHeight * rows.size() + 24;
    out += "<svg class='chart timeline' height='" + count(height)
        + "' role='img' aria-label='Timeline of frame " + count(frame.frame)
        + "; the table below says the same'>\n";
    for (int i = 0; i < rows.size(); ++i)
        writeRow(rows.at(i), i * kRowHeight);
    writeTicks(height);
    out += "</svg>\n";
}

void Timeline::writeTable()
{
    out += "<details><summary>As a table</summary>\n"
           "<div class='scroll' tabindex='0' role='region' aria-label='Table of frame "
        + count(frame.frame) + ", scrollable'>\n<table>\n<thead><tr><th scope='col'>Pass</th>"
        + "<th scope='col' class='n'>From</th><th scope='col' class='n'>To</th>"
          "<th scope='col' class='n'>In calls</th><th scope='col' class='n'>Waiting</th>"
          "<th scope='col' class='n'>Error</th></tr></thead>\n<tbody>\n";
    for (const Row& row : qAsConst(rows)) {
        out += "<tr><th scope='row'>" + escapedMarkup(trace.passName(row.pass)) + "</th>";
        for (const qint64 time :
             {row.begin - frame.beginNs, row.end - frame.beginNs, row.called, row.waited}) {
            out += "<td class='n'>" + timeText(time) + "</td>";
        }
        out += "<td class='n'>" + (row.errorCode == 0 ? QByteArray() : count(row.errorCode))
            + "</td></tr>\n";
    }
    out += "</tbody>\n</table>\n</div>\n</details>\n";
}

QByteArray Timeline::write(const QByteArray& id, const QByteArray& title,
                           const QVector<TraceEvent>& events)
{
    rows = rowsOf(events);
    const int numPasses = rows.size();
    keepLongest(rows, kMostRows);
    out = "<h3 id='" + id + "'>" + title + ": frame " + count(frame.frame) + ", "
        + timeText(durationOf(frame)) + "</h3>\n<figure>\n";
    if (numPasses > kMostRows) {
        out += "<figcaption>The " + count(kMostRows) + " longest of " + count(numPasses)
            + " passes</figcaption>\n";
    }
    writeChart();
    writeTable();
    out += "</figure>\n";
    return out;
}

/// The life-cycle calls and waits of a frame.
QVector<TraceEvent> eventsOf(int frame, const QVector<TraceEvent>& events)
{
    QVector<TraceEvent> found;
    for (const TraceEvent& event : events) {
        if (event.frame == frame && event.kind != TraceEvent::Frame
            && event.kind < TraceEvent::IsFinished)
            found.append(event);
    }
    return found;
}

const char kLegend[] = "<ul class='legend'><li><svg width='24' height='12' class='chart' "
                       "style='width:24px;display:inline-block' aria-hidden='true'><defs>"
                       "<pattern id='waited' width='6' height='6' patternUnits='userSpaceOnUse' "
                       "patternTransform='rotate(45)'><path d='M1 0V6' stroke-width='2' "
                       "style='stroke:var(--run)'/></pattern></defs>"
                       "<rect class='call' width='24' height='12'/></svg>in calls of the pass</li>"
                       "<li><svg width='24' height='12' class='chart' "
                       "style='width:24px;display:inline-block' aria-hidden='true'>"
                       "<rect class='waited' fill='url(#waited)' width='24' height='12'/></svg>"
                       "waiting for it to finish</li></ul>\n";

} // namespace

QByteArray timelinesOf(const Trace& trace, const QVector<TraceEvent>& frames)
{
    QVector<TraceEvent> byTime = frames;
    std::stable_sort(byTime.begin(), byTime.end(), [](const TraceEvent& a, const TraceEvent& b) {
        return durationOf(a) < durationOf(b);
    });
    const TraceEvent median = byTime.at((byTime.size() - 1) / 2);
    const TraceEvent longest = byTime.last();
    const QVector<TraceEvent> events = trace.events();

    QByteArray out = kLegend;
    if (median.frame != longest.frame) {
        out += Timeline(trace, median)
                   .write("median-frame", "The median frame", eventsOf(median.frame, events));
    }
    return out
        + Timeline(trace, longest)
              .write("longest-frame", "The longest frame", eventsOf(longest.frame, events));
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
