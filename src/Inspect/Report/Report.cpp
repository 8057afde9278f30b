// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Report.h>

#include "Model/LookUp.h"
#include "Picture/Markup.h"
#include "Report/ReportStyle.h"

#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Inspect/Picture.h>
#include <Kestrin/Orv/Inspect/Schedule.h>
#include <Kestrin/Orv/Inspect/Trace.h>

#include <QtCore/QHash>
#include <QtCore/QXmlStreamReader>

#include <algorithm>
#include <cmath>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

const int kMostBars = 60; // in a timeline, which nobody reads beyond

QByteArray number(double value)
{
    return QByteArray::number(value, 'f', 3);
}

QByteArray count(qint64 value)
{
    return QByteArray::number(value);
}

QByteArray percent(double part)
{
    return number(100 * part) + "%";
}

struct Unit
{
    double size;
    const char* name;
};

/// The unit that suits a time.
const Unit& unitOf(double ns)
{
    static const Unit units[] = {{1e9, " s"}, {1e6, " ms"}, {1e3, " \xC2\xB5s"}, {1, " ns"}};
    for (const Unit& unit : units) {
        if (ns >= 0.9995 * unit.size)
            return unit;
    }
    return units[3];
}

/// A time with three digits.
QByteArray timeText(double ns)
{
    const Unit& unit = unitOf(ns);
    const double value = ns / unit.size;
    const int decimals = unit.size == 1 ? 0 : value < 9.995 ? 2 : value < 99.95 ? 1 : 0;
    return QByteArray::number(value, 'f', decimals) + unit.name;
}

/// A time at an axis, where round ones stand.
QByteArray tickText(double ns)
{
    const Unit& unit = unitOf(ns);
    return QByteArray::number(ns / unit.size, 'g', 5) + unit.name;
}

/// A round number, 1, 2 or 5 times a power of ten, that is not below `value`.
double roundedUp(double value)
{
    const double power = std::pow(10, std::floor(std::log10(std::max(value, 1e-9))));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= value * 0.999999)
            return factor * power;
    }
    return 10 * power;
}

// Pictures

const char* const kDrawnElements[] = {"g", "polygon", "polyline", "path", "ellipse", "text"};
const char* const kDrawnAttributes[] = {"class",
                                        "fill",
                                        "stroke",
                                        "stroke-width",
                                        "stroke-dasharray",
                                        "stroke-opacity",
                                        "fill-opacity",
                                        "transform",
                                        "points",
                                        "d",
                                        "cx",
                                        "cy",
                                        "rx",
                                        "ry",
                                        "x",
                                        "y",
                                        "text-anchor",
                                        "font-family",
                                        "font-size",
                                        "font-weight",
                                        "font-style"};

template<std::size_t N>
bool isOneOf(const QStringRef& text, const char* const (&list)[N])
{
    return std::any_of(std::begin(list), std::end(list),
                       [&](const char* entry) { return text == QLatin1String(entry); });
}

QByteArray attributes(const QXmlStreamAttributes& given)
{
    QByteArray text;
    for (const QXmlStreamAttribute& attribute : given) {
        if (!attribute.namespaceUri().isEmpty() || !isOneOf(attribute.name(), kDrawnAttributes)
            || attribute.value().contains(QLatin1String("url"), Qt::CaseInsensitive))
            continue;
        text += " " + attribute.name().toLatin1() + "='"
            + escapedMarkup(attribute.value().toString()) + "'";
    }
    return text;
}

/// A length of SVG in points, or 0 if it is none.
double points(const QStringRef& length)
{
    QString digits = length.toString();
    if (digits.endsWith(QLatin1String("pt")) || digits.endsWith(QLatin1String("px")))
        digits.chop(2);
    const double value = digits.toDouble();
    return value > 0 && value < 1e6 ? value : 0;
}

QByteArray rootElement(const QXmlStreamAttributes& given, const QByteArray& description)
{
    const double width = points(given.value(QLatin1String("width")));
    if (width == 0)
        return QByteArray();
    return "<svg class='graph' role='img' aria-label='" + description + "' viewBox='"
        + escapedMarkup(given.value(QLatin1String("viewBox")).toString())
        + "' style='--w:" + number(width) + "pt'>\n";
}

/// What an SVG picture draws, for use within a page: shapes and texts and nothing that acts, refers
/// to something else or follows rules of its own. The policy of the page keeps out the same once
/// more. Empty for what is no picture.
QByteArray drawnParts(const QByteArray& svg, const QByteArray& description)
{
    QXmlStreamReader reader(svg);
    QByteArray out;
    bool isInside = false;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::DTD:
            if (reader.text().contains(QLatin1Char('[')))
                return QByteArray(); // entities of its own
            break;
        case QXmlStreamReader::StartElement:
            if (!isInside) {
                if (reader.name() != QLatin1String("svg"))
                    return QByteArray();
                out = rootElement(reader.attributes(), description);
                if (out.isEmpty())
                    return QByteArray();
                isInside = true;
            } else if (isOneOf(reader.name(), kDrawnElements)) {
                out += "<" + reader.name().toLatin1() + attributes(reader.attributes()) + ">";
            } else if (reader.name() != QLatin1String("a")) { // of a link, what it is around stays
                reader.skipCurrentElement();
            }
            break;
        case QXmlStreamReader::EndElement:
            if (reader.name() == QLatin1String("svg"))
                out += "</svg>\n";
            else if (reader.name() != QLatin1String("a"))
                out += "</" + reader.name().toLatin1() + ">";
            break;
        case QXmlStreamReader::Characters:
            if (isInside && !reader.isWhitespace())
                out += escapedMarkup(reader.text().toString());
            else if (isInside)
                out += "\n";
            break;
        default:
            break;
        }
    }
    return reader.hasError() ? QByteArray() : out;
}

// The page

struct Bar
{
    int pass;
    qint64 begin;
    qint64 end;
    qint64 called = 0;
    qint64 waited = 0;
    unsigned int errorCode = 0;
    QVector<TraceEvent> events;
};

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
    void writeHistogram(const QVector<qint64>& times);
    void writeTimelines();
    void writeTimeline(const TraceEvent& frame, const QByteArray& id, const QByteArray& title,
                       const QVector<TraceEvent>& events);
    void writeBars(const TraceEvent& frame, const QVector<Bar>& bars);

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
    QVector<TraceEvent> events;
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
    events = content.trace->events();
    frameTimes = content.trace->frames();
    passTimes = content.trace->passes();
    for (const TraceEvent& event : qAsConst(events)) {
        if (event.kind == TraceEvent::Frame)
            wholeFrames.append(event);
    }
    // The last one may not have been recorded to its end.
    wholeFrames.resize(qMin(wholeFrames.size(), frameTimes.count));
    for (int i = 0; i < passTimes.size(); ++i) {
        // A pass that was made anew goes by the same name.
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
    QVector<int> way;
    for (int ref = 0; ref < neededBy.size(); ++ref) {
        // Back to where the way began, or to where it is known already.
        int needer = ref;
        int output = -1;
        while (needer > 0 && neededBy.at(needer) == unknown) {
            neededBy[needer] = -1;
            way.append(needer);
            const PortRef by = lookUp(schedule.reachedBy, needer);
            if (by.node == 0)
                output = by.index;
            needer = by.node;
        }
        if (needer > 0)
            output = neededBy.at(needer);
        for (const int node : qAsConst(way))
            neededBy[node] = output;
        way.clear();
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

/// Why a pass runs or not: the next step on the way from what needs it.
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
    QByteArray text = (runs ? "Needed by " : "Wanted by ") + needer;
    if (by.node != 0)
        text += ", feeds " + escapedMarkup(paths.port(by));
    return text + (runs ? "." : "; defaults are taken in its place.");
}

void Page::writeHead()
{
    const QByteArray title =
        content.title.isEmpty() ? QByteArray("Render graph") : escapedMarkup(content.title);
    out += "<!DOCTYPE html>\n<html lang='en'>\n<head>\n<meta charset='utf-8'>\n"
           // Nothing is loaded and nothing is run, whatever names or a picture may hold.
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
        fact(timeText(static_cast<double>(frameTimes.median)), "median frame");
        fact(timeText(static_cast<double>(frameTimes.maximum)), "longest frame");
    }
    out += "</dl>\n";
}

void Page::writePicture()
{
    out += "<section aria-labelledby='picture'>\n<h2 id='picture'>Picture</h2>\n";
    const QByteArray drawn =
        drawnParts(content.picture, "The graph; the table of passes tells the same in words");
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
        out += "<td role='cell' class='n" + more + " data-label='" + name + "'>"
            + timeText(static_cast<double>(time)) + "</td>";
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
        out += "<p class='soft'>Times are what all calls of a pass took in one frame, waiting "
               "included; so many percent of the frames took no longer.</p>\n";
    }
    out += "</section>\n";
}

/// How frame times are counted. Few and far longer ones go into one last bar.
struct Bins
{
    explicit Bins(const QVector<qint64>& sorted);

    double from;
    double step;
    bool hasRest = false; // the last bin holds all that is longer
    QVector<int> counts;
};

Bins::Bins(const QVector<qint64>& sorted)
{
    const int most = 30;
    const auto at = [&sorted](double part) {
        return static_cast<double>(sorted.at(static_cast<int>(part * (sorted.size() - 1))));
    };
    const double longest = at(1);
    double to = qMax(at(0.98), at(0.75) + 4 * (at(0.75) - at(0.25)));
    hasRest = longest > to + (to - at(0));
    if (!hasRest)
        to = longest;
    step = roundedUp(qMax((to - at(0)) / most, qMax(to / 100, 1.0)));
    from = std::floor(at(0) / step) * step;
    counts.resize(static_cast<int>((to - from) / step) + 1 + hasRest);
    for (const qint64 time : sorted) {
        const double bin = std::floor((static_cast<double>(time) - from) / step);
        ++counts[static_cast<int>(qBound(0.0, bin, counts.size() - 1.0))];
    }
}

void Page::writeHistogram(const QVector<qint64>& times)
{
    const Bins bins(times);
    const int most = *std::max_element(bins.counts.begin(), bins.counts.end());
    const double numBins = bins.counts.size();
    const int top = 34, bottom = 204;
    const int gridStep = qMax(1, static_cast<int>(roundedUp(most / 4.0)));
    const auto y = [=](double frames) { return bottom - (bottom - top) * frames / most; };
    const auto range = [&](int bin) {
        const double begin = bins.from + bin * bins.step;
        return bins.hasRest && bin == bins.counts.size() - 1
            ? timeText(begin) + " and longer"
            : timeText(begin) + " to " + timeText(begin + bins.step);
    };

    out += "<figure>\n<figcaption>How many frames took how long</figcaption>\n"
           "<svg class='chart' height='244' role='img' aria-label='Histogram of "
        + count(times.size()) + " frame times: median "
        + timeText(static_cast<double>(frameTimes.median)) + ", longest "
        + timeText(static_cast<double>(frameTimes.maximum)) + "'>\n";
    for (int frames = gridStep; frames <= most; frames += gridStep) {
        const bool isHighest = frames + gridStep > most;
        out += "<line class='grid' x1='0' x2='100%' y1='" + number(y(frames)) + "' y2='"
            + number(y(frames)) + "'/><text class='quiet halo' x='0' y='" + number(y(frames) - 4)
            + "'>" + count(frames) + (isHighest ? frames == 1 ? " frame" : " frames" : "")
            + "</text>\n";
    }
    for (int bin = 0; bin < bins.counts.size(); ++bin) {
        const int frames = bins.counts.at(bin);
        if (frames == 0)
            continue;
        const bool isRest = bins.hasRest && bin == bins.counts.size() - 1;
        out += QByteArray("<rect class='bar") + (isRest ? " rest" : "") + "' x='"
            + percent(bin / numBins) + "' width='" + percent(1 / numBins) + "' y='"
            + number(y(frames)) + "' height='" + number(bottom - y(frames)) + "'><title>"
            + range(bin) + ": " + count(frames) + "</title></rect>\n";
    }
    const double to = bins.from + numBins * bins.step;
    // Each on its own line; the median's text to the left of its mark, the other's to the right.
    const auto mark = [&](const char* kind, const QByteArray& name, qint64 time, int at) {
        const double part =
            qBound(0.0, (static_cast<double>(time) - bins.from) / (to - bins.from), 1.0);
        const bool isLeft = part > (*kind == '\0' ? 0.35 : 0.65);
        out += QByteArray("<line class='mark ") + kind + "' x1='" + percent(part) + "' x2='"
            + percent(part) + "' y1='" + count(at - 10) + "' y2='204'/><text class='halo' x='"
            + percent(part) + "' y='" + count(at) + "' dx='" + (isLeft ? "-5" : "5")
            + "' text-anchor='" + (isLeft ? "end" : "start") + "'>" + name + " "
            + timeText(static_cast<double>(time)) + "</text>\n";
    };
    mark("", "median", frameTimes.median, 12);
    mark("far", "99 % within", frameTimes.percentile99, 27);
    out += "<line class='axis' x1='0' x2='100%' y1='204' y2='204'/>\n";
    const int labelStep = qMax(1, static_cast<int>(std::ceil(numBins / 4)));
    for (int bin = 0; bin < bins.counts.size() - labelStep / 2; bin += labelStep) {
        out += "<text class='quiet' x='" + percent(bin / numBins) + "' y='220'>"
            + tickText(bins.from + bin * bins.step) + "</text>\n";
    }
    if (bins.hasRest)
        out += "<text class='quiet' x='100%' y='220' text-anchor='end'>longer</text>\n";
    out += "<text class='quiet' x='100%' y='240' text-anchor='end'>time of a frame</text>\n"
           "</svg>\n"
           "<details><summary>As a table</summary>\n<table>\n<thead><tr><th scope='col'>Time</th>"
           "<th scope='col' class='n'>Frames</th></tr></thead>\n<tbody>\n";
    for (int bin = 0; bin < bins.counts.size(); ++bin) {
        if (bins.counts.at(bin) > 0) {
            out += "<tr><th scope='row'>" + range(bin) + "</th><td class='n'>"
                + count(bins.counts.at(bin)) + "</td></tr>\n";
        }
    }
    out += "</tbody>\n</table>\n</details>\n</figure>\n";
}

void Page::writeFrameTimes()
{
    QVector<qint64> times;
    times.reserve(wholeFrames.size());
    for (const TraceEvent& frame : qAsConst(wholeFrames))
        times.append(qMax<qint64>(0, frame.endNs - frame.beginNs));
    std::sort(times.begin(), times.end());
    out += "<section aria-labelledby='times'>\n<h2 id='times'>Frame times</h2>\n";
    writeHistogram(times);
    if (content.trace->numDropped() > 0) {
        out += "<p class='soft'>The trace was full before the end: "
            + count(content.trace->numDropped())
            + " events and the frames that they belong to are missing.</p>\n";
    }
    out += "</section>\n";
}

void Page::writeBars(const TraceEvent& frame, const QVector<Bar>& bars)
{
    const int rowHeight = 34;
    const int height = rowHeight * bars.size() + 24;
    const double length = qMax(1.0, static_cast<double>(frame.endNs - frame.beginNs));
    const auto partAt = [&](qint64 time) {
        return qBound(0.0, static_cast<double>(time - frame.beginNs) / length, 1.0);
    };
    const double step = roundedUp(length / 4);

    out += "<svg class='chart timeline' height='" + count(height)
        + "' role='img' aria-label='Timeline of frame " + count(frame.frame)
        + "; the table below tells the same'>\n";
    int y = 0;
    for (const Bar& bar : bars) {
        out += "<rect class='track' x='0' width='100%' y='" + count(y + 17) + "' height='12'/>\n";
        for (const TraceEvent& event : bar.events) {
            const bool isWait = event.kind == TraceEvent::Wait;
            out += QByteArray("<rect class='") + (isWait ? "waited" : "call")
                + (bar.errorCode != 0 && !isWait ? " bad'" : "'")
                + (isWait ? " fill='url(#waited)'" : "") + " x='" + percent(partAt(event.beginNs))
                + "' width='" + percent(partAt(event.endNs) - partAt(event.beginNs)) + "' y='"
                + count(y + 17) + "' height='12'/>\n";
        }
        const QString name = shortened(content.trace->passName(bar.pass), 36);
        out += "<text x='0' y='" + count(y + 12) + "'>" + escapedMarkup(name)
            + "</text><text class='quiet' x='100%' y='" + count(y + 12) + "' text-anchor='end'>"
            + timeText(static_cast<double>(bar.called + bar.waited))
            + (bar.errorCode != 0 ? ", failed" : "") + "</text>\n";
        y += rowHeight;
    }
    for (int tick = 0; tick * step <= length; ++tick) {
        const double part = tick * step / length;
        out += "<line class='grid' x1='" + percent(part) + "' x2='" + percent(part) + "' y1='"
            + count(height - 22) + "' y2='" + count(height - 16) + "'/>";
        if (part < 0.9) {
            out += "<text class='quiet' x='" + percent(part) + "' y='" + count(height - 3) + "'>"
                + tickText(tick * step) + "</text>\n";
        }
    }
    out += "</svg>\n";
}

void Page::writeTimeline(const TraceEvent& frame, const QByteArray& id, const QByteArray& title,
                         const QVector<TraceEvent>& eventsOfFrame)
{
    QVector<Bar> bars;
    QHash<int, int> barOf; // by pass
    for (TraceEvent event : eventsOfFrame) {
        auto index = barOf.find(event.pass);
        if (index == barOf.end()) {
            index = barOf.insert(event.pass, bars.size());
            bars.append({event.pass, event.beginNs, event.endNs, 0, 0, 0, {}});
        }
        Bar& bar = bars[*index];
        // A call within a call has been counted.
        if (!bar.events.isEmpty())
            event.beginNs = qMax(event.beginNs, bar.end);
        if (event.endNs < event.beginNs)
            continue;
        bar.end = event.endNs;
        (event.kind == TraceEvent::Wait ? bar.waited : bar.called) += event.endNs - event.beginNs;
        bar.errorCode = qMax(bar.errorCode, event.errorCode);
        bar.events.append(event);
    }
    const int numPasses = bars.size();
    if (numPasses > kMostBars) {
        // The longest ones, in the order in which they were called.
        const auto longer = [](const Bar& a, const Bar& b) {
            return a.called + a.waited > b.called + b.waited;
        };
        std::stable_sort(bars.begin(), bars.end(), longer);
        bars.resize(kMostBars);
        std::stable_sort(bars.begin(), bars.end(),
                         [](const Bar& a, const Bar& b) { return a.begin < b.begin; });
    }

    out += "<h3 id='" + id + "'>" + title + ": frame " + count(frame.frame) + ", "
        + timeText(static_cast<double>(frame.endNs - frame.beginNs)) + "</h3>\n<figure>\n";
    if (numPasses > kMostBars) {
        out += "<figcaption>The " + count(kMostBars) + " longest of " + count(numPasses)
            + " passes</figcaption>\n";
    }
    writeBars(frame, bars);
    out += "<details><summary>As a table</summary>\n"
           "<div class='scroll' tabindex='0' role='region' aria-label='Table of frame "
        + count(frame.frame) + ", scrollable'>\n<table>\n<thead><tr><th scope='col'>Pass</th>"
        + "<th scope='col' class='n'>From</th><th scope='col' class='n'>To</th>"
          "<th scope='col' class='n'>In calls</th><th scope='col' class='n'>Waiting</th>"
          "<th scope='col' class='n'>Error</th></tr></thead>\n<tbody>\n";
    for (const Bar& bar : qAsConst(bars)) {
        out += "<tr><th scope='row'>" + escapedMarkup(content.trace->passName(bar.pass)) + "</th>";
        for (const qint64 time :
             {bar.begin - frame.beginNs, bar.end - frame.beginNs, bar.called, bar.waited}) {
            out += "<td class='n'>" + timeText(static_cast<double>(time)) + "</td>";
        }
        out += "<td class='n'>" + (bar.errorCode == 0 ? QByteArray() : count(bar.errorCode))
            + "</td></tr>\n";
    }
    out += "</tbody>\n</table>\n</div>\n</details>\n</figure>\n";
}

void Page::writeTimelines()
{
    const auto time = [](const TraceEvent& frame) { return frame.endNs - frame.beginNs; };
    QVector<TraceEvent> byTime = wholeFrames;
    std::stable_sort(byTime.begin(), byTime.end(),
                     [&](const TraceEvent& a, const TraceEvent& b) { return time(a) < time(b); });
    const TraceEvent middle = byTime.at((byTime.size() - 1) / 2);
    const TraceEvent longest = byTime.last();
    QVector<TraceEvent> ofMiddle, ofLongest;
    for (const TraceEvent& event : qAsConst(events)) {
        if (event.kind == TraceEvent::Frame || event.kind >= TraceEvent::IsFinished)
            continue;
        if (event.frame == middle.frame)
            ofMiddle.append(event);
        if (event.frame == longest.frame)
            ofLongest.append(event);
    }

    out += "<section aria-labelledby='timelines'>\n<h2 id='timelines'>Timelines</h2>\n"
           "<ul class='legend'><li><svg width='24' height='12' class='chart' "
           "style='width:24px;display:inline-block' aria-hidden='true'><defs>"
           "<pattern id='waited' width='6' height='6' patternUnits='userSpaceOnUse' "
           "patternTransform='rotate(45)'><path d='M1 0V6' stroke-width='2' "
           "style='stroke:var(--run)'/></pattern></defs>"
           "<rect class='call' width='24' height='12'/></svg>in calls of the pass</li>"
           "<li><svg width='24' height='12' class='chart' "
           "style='width:24px;display:inline-block' aria-hidden='true'>"
           "<rect class='waited' fill='url(#waited)' width='24' height='12'/></svg>"
           "waiting for it to finish</li></ul>\n";
    if (middle.frame != longest.frame)
        writeTimeline(middle, "median-frame", "The median frame", ofMiddle);
    writeTimeline(longest, "longest-frame", "The longest frame", ofLongest);
    out += "</section>\n";
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
