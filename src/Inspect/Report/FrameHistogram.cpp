// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Report/FrameHistogram.h"

#include "Report/ReportNumbers.h"

#include <algorithm>
#include <cmath>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

// The places of things in the chart, in pixels from its top.
const int kTop = 34;
const int kBottom = 204;
const int kTickLabels = 220;
const int kAxisTitle = 240;
const int kHeight = 244;

/// The frames by time. Few frames that took far longer than all others share the last bin.
struct Bins
{
    explicit Bins(const QVector<qint64>& sorted);

    bool isRest(int bin) const { return hasRest && bin == counts.size() - 1; }
    double begin(int bin) const { return from + bin * step; }
    QByteArray range(int bin) const;

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

QByteArray Bins::range(int bin) const
{
    return timeText(begin(bin)) + (isRest(bin) ? " and longer" : " to " + timeText(begin(bin + 1)));
}

class Histogram
{
public:
    Histogram(const QVector<qint64>& sorted, const TraceSummary& sumOfFrames)
        : summary(sumOfFrames)
        , numFrames(sorted.size())
        , bins(sorted)
        , most(*std::max_element(bins.counts.cbegin(), bins.counts.cend()))
        , gridStep(qMax(1, static_cast<int>(roundedUp(most / 4.0))))
    {
    }

    QByteArray write();

private:
    void writeGrid();
    void writeGridLabels();
    void writeBars();
    void writeMark(const QByteArray& kind, const QByteArray& name, qint64 time, int textY);
    void writeAxis();
    void writeTable();

    double y(double frames) const { return kBottom - (kBottom - kTop) * frames / most; }

    const TraceSummary& summary;
    const int numFrames;
    const Bins bins;
    const int most; // frames in a bin
    const int gridStep;
    QByteArray out;
};

void Histogram::writeGrid()
{
    for (int frames = gridStep; frames <= most; frames += gridStep) {
        out += "<line class='grid' x1='0' x2='100%' y1='" + number(y(frames)) + "' y2='"
            + number(y(frames)) + "'/>\n";
    }
}

/// The numbers of the grid; after the bars, which would cover them.
void Histogram::writeGridLabels()
{
    for (int frames = gridStep; frames <= most; frames += gridStep) {
        const bool isHighest = frames + gridStep > most;
        out += "<text class='quiet halo' x='0' y='" + number(y(frames) - 4) + "'>" + count(frames)
            + (isHighest ? frames == 1 ? " frame" : " frames" : "") + "</text>\n";
    }
}

void Histogram::writeBars()
{
    const double numBins = bins.counts.size();
    for (int bin = 0; bin < bins.counts.size(); ++bin) {
        const int frames = bins.counts.at(bin);
        if (frames == 0)
            continue;
        out += QByteArray("<rect class='bar") + (bins.isRest(bin) ? " rest" : "") + "' x='"
            + percent(bin / numBins) + "' width='" + percent(1 / numBins) + "' y='"
            + number(y(frames)) + "' height='" + number(kBottom - y(frames)) + "'><title>"
            + bins.range(bin) + ": " + count(frames) + "</title></rect>\n";
    }
}

/// A vertical line at a time. Its text stands on the side that has room.
void Histogram::writeMark(const QByteArray& kind, const QByteArray& name, qint64 time, int textY)
{
    const double to = bins.begin(bins.counts.size());
    const double part =
        qBound(0.0, (static_cast<double>(time) - bins.from) / (to - bins.from), 1.0);
    const bool isLeft = part > (kind.isEmpty() ? 0.35 : 0.65);
    out += "<line class='mark " + kind + "' x1='" + percent(part) + "' x2='" + percent(part)
        + "' y1='" + count(textY - 10) + "' y2='" + count(kBottom) + "'/><text class='halo' x='"
        + percent(part) + "' y='" + count(textY) + "' dx='" + (isLeft ? "-5" : "5")
        + "' text-anchor='" + (isLeft ? "end" : "start") + "'>" + name + " " + timeText(time)
        + "</text>\n";
}

void Histogram::writeAxis()
{
    const double numBins = bins.counts.size();
    out += "<line class='axis' x1='0' x2='100%' y1='" + count(kBottom) + "' y2='" + count(kBottom)
        + "'/>\n";
    const int labelStep = qMax(1, static_cast<int>(std::ceil(numBins / 4)));
    for (int bin = 0; bin < bins.counts.size() - labelStep / 2; bin += labelStep) {
        out += "<text class='quiet' x='" + percent(bin / numBins) + "' y='" + count(kTickLabels)
            + "'>" + tickText(bins.begin(bin)) + "</text>\n";
    }
    if (bins.hasRest)
        out += "<text class='quiet' x='100%' y='" + count(kTickLabels)
            + "' text-anchor='end'>longer</text>\n";
    out += "<text class='quiet' x='100%' y='" + count(kAxisTitle)
        + "' text-anchor='end'>frame time</text>\n";
}

void Histogram::writeTable()
{
    out += "<details><summary>As a table</summary>\n<table>\n<thead><tr><th scope='col'>Time</th>"
           "<th scope='col' class='n'>Frames</th></tr></thead>\n<tbody>\n";
    for (int bin = 0; bin < bins.counts.size(); ++bin) {
        if (bins.counts.at(bin) > 0) {
            out += "<tr><th scope='row'>" + bins.range(bin) + "</th><td class='n'>"
                + count(bins.counts.at(bin)) + "</td></tr>\n";
        }
    }
    out += "</tbody>\n</table>\n</details>\n";
}

QByteArray Histogram::write()
{
    out = "<figure>\n<figcaption>Number of frames by frame time</figcaption>\n"
          "<svg class='chart' height='"
        + count(kHeight) + "' role='img' aria-label='Histogram of " + count(numFrames)
        + " frame times: median " + timeText(summary.median) + ", longest "
        + timeText(summary.maximum) + "'>\n";
    writeGrid();
    writeBars();
    writeGridLabels();
    // The texts on lines of their own.
    writeMark("", "median", summary.median, 12);
    writeMark("far", "99th percentile", summary.percentile99, 27);
    writeAxis();
    out += "</svg>\n";
    writeTable();
    out += "</figure>\n";
    return out;
}

} // namespace

QByteArray frameHistogram(const QVector<qint64>& sorted, const TraceSummary& summary)
{
    return Histogram(sorted, summary).write();
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
