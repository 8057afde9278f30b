// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Report/PageParts.h"
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

TEST(Report, ShowsTheTimesOfPasses)
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
    const Trace trace;
    const QByteArray page = report(Snapshot(), &trace);
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

TEST(Report, OfHostileNamesIsWellFormed)
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

TEST(Report, OfOddSnapshotsIsWellFormed)
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

TEST(ReportGrowth, OfAChainTakesLinearTime)
{
    expectLinear<BuiltChain>(
        10000, [](BuiltChain& chain) { EXPECT_GT(report(chain.snapshot).size(), 0); });
}
