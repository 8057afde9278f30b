// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Report.h>

#include "Inspect/support/SampleRun.h"
#include "Report/ReportStyle.h"

#include <Kestrin/Orv/Inspect/Picture.h>

#include "support/Growth.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>

using namespace Kestrin::Orv::Inspect;

namespace {

std::string text(const QByteArray& bytes)
{
    return bytes.toStdString();
}

QByteArray report(const Snapshot& snapshot, const Trace* trace = nullptr,
                  const QByteArray& picture = QByteArray())
{
    ReportContent content;
    content.snapshot = &snapshot;
    content.trace = trace;
    content.picture = picture;
    return toHtml(content);
}

QByteArray withPicture(const QByteArray& picture)
{
    return report(Snapshot(), nullptr, picture);
}

QByteArray svg(const QByteArray& inside)
{
    return "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' "
           "width='40pt' height='20pt' viewBox='0 0 40 20'>"
        + inside + "</svg>";
}

/// The part of a page from one text up to another.
QByteArray between(const QByteArray& page, const char* from, const char* to)
{
    const int begin = page.indexOf(from);
    const int end = page.indexOf(to, begin);
    return begin < 0 || end < 0 ? QByteArray() : page.mid(begin, end - begin);
}

/// The row of a pass without its tags.
std::string row(const QByteArray& page, const char* path)
{
    const QByteArray table = between(page, "class='cards'", "</table>");
    const QList<QByteArray> lines = table.split('\n');
    for (const QByteArray& line : lines) {
        if (!QByteArray(line)
                 .replace("<wbr>", "")
                 .contains(QByteArray("scope='row'>") + path + "</th>"))
            continue;
        QString cells = QString::fromUtf8(line);
        cells.replace(QRegularExpression(QStringLiteral("</t[dh]>")), QStringLiteral("|"));
        cells.remove(QRegularExpression(QStringLiteral("<[^>]*>")));
        return cells.toStdString();
    }
    return std::string();
}

/// What is wrong with how the elements of a page nest; empty if nothing is.
std::string nestingProblem(const QByteArray& page)
{
    const QStringList voids = {QStringLiteral("meta"), QStringLiteral("link"), QStringLiteral("hr"),
                               QStringLiteral("input"), QStringLiteral("wbr")};
    QString html = QString::fromUtf8(page);
    html.remove(QRegularExpression(QStringLiteral("<style>.*</style>"),
                                   QRegularExpression::DotMatchesEverythingOption));
    const QRegularExpression tag(QStringLiteral(
        "<(/?)([a-zA-Z0-9]+)((?:\\s+[-a-zA-Z0-9]+(?:=(?:'[^'<>]*'|\"[^\"<>]*\"))?)*)(/?)>|<"));
    QStringList open;
    auto tags = tag.globalMatch(html);
    while (tags.hasNext()) {
        const auto match = tags.next();
        const QString name = match.captured(2);
        if (name.isEmpty()
            && html.mid(match.capturedStart(), 15) == QLatin1String("<!DOCTYPE html>"))
            continue;
        if (name.isEmpty())
            return "a stray < at " + html.mid(match.capturedStart(), 40).toStdString();
        if (voids.contains(name) || !match.captured(4).isEmpty())
            continue;
        if (match.captured(1).isEmpty())
            open.append(name);
        else if (open.isEmpty() || open.takeLast() != name)
            return "</" + name.toStdString() + "> closes nothing";
    }
    return open.isEmpty() ? std::string() : open.last().toStdString() + " stays open";
}

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

TEST(Report, IsOnePageThatMayLoadNothing)
{
    const SampleRenderer sample;
    SampleRun run(sample.snapshot);
    run.run(5);
    const QByteArray page = report(run.snapshot(), &run.trace);
    EXPECT_TRUE(
        page.startsWith("<!DOCTYPE html>\n<html lang='en'>\n<head>\n<meta charset='utf-8'>\n"
                        "<meta http-equiv='Content-Security-Policy' content="
                        R"("default-src 'none'; style-src 'unsafe-inline'; )"
                        R"(img-src data:; base-uri 'none'; form-action 'none'">)"
                        "\n"));
    EXPECT_TRUE(page.contains("<meta name='viewport'"));
    EXPECT_FALSE(page.contains("http:"));
    EXPECT_FALSE(page.contains("https:"));
    EXPECT_FALSE(page.contains("<script"));
    EXPECT_FALSE(page.contains("@import"));
    EXPECT_EQ(nestingProblem(page), "");
}

TEST(Report, IsWrittenAsTheDocumentsSay)
{
    const SampleRenderer sample;
    SampleRun run(sample.snapshot);
    run.run(2);
    Kestrin::Orv::Renderer& renderer = run.renderer;
    const Trace& trace = run.trace;
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("forest.html"));
    //! [report]
    const Snapshot snapshot = Snapshot::of(renderer);
    QProcess dot;
    dot.start(QStringLiteral("dot"), {QStringLiteral("-Tsvg")});
    dot.write(toGraphviz(snapshot));
    dot.closeWriteChannel();
    dot.waitForFinished();

    ReportContent content;
    content.title = QStringLiteral("Forest scene");
    content.snapshot = &snapshot;
    content.trace = &trace;
    content.picture = dot.readAllStandardOutput();
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(toHtml(content));
    //! [report]
    file.close();
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray page = file.readAll();
    EXPECT_EQ(text(page), text(toHtml(content)));
    EXPECT_TRUE(page.contains("<h1>Forest scene</h1>"));
}

TEST(Report, EscapesItsTitle)
{
    ReportContent content;
    const Snapshot snapshot;
    content.snapshot = &snapshot;
    content.title = QStringLiteral("<script>\"'&\n");
    const QByteArray page = toHtml(content);
    const char escaped[] = "&lt;script&gt;&quot;&#39;&amp;\xE2\x90\x8A";
    EXPECT_TRUE(page.contains(QByteArray("<title>") + escaped + "</title>"));
    EXPECT_TRUE(page.contains(QByteArray("<h1>") + escaped + "</h1>"));
}

TEST(Report, ListsPassesInTheirOrderOfExecution)
{
    const SampleRenderer sample;
    const QByteArray page = report(sample.snapshot).replace("<wbr>", "");
    int last = 0;
    for (const char* path : {"Geometry", "Shadows", "Lighting", "Bloom/Bright", "Bloom/Blur",
                             "Bloom/Blend", "Tone", "Antialias", "Grain", "Wireframe"}) {
        const int at = page.indexOf(QByteArray("scope='row'>") + path + "</th>");
        EXPECT_GT(at, last) << path;
        last = at;
    }
    EXPECT_FALSE(page.contains("scope='row'>Bloom</th>"));
}

TEST(Report, BreaksPathsBetweenNodes)
{
    const SampleRenderer sample;
    EXPECT_TRUE(report(sample.snapshot).contains("scope='row'>Bloom/<wbr>Bright</th>"));
}

TEST(Report, SaysOfEachPassWhyItRunsOrNot)
{
    SampleRenderer sample;
    ReportContent content;
    content.snapshot = &sample.snapshot;
    content.failed = {sample.antialias, -1, 99};
    const QByteArray page = toHtml(content);
    EXPECT_EQ(row(page, "Bloom/Bright"),
              "4|Bloom/Bright|Filter|runs Needed by the renderer's output picture, feeds "
              "Bloom/Blur.color.|");
    EXPECT_EQ(row(page, "Antialias"),
              "8|Antialias|Fxaa|failed Needed by the renderer's output picture.|");
    EXPECT_EQ(row(page, "Grain"),
              "|Grain|Noise|disabled Needed by the renderer's output picture, feeds Tone.grain; "
              "its readers take their defaults.|");
    EXPECT_EQ(
        row(page, "Wireframe"),
        "|Wireframe|Overlay|not needed No output of the renderer and no target leads to it.|");
}

TEST(Report, NamesTheTargetAsAReason)
{
    SnapshotBuilder builder;
    const int first = builder.pass("First", {}, {"o"});
    const int second = builder.pass("Second", {"i"}, {"o"});
    const int third = builder.pass("Third", {"i"}, {});
    builder.connect(first, 0, second, 0);
    builder.connect(second, 0, third, 0);
    builder.snapshot.target = third;
    const QByteArray page = report(builder.snapshot);
    EXPECT_EQ(row(page, "First"), "1|First||runs Needed by the target Third, feeds Second.i.|");
    EXPECT_EQ(row(page, "Third"), "3|Third||runs It is the target.|");
}

TEST(Report, NamesTheOutputThatLedToAPassFirst)
{
    SnapshotBuilder builder;
    builder.output("one");
    builder.output("two");
    const int shared = builder.pass("Shared", {}, {"o"});
    const int left = builder.pass("Left", {"i"}, {"o"});
    const int right = builder.pass("Right", {"i"}, {"o"});
    builder.connect(shared, 0, left, 0);
    builder.connect(shared, 0, right, 0);
    builder.connect(left, 0, 0, 1);
    builder.connect(right, 0, 0, 0);
    const QByteArray page = report(builder.snapshot);
    EXPECT_EQ(row(page, "Shared"),
              "1|Shared||runs Needed by the renderer's output one, feeds Right.i.|");
    EXPECT_EQ(row(page, "Left"), "3|Left||runs Needed by the renderer's output two.|");
}

TEST(Report, TellsTheTimesOfPasses)
{
    SnapshotBuilder builder;
    builder.output("o");
    const int pass = builder.pass("Pass", {}, {"o"});
    builder.pass("Idle", {}, {"o"});
    builder.connect(pass, 0, 0, 0);
    SampleRun run(builder.snapshot);
    run.run(3);
    const QVector<TraceSummary> times = run.trace.passes();
    ASSERT_EQ(times.at(0).name.toStdString(), "Pass");
    const auto shown = [](qint64 ns) {
        return QByteArray::number(static_cast<double>(ns) / 1000, 'f', 0).toStdString()
            + " \xC2\xB5s|";
    };
    const QByteArray page = report(run.snapshot(), &run.trace);
    EXPECT_EQ(row(page, "Pass"),
              "1|Pass||runs Needed by the renderer's output o.|" + shown(times.at(0).median)
                  + shown(times.at(0).percentile90) + shown(times.at(0).percentile99)
                  + shown(times.at(0).maximum));
    EXPECT_FALSE(page.contains("Not in this graph."));
    EXPECT_EQ(row(page, "Idle"),
              "|Idle||not needed No output of the renderer and no target leads to it.|||||");
}

TEST(Report, ListsTracedPassesThatTheGraphLacks)
{
    const SampleRenderer sample;
    SampleRun run(sample.snapshot);
    run.run(1);
    const QByteArray page = report(Snapshot(), &run.trace);
    EXPECT_EQ(row(page, "Tone").substr(0, 26), "|Tone||Not in this graph.|");
    EXPECT_EQ(row(page, "Wireframe"), "") << "which was never called";
}

TEST(Report, OfNothingButASnapshotHasNoTimes)
{
    const SampleRenderer sample;
    const QByteArray page = report(sample.snapshot);
    EXPECT_FALSE(page.contains("id='times'"));
    EXPECT_FALSE(page.contains("Median"));
    EXPECT_EQ(nestingProblem(page), "");
}

TEST(Report, OfATraceWithoutFramesSaysSo)
{
    const Frames none({});
    const QByteArray page = report(Snapshot(), &none.trace);
    EXPECT_TRUE(page.contains("No frame has been recorded."));
    EXPECT_FALSE(page.contains("id='times'"));
    EXPECT_EQ(nestingProblem(page), "");
}

TEST(Report, OfNoSnapshotIsThatOfAnEmptyOne)
{
    EXPECT_EQ(text(toHtml(ReportContent())), text(report(Snapshot())));
}

TEST(Report, SaysWhenTheTraceWasTooShort)
{
    const SampleRenderer sample;
    SampleRun run(sample.snapshot, 1000);
    run.run(2);
    EXPECT_FALSE(report(Snapshot(), &run.trace).contains("The trace was full"));
    run.run(100);
    const QByteArray page = report(Snapshot(), &run.trace);
    EXPECT_TRUE(page.contains("The trace was full"));
    EXPECT_EQ(nestingProblem(page), "");
}

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

TEST(ReportTimeline, TellsCallsFromWaiting)
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

TEST(ReportTimeline, TellsTheErrorOfAPass)
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

TEST(ReportTimeline, OfManyPassesShowsTheLongest)
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

TEST(ReportPicture, IsPartOfThePage)
{
    const QByteArray page =
        withPicture("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\n"
                    "<!DOCTYPE svg PUBLIC \"-//W3C//DTD SVG 1.1//EN\"\n"
                    " \"http://www.w3.org/Graphics/SVG/1.1/DTD/svg11.dtd\">\n<!-- made by dot -->\n"
                    + svg("<g id='a' class='node' transform='scale(1 1)'><title>n1</title>"
                          "<polygon fill='#ffffff' points='0,0 1,0 1,1'/><text x='1' "
                          "y='2'>a &lt; b</text>"
                          "</g>"));
    EXPECT_TRUE(page.contains("viewBox='0 0 40 20' style='--w:40.000pt'>\n"
                              "<g class='node' transform='scale(1 1)'>"
                              "<polygon fill='#ffffff' points='0,0 1,0 1,1'></polygon>"
                              "<text x='1' y='2'>a &lt; b</text></g></svg>"));
    EXPECT_FALSE(page.contains("<!DOCTYPE svg"));
    EXPECT_EQ(nestingProblem(page), "");
}

TEST(ReportPicture, KeepsNothingThatActsOrLoads)
{
    const QByteArray page = withPicture(
        svg("<script>alert(1)</script><style>*{}</style><image xlink:href='e:1'/><use href='e:2'/>"
            "<foreignObject><p>x</p></foreignObject><animate/><set/><svg><script/></svg>"
            "<g onclick='e:3' style='e:4' href='e:5'><a "
            "xlink:href='javascript:e'><text>kept</text>"
            "</a></g><polygon fill='URL(e:6)' points=''/>"));
    EXPECT_TRUE(page.contains("<g><text>kept</text></g><polygon points=''></polygon></svg>"));
    for (const char* part : {"alert", "e:1", "e:2", "e:3", "e:4", "e:5", "e:6", "javascript",
                             "animate", "foreignObject", "<set", "<use", "<image", "onclick"})
        EXPECT_FALSE(page.contains(part)) << part;
}

TEST(ReportPicture, ThatIsNoneGivesWayToItsText)
{
    const char marker[] = "digraph orv {\n";
    EXPECT_TRUE(withPicture(QByteArray()).contains(marker));
    EXPECT_TRUE(withPicture("<html width='1'></html>").contains(marker));
    EXPECT_TRUE(withPicture("<svg width='40pt'>").contains(marker));
    EXPECT_TRUE(withPicture("<svg height='40pt'></svg>").contains(marker));
    EXPECT_TRUE(withPicture("<svg width='-1'></svg>").contains(marker));
    EXPECT_TRUE(withPicture(svg("<g></svg>")).contains(marker));
    EXPECT_TRUE(withPicture(svg("&unknown;")).contains(marker));
    EXPECT_TRUE(withPicture("\xFF\xFE\x01").contains(marker));
    EXPECT_TRUE(withPicture(QByteArray("\0\0\0\0", 4)).contains(marker));
    EXPECT_FALSE(withPicture(svg(QByteArray())).contains(marker));
}

TEST(ReportPicture, MayNotDefineEntities)
{
    const QByteArray page = withPicture(
        "<!DOCTYPE svg [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;\">]>" + svg("&b;"));
    EXPECT_FALSE(page.contains("aaaaaaaaaa"));
    EXPECT_TRUE(page.contains("digraph orv {\n"));
}

TEST(ReportPicture, CannotLeaveItsAttributes)
{
    const QByteArray page = withPicture(
        "<svg width=\"9\" viewBox='\"&gt;&lt;script&gt;'><g class='\"&gt;&lt;b&gt;'/></svg>");
    EXPECT_TRUE(page.contains("viewBox='&quot;&gt;&lt;script&gt;'"));
    EXPECT_TRUE(page.contains("class='&quot;&gt;&lt;b&gt;'"));
    EXPECT_EQ(nestingProblem(page), "");
}

TEST(ReportPicture, MayNestAsDeepAsItLikes)
{
    const int depth = 200000;
    const QByteArray page =
        withPicture(svg(QByteArray("<g>").repeated(depth) + QByteArray("</g>").repeated(depth)));
    EXPECT_EQ(page.count("<g>"), depth);
}

TEST(Report, HasADarkColourForEachColourOfAPicture)
{
    SampleRenderer sample;
    sample.connect(sample.shadows, 0, sample.bright, 1);
    const QString picture = QString::fromUtf8(toGraphviz(sample.snapshot, {sample.tone}));
    const QString style = QString::fromLatin1(kReportStyle);
    const QRegularExpression colour(QStringLiteral("(\\w*color)=\"(#[0-9a-f]{6})\""));
    auto matches = colour.globalMatch(picture);
    ASSERT_TRUE(matches.hasNext());
    while (matches.hasNext()) {
        const auto match = matches.next();
        const bool isLine = match.captured(1) == QLatin1String("color");
        const QString rule =
            QLatin1String(".graph [%1=\"") + match.captured(2) + QLatin1String("\"]");
        EXPECT_TRUE(style.contains(rule.arg(QLatin1String("fill")))
                    || (isLine && style.contains(rule.arg(QLatin1String("stroke")))))
            << match.captured(0).toStdString();
    }
}

TEST(Report, OfHostileNamesNestsAsItShould)
{
    SnapshotBuilder builder;
    for (const char* name : {"</table><h1>", "<script>", "\"><b x=\"", "'", "<!--", "", "]]>"}) {
        const int pass = builder.pass(name, {name}, {name}, 0, name);
        builder.connect(pass, 0, 0, builder.output(name));
    }
    SampleRun run(builder.snapshot);
    run.run(2);
    const QByteArray page = report(run.snapshot(), &run.trace);
    EXPECT_EQ(nestingProblem(page), "");
    EXPECT_FALSE(page.contains("<script>"));
    EXPECT_FALSE(page.contains("<!--"));
}

TEST(Report, OfOddSnapshotsNestsAsItShould)
{
    Snapshot snapshot;
    snapshot.nodes.resize(4);
    for (int ref = 0; ref < 4; ++ref) {
        NodeRecord& node = snapshot.nodes[ref];
        node.removed = false;
        node.pass = true;
        node.enabled = true;
        node.parent = (ref + 1) % 4;
        node.children = {ref, 99, -1};
        node.inputs.resize(1);
        node.inputs[0].source = ref;
        node.outputs = node.inputs;
    }
    snapshot.edges.resize(4);
    for (int ref = 0; ref < 4; ++ref) {
        EdgeRecord& edge = snapshot.edges[ref];
        edge.removed = false;
        edge.srcNode = (ref + 1) % 4;
        edge.dstNode = ref;
        edge.srcIndex = edge.dstIndex = 0;
    }
    snapshot.numOutputs = 1;
    snapshot.target = 1;
    EXPECT_EQ(nestingProblem(report(snapshot)), "");
    snapshot.nodes.clear();
    EXPECT_EQ(nestingProblem(report(snapshot)), "");
}

TEST(Report, OfTheSameContentIsTheSame)
{
    const auto make = [] {
        const SampleRenderer sample;
        SampleRun run(sample.snapshot);
        run.run(20);
        return report(run.snapshot(), &run.trace);
    };
    EXPECT_EQ(text(make()), text(make()));
}

namespace {

struct Chain
{
    explicit Chain(int size)
    {
        builder.output("o");
        int last = 0;
        for (int i = 0; i < size; ++i) {
            const int pass = builder.pass("P", {"i"}, {"o"});
            if (last)
                builder.connect(last, 0, pass, 0);
            last = pass;
        }
        builder.connect(last, 0, 0, 0);
    }
    SnapshotBuilder builder;
};

} // namespace

TEST(ReportGrowth, OfAChainTakesLinearTime)
{
    expectLinear<Chain>(10000,
                        [](Chain& chain) { EXPECT_GT(report(chain.builder.snapshot).size(), 0); });
}
