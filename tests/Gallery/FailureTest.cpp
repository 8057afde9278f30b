// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Program.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace {

struct BadInput
{
    const char* name;
    const char* arguments; // separated by blanks; %d stands for the folder of the test
    const char* message;   // what the line on stderr holds
};

void PrintTo(const BadInput& input, std::ostream* out)
{
    *out << input.name;
}

/// One line on stderr that begins with the program's name, and exit code 1.
void expectOneLine(const ProgramRun& run, const QString& message)
{
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err.count(QLatin1Char('\n')), 1) << qPrintable(run.err);
    EXPECT_TRUE(run.err.startsWith(QLatin1String("gallery: "))) << qPrintable(run.err);
    EXPECT_TRUE(run.err.endsWith(QLatin1Char('\n'))) << qPrintable(run.err);
    EXPECT_TRUE(run.err.contains(message)) << qPrintable(run.err);
}

} // namespace

class GalleryBadInput : public GalleryTest, public testing::WithParamInterface<BadInput>
{
};

TEST_P(GalleryBadInput, GivesOneLineAndExitCodeOne)
{
    QFile file(folder(QStringLiteral("text.txt")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("nothing to see\n");
    file.close();
    QString line = QString::fromLatin1(GetParam().arguments);
    line.replace(QLatin1String("%d"), folder(QString()));
    if (!line.contains(QLatin1String("--out")))
        line += QStringLiteral(" --out ") + folder(QStringLiteral("out"));
    expectOneLine(runGallery(line.split(QLatin1Char(' '), Qt::SkipEmptyParts)),
                  QString::fromLatin1(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(
    All, GalleryBadInput,
    testing::Values(
        BadInput{"MissingModel", "%d/none.glb", "no such model file: "},
        BadInput{"DirectoryAsModel", "%d", "no such model file: "},
        BadInput{"TextAsModel", "%d/text.txt", "is not a model: "},
        BadInput{"TwoModels", "a.obj b.obj", "more than one model: a.obj b.obj"},
        BadInput{"SizeOfWords", "--size big", "not a size of 1x1 to 8192x8192: big"},
        BadInput{"SizeWithOneSide", "--size 640", "not a size of 1x1 to 8192x8192: 640"},
        BadInput{"SizeOfNothing", "--size 0x10", "not a size of 1x1 to 8192x8192: 0x10"},
        BadInput{"SizeTooLarge", "--size 8193x10", "not a size of 1x1 to 8192x8192: 8193x10"},
        BadInput{"SizeWithTail", "--size 10x10x10", "not a size of"},
        BadInput{"RangeOfWords", "--frames all", "not a range of frames: all"},
        BadInput{"RangeBackwards", "--frames 5-3", "not a range of frames: 5-3"},
        BadInput{"RangeWithoutEnd", "--frames 5-", "not a range of frames: 5-"},
        BadInput{"RangeBeyondInt", "--frames 99999999999", "not a range of frames"},
        BadInput{"TurnOfNothing", "--turn 0", "not a number of frames: 0"},
        BadInput{"UnknownOption", "--colour", "Unknown option 'colour'"},
        BadInput{"OptionWithoutValue", "--out %d/out --size", "Missing value after '--size'"},
        BadInput{"UnknownDisabledPass", "--disable Fog", "no pass is called \"Fog\""},
        BadInput{"UnknownTarget", "--target Fog", "no pass is called \"Fog\""},
        BadInput{"GroupAsPass", "--disable Bloom", "no pass is called \"Bloom\""},
        BadInput{"FolderBelowAFile", "--out %d/text.txt/out", "cannot write to the folder "},
        BadInput{"GraphInNoFolder", "--dump-graph %d/none/graph.dot", "cannot write "},
        BadInput{"MissingGraph", "--graph %d/none.json", "cannot read "},
        BadInput{"DirectoryAsGraph", "--graph %d", "cannot read "},
        BadInput{"GraphToNoFolder", "--list --save-graph %d/none/graph.json", "cannot write "},
        BadInput{"NoPassForThePicture", "--size 16x16 --disable Present",
                 "no pass left to make the picture"},
        BadInput{"NoShaders", "--size 16x16 --resources %d/none", "failed: cannot read "}),
    [](const auto& tested) { return std::string(tested.param.name); });

class GalleryFailure : public GalleryTest
{
};

TEST_F(GalleryFailure, WithoutADriverIsSaidInOneLine)
{
    expectOneLine(runGallery({blocksModel(), QStringLiteral("--out"), folder(QString())},
                             {QStringLiteral("__EGL_VENDOR_LIBRARY_FILENAMES=/none.json")}),
                  QStringLiteral("no OpenGL ES 3 driver found"));
}

TEST_F(GalleryFailure, OfAShaderNamesThePassAndTheReason)
{
    const QDir shipped(QFileInfo(QStringLiteral(GALLERY_PROGRAM)).path()
                       + QStringLiteral("/Resources"));
    ASSERT_TRUE(QDir().mkpath(folder(QStringLiteral("shaders"))));
    const QStringList files = shipped.entryList(QDir::Files);
    for (const QString& name : files)
        ASSERT_TRUE(QFile::copy(shipped.filePath(name), folder(QStringLiteral("shaders/") + name)));
    QFile broken(folder(QStringLiteral("shaders/Threshold.frag")));
    ASSERT_TRUE(broken.open(QIODevice::Append));
    broken.write("\nthis is no shader\n");
    broken.close();

    const ProgramRun run =
        runGallery({blocksModel(), QStringLiteral("--size"), QStringLiteral("64x48"),
                    QStringLiteral("--out"), folder(QStringLiteral("out")),
                    QStringLiteral("--resources"), folder(QStringLiteral("shaders"))});
    expectOneLine(run,
                  QStringLiteral("pass \"Threshold\" failed: Threshold.frag does not compile: "));
    EXPECT_FALSE(QFileInfo::exists(folder(QStringLiteral("out/frame-0000.png"))));
}

TEST_F(GalleryFailure, OfAPassLeavesNoPicture)
{
    ASSERT_TRUE(QDir().mkpath(folder(QStringLiteral("empty"))));
    expectOneLine(runGallery({blocksModel(), QStringLiteral("--frames"), QStringLiteral("0-5"),
                              QStringLiteral("--out"), folder(QStringLiteral("out")),
                              QStringLiteral("--resources"), folder(QStringLiteral("empty"))}),
                  QStringLiteral("pass \"GBuffer\" failed: cannot read "));
    EXPECT_TRUE(QDir(folder(QStringLiteral("out"))).isEmpty());
}

TEST_F(GalleryFailure, OfStandardOutputIsNoticed)
{
    if (!QFileInfo::exists(QStringLiteral("/dev/full")))
        GTEST_SKIP() << "no device that is always full";
    expectOneLine(runGallery({QStringLiteral("--list")}, {}, QStringLiteral("/dev/full")),
                  QStringLiteral("cannot write to standard output"));
}

TEST(GalleryHelp, SaysHowManyFramesAFullTurnHas)
{
    const ProgramRun run = runGallery({QStringLiteral("--help")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, QString());
    EXPECT_TRUE(run.out.contains(QLatin1String("120 frames")));
    EXPECT_TRUE(run.out.contains(QLatin1String("--dump-graph <FILE>")));
}

TEST(GalleryHelp, PrintsTheVersion)
{
    const ProgramRun run = runGallery({QStringLiteral("--version")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, QStringLiteral("gallery 1.0.0\n"));
}
