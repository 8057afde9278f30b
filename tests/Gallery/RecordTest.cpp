// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Program.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QStandardPaths>

#include <algorithm>

namespace {

/// The lines of a list of passes: number and path.
QStringList pathsOf(const ProgramRun& list)
{
    QStringList paths;
    const QStringList lines = list.outLines();
    for (const QString& line : lines)
        paths.append(line.simplified().section(QLatin1Char(' '), 1));
    return paths;
}

} // namespace

/// What --trace and --report leave.
class GalleryRecord : public GalleryTest
{
protected:
    QStringList option(const char* name, const QString& file)
    {
        return {QString::fromLatin1(name), folder(file)};
    }

    QJsonArray trace(const QString& file)
    {
        const QJsonDocument parsed = QJsonDocument::fromJson(bytesOf(folder(file)));
        EXPECT_TRUE(parsed.isObject());
        return parsed.object().value(QStringLiteral("traceEvents")).toArray();
    }
};

TEST_F(GalleryRecord, OfATraceHoldsEveryStartInTheOrderOfExecution)
{
    render(QStringLiteral("out"),
           words("--frames 0-1") + option("--trace", QStringLiteral("trace.json")));
    QMap<int, QStringList> started; // by frame
    const QJsonArray events = trace(QStringLiteral("trace.json"));
    for (const QJsonValue& event : events) {
        const QJsonObject call = event.toObject();
        if (call.value(QStringLiteral("cat")) != QStringLiteral("start"))
            continue;
        const int frame =
            call.value(QStringLiteral("args")).toObject().value(QStringLiteral("frame")).toInt();
        started[frame].append(
            call.value(QStringLiteral("name")).toString().section(QLatin1Char(' '), 0, 0));
    }
    const QStringList listed = pathsOf(runGallery(words("--list")));
    EXPECT_EQ(started, (QMap<int, QStringList>{{0, listed}, {1, listed}}));
}

TEST_F(GalleryRecord, ChangesNoPicture)
{
    render(QStringLiteral("plain"));
    render(QStringLiteral("traced"),
           option("--trace", QStringLiteral("trace.json"))
               + option("--report", QStringLiteral("report.html")));
    for (const char* file : {"frame-0000.png", "debug-0000.png"})
        EXPECT_EQ(bytesOf(folder(QStringLiteral("plain/") + QLatin1String(file))),
                  bytesOf(folder(QStringLiteral("traced/") + QLatin1String(file))));
}

TEST_F(GalleryRecord, AsAReportNamesEveryPassAndTheModel)
{
    render(QStringLiteral("out"), option("--report", QStringLiteral("report.html")));
    const QString report = QString::fromUtf8(bytesOf(folder(QStringLiteral("report.html"))));
    EXPECT_TRUE(report.startsWith(QLatin1String("<!DOCTYPE html>"), Qt::CaseInsensitive));
    EXPECT_TRUE(report.contains(QLatin1String("blocks")));
    const QStringList listed = pathsOf(runGallery(words("--list")));
    for (const QString& path : listed)
        EXPECT_TRUE(report.contains(path)) << qPrintable(path);
}

TEST_F(GalleryRecord, AsAReportHoldsThePictureThatGraphvizDraws)
{
    if (QStandardPaths::findExecutable(QStringLiteral("dot")).isEmpty())
        GTEST_SKIP() << "Graphviz is not installed";
    render(QStringLiteral("out"), option("--report", QStringLiteral("report.html")));
    const QByteArray report = bytesOf(folder(QStringLiteral("report.html")));
    EXPECT_TRUE(report.contains("<svg"));
    EXPECT_FALSE(report.contains("digraph"));
}

TEST_F(GalleryRecord, AsAReportHoldsThePictureAsTextWithoutGraphviz)
{
    const ProgramRun run = runGallery(QStringList{blocksModel()} + words("--size 64x48 --out")
                                          + QStringList{folder(QStringLiteral("out"))}
                                          + option("--report", QStringLiteral("report.html")),
                                      {QStringLiteral("PATH=/nowhere")});
    EXPECT_EQ(run.exitCode, 0) << qPrintable(run.err);
    EXPECT_TRUE(bytesOf(folder(QStringLiteral("report.html"))).contains("digraph"));
}

TEST_F(GalleryRecord, IsLeftByAFailureToo)
{
    ASSERT_TRUE(QDir().mkpath(folder(QStringLiteral("empty"))));
    const ProgramRun run = runGallery(QStringList{blocksModel()} + words("--size 64x48 --out")
                                      + QStringList{folder(QStringLiteral("out"))}
                                      + option("--resources", QStringLiteral("empty"))
                                      + option("--report", QStringLiteral("report.html"))
                                      + option("--trace", QStringLiteral("trace.json")));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.startsWith(QLatin1String("gallery: pass \"GBuffer\" failed: cannot read ")))
        << qPrintable(run.err);
    EXPECT_EQ(run.err.count(QLatin1Char('\n')), 1);
    EXPECT_FALSE(trace(QStringLiteral("trace.json")).isEmpty());
    const QList<QByteArray> lines = bytesOf(folder(QStringLiteral("report.html"))).split('\n');
    const auto isOfTheFailure = [](const QByteArray& line) {
        return line.startsWith("<tr") && line.contains(">GBuffer<") && line.contains(">failed<");
    };
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(), isOfTheFailure), 1);
}

TEST_F(GalleryRecord, ThatCannotBeWrittenIsSaidInOneLine)
{
    for (const char* name : {"--trace", "--report", "--save-graph"}) {
        const ProgramRun run = runGallery(QStringList{blocksModel()} + words("--size 64x48 --out")
                                          + QStringList{folder(QStringLiteral("out"))}
                                          + option(name, QStringLiteral("none/file")));
        EXPECT_EQ(run.exitCode, 1) << name;
        EXPECT_TRUE(run.err.startsWith(QLatin1String("gallery: cannot write ")))
            << qPrintable(run.err);
        EXPECT_EQ(run.err.count(QLatin1Char('\n')), 1) << qPrintable(run.err);
    }
}
