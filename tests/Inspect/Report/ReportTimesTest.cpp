// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Report/PageParts.h"
#include "Inspect/support/SampleRun.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Kestrin::Orv::Inspect;

namespace {

/// Frames of given lengths and nothing else.
struct Frames
{
    qint64 now = 0;
    Trace trace;

    explicit Frames(const std::vector<qint64>& times)
        : trace(Trace::kDefaultCapacity, [this] { return now; })
    {
        for (const qint64 time : times) {
            trace.beginFrame();
            now += time;
            trace.endFrame();
        }
    }
    /// What the table behind the histogram says: range and number, line by line.
    std::vector<std::string> histogram() const
    {
        const QByteArray figure = between(report(Snapshot(), &trace), "id='times'", "</figure>");
        EXPECT_EQ(nestingProblem(report(Snapshot(), &trace)), "");
        const QRegularExpression line(
            QStringLiteral("<tr><th scope='row'>([^<]*)</th><td class='n'>(\\d+)</td>"));
        std::vector<std::string> lines;
        auto matches = line.globalMatch(QString::fromUtf8(figure));
        while (matches.hasNext()) {
            const auto match = matches.next();
            lines.push_back(
                (match.captured(1) + QLatin1String(": ") + match.captured(2)).toStdString());
        }
        return lines;
    }
};

using Lines = std::vector<std::string>;

} // namespace

TEST(ReportHistogram, CountsFramesByTheTimeThatTheyTook)
{
    EXPECT_EQ(Frames({1000000, 1500000, 1500001, 2999999, 3000000}).histogram(),
              (Lines{"1.00 ms to 1.10 ms: 1", "1.50 ms to 1.60 ms: 2", "2.90 ms to 3.00 ms: 1",
                     "3.00 ms to 3.10 ms: 1"}));
}

TEST(ReportHistogram, OfEqualFramesHasOneBar)
{
    EXPECT_EQ(Frames({5000000, 5000000}).histogram(), (Lines{"5.00 ms to 5.05 ms: 2"}));
    EXPECT_EQ(Frames({0, 0, 0}).histogram(), (Lines{"0 ns to 1 ns: 3"}));
}

TEST(ReportHistogram, DrawsTheNumbersOfItsGridAboveItsBars)
{
    const Frames frames({0, 0, 0});
    const QByteArray chart =
        between(report(Snapshot(), &frames.trace), "Histogram of 3 frame times", "</svg>");
    const int lastBar = chart.lastIndexOf("<rect class='bar");
    ASSERT_GE(lastBar, 0);
    EXPECT_GT(chart.indexOf(">1</text>"), lastBar);
    EXPECT_GT(chart.indexOf(">3 frames</text>"), lastBar);
}

TEST(ReportHistogram, CountsFarLongerFramesTogether)
{
    std::vector<qint64> times(200, 1000000);
    for (std::size_t i = 0; i < 100; ++i)
        times[i] += 10000;
    times.push_back(900000000);
    times.push_back(Q_INT64_C(9000000000000));
    const Lines lines = Frames(times).histogram();
    ASSERT_FALSE(lines.empty());
    EXPECT_NE(lines.back().find(" and longer: 2"), std::string::npos) << lines.back();
    EXPECT_LT(lines.size(), 40U);
}

TEST(ReportHistogram, CountsEachFrameOnce)
{
    std::vector<qint64> times;
    quint32 noise = 7;
    for (int i = 0; i < 3000; ++i) {
        noise = noise * 1664525 + 1013904223;
        times.push_back(static_cast<qint64>(noise >> (noise % 29)));
    }
    int sum = 0;
    for (const std::string& line : Frames(times).histogram())
        sum += std::stoi(line.substr(line.rfind(' ')));
    EXPECT_EQ(sum, 3000);
}

TEST(ReportTimeline, ShowsTheMedianFrameAndTheLongest)
{
    const Frames frames({30, 10, 20});
    const QByteArray page = report(Snapshot(), &frames.trace);
    EXPECT_TRUE(page.contains("The median frame: frame 2, 20 ns"));
    EXPECT_TRUE(page.contains("The longest frame: frame 0, 30 ns"));
}

TEST(ReportTimeline, ShowsAnOnlyFrameOnce)
{
    const Frames frames({30});
    const QByteArray page = report(Snapshot(), &frames.trace);
    EXPECT_FALSE(page.contains("The median frame"));
    EXPECT_TRUE(page.contains("The longest frame: frame 0, 30 ns"));
}

TEST(ReportTimeline, DistinguishesCallsFromWaiting)
{
    SnapshotBuilder builder;
    builder.output("o");
    // Every third pass waits.
    builder.pass("A", {}, {"o"});
    builder.pass("B", {}, {"o"});
    const int waits = builder.pass("Waits", {}, {"o"});
    builder.connect(waits, 0, 0, 0);
    SampleRun run(builder.snapshot);
    run.run(1);
    const QByteArray page = report(run.snapshot(), &run.trace);
    const QByteArray timeline = between(page, "id='longest-frame'", "</figure>");
    EXPECT_TRUE(timeline.contains("class='waited' fill='url(#waited)'"));
    EXPECT_TRUE(timeline.contains("<th scope='row'>Waits</th>"));
    EXPECT_TRUE(timeline.contains("<td class='n'>360 \xC2\xB5s</td><td class='n'></td></tr>"))
        << text(timeline);
}

TEST(ReportTimeline, ShowsTheErrorOfAPass)
{
    SampleRenderer sample;
    SampleRun run(sample.snapshot);
    run.fail(sample.lighting, 17);
    run.run(1);
    const QByteArray page = report(run.snapshot(), &run.trace);
    const QByteArray timeline = between(page, "id='longest-frame'", "</figure>");
    EXPECT_TRUE(timeline.contains("class='call bad'"));
    EXPECT_TRUE(timeline.contains(", failed</text>"));
    EXPECT_TRUE(timeline.contains("<td class='n'>17</td>"));
    EXPECT_FALSE(timeline.contains("Bloom/Bright")) << "which came after it";
}

TEST(ReportTimeline, OfManyPassesShowsTheLongestOnes)
{
    SnapshotBuilder builder;
    for (int i = 0; i < 100; ++i) {
        const QByteArray name = "P" + QByteArray::number(i);
        const int pass = builder.pass(name.constData(), {}, {"o"});
        builder.connect(pass, 0, 0, builder.output("o"));
    }
    SampleRun run(builder.snapshot);
    run.run(1);
    const QByteArray page = report(run.snapshot(), &run.trace);
    const QByteArray timeline = between(page, "id='longest-frame'", "</figure>");
    EXPECT_TRUE(timeline.contains("The 60 longest of 100 passes"));
    EXPECT_EQ(timeline.count("<th scope='row'>"), 60);
    EXPECT_EQ(timeline.count("class='track'"), 60);
    // In the order in which they were called.
    int last = -1;
    const QRegularExpression name(QStringLiteral("<th scope='row'>P(\\d+)</th>"));
    auto names = name.globalMatch(QString::fromUtf8(timeline));
    while (names.hasNext()) {
        const int number = names.next().captured(1).toInt();
        EXPECT_GT(number, last);
        last = number;
    }
}
