// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Program.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>

namespace {

/// The names in a list of passes, without numbers and groups.
QStringList passNames(const ProgramRun& list)
{
    QStringList names;
    const QStringList lines = list.outLines();
    for (const QString& line : lines)
        names.append(line.simplified().section(QLatin1Char(' '), 1).section(QLatin1Char('/'), -1));
    return names;
}

/// The numbers that a pattern captures in a text.
QVector<double> numbers(const QString& text, const char* pattern)
{
    QVector<double> found;
    const QRegularExpressionMatch match =
        QRegularExpression(QString::fromLatin1(pattern)).match(text);
    for (int i = 1; i <= match.lastCapturedIndex(); ++i)
        found.append(match.captured(i).toDouble());
    return found;
}

} // namespace

class GalleryGraph : public GalleryTest
{
};

TEST_F(GalleryGraph, ListsItsPassesWithTheirGroups)
{
    const ProgramRun list = runGallery(words("--list"));
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_EQ(list.outLines().size(), 19);
    EXPECT_TRUE(list.out.contains(QLatin1String(" 1 Cameras\n")));
    EXPECT_TRUE(list.out.contains(QLatin1String(" AmbientOcclusion/OcclusionBlur\n")));
    EXPECT_TRUE(list.out.contains(QLatin1String(" Bloom/Pyramid/Downsample4\n")));
    EXPECT_TRUE(list.out.contains(QLatin1String("19 Present\n")));
}

TEST_F(GalleryGraph, RunsItsPassesInTheOrderOfTheList)
{
    const QStringList listed = passNames(runGallery(words("--list")));
    const QStringList frames =
        render(QStringLiteral("out"), words("--verbose")).linesAfter(QStringLiteral("frame 0: "));
    ASSERT_EQ(frames.size(), 1);
    EXPECT_EQ(frames.first(),
              QStringLiteral("19 of 19 passes started: ") + listed.join(QLatin1Char(' ')));
}

TEST_F(GalleryGraph, RunsADisabledPassNeitherInTheListNorInTheFrame)
{
    const QStringList listed = passNames(runGallery(words("--list --disable Lighting")));
    EXPECT_FALSE(listed.contains(QStringLiteral("Lighting")));
    EXPECT_TRUE(listed.contains(QStringLiteral("GBuffer"))) << "what it needs still runs";
    const QStringList frames = render(QStringLiteral("out"), words("--verbose --disable Lighting"))
                                   .linesAfter(QStringLiteral("frame 0: "));
    ASSERT_EQ(frames.size(), 1);
    EXPECT_EQ(frames.first(),
              QStringLiteral("18 of 18 passes started: ") + listed.join(QLatin1Char(' ')));
}

TEST_F(GalleryGraph, BringsUpOnePassPerFrameWhenStaggered)
{
    const ProgramRun run = render(QStringLiteral("out"), words("--staggered --verbose"));
    const QStringList frames = run.linesAfter(QStringLiteral("frame 0: "));
    ASSERT_EQ(frames.size(), 19 + 1) << "19 to bring the passes up, one for the picture";
    for (int i = 0; i < 19; ++i)
        EXPECT_TRUE(frames.at(i).startsWith(QStringLiteral("%1 of 19 passes started").arg(i + 1)))
            << qPrintable(frames.at(i));
    EXPECT_TRUE(run.out.contains(QLatin1String("19 passes came up in 19 frames\n")));
}

TEST_F(GalleryGraph, BringsUpFewerPassesWhenSomeAreDisabled)
{
    const ProgramRun run =
        render(QStringLiteral("out"), words("--staggered --disable DebugView --disable AntiAlias"));
    EXPECT_TRUE(run.out.contains(QLatin1String("17 passes came up in 17 frames\n")));
}

TEST_F(GalleryGraph, SchedulesAPassThatNoPictureNeedsAsItsTarget)
{
    EXPECT_FALSE(passNames(runGallery(words("--list"))).contains(QStringLiteral("LightMeter")));
    EXPECT_EQ(passNames(runGallery(words("--list --target LightMeter"))).last(),
              QStringLiteral("LightMeter"));
    const QStringList found = render(QStringLiteral("out"), words("--target LightMeter"))
                                  .linesAfter(QStringLiteral("Luminance: "));
    ASSERT_EQ(found.size(), 1);
    EXPECT_GT(found.first().toDouble(), 0.05);
    EXPECT_LT(found.first().toDouble(), 0.5);
}

TEST_F(GalleryGraph, FindsATargetInANestedGroup)
{
    EXPECT_TRUE(passNames(runGallery(words("--list --target Upsample3 --disable Glow")))
                    .contains(QStringLiteral("Upsample3")));
}

TEST_F(GalleryGraph, CountsAsManyReadersAsThereAre)
{
    EXPECT_EQ(render(QStringLiteral("out"), words("--verbose"))
                  .linesAfter(QStringLiteral("textures that not all readers released: ")),
              QStringList{QStringLiteral("0")});
}

TEST_F(GalleryGraph, NeedsLessTextureMemoryWithThePoolThanWithout)
{
    const QVector<double> pooled =
        numbers(render(QStringLiteral("pool"), words("--size 320x240")).out,
                "textures: (\\S+) MiB in (\\d+) with the pool, (\\S+) MiB in (\\d+) without\n");
    const QVector<double> alone =
        numbers(render(QStringLiteral("none"), words("--size 320x240 --no-pool")).out,
                "textures: (\\S+) MiB in (\\d+) without the pool\n");
    ASSERT_EQ(pooled.size(), 4);
    ASSERT_EQ(alone.size(), 2);
    EXPECT_LT(pooled.at(0), pooled.at(2));
    EXPECT_LT(pooled.at(1), pooled.at(3));
    EXPECT_EQ(pooled.at(2), alone.at(0)) << "what is said of going without is what it takes";
    EXPECT_EQ(pooled.at(3), alone.at(1));
}

TEST_F(GalleryGraph, NeedsNoMoreTexturesForMoreFrames)
{
    const QStringList one = render(QStringLiteral("one")).linesAfter(QStringLiteral("textures: "));
    const QStringList three = render(QStringLiteral("three"), words("--frames 0-2"))
                                  .linesAfter(QStringLiteral("textures: "));
    EXPECT_EQ(one, three);
}

TEST_F(GalleryGraph, CountsEveryFrameInTheHistogram)
{
    const ProgramRun run =
        render(QStringLiteral("out"), words("--times --frames 0-2 --size 64x48"));
    EXPECT_EQ(numbers(run.out, "TIME DUMP +(\\d+) frames +\\d+ us +\\d+ us\n"), QVector<double>{3});
    double counted = 0;
    const QStringList buckets = run.linesAfter(QStringLiteral("      "));
    for (const QString& bucket : buckets)
        counted += numbers(bucket, "^ *\\d+ us +(\\d+) [<|]").value(0);
    EXPECT_EQ(counted, 3);
}

TEST_F(GalleryGraph, IsWrittenForGraphviz)
{
    const QString path = folder(QStringLiteral("graph.dot"));
    const ProgramRun run = runGallery(words("--dump-graph") << path);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out + run.err, QString());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(file.readAll()), QStringLiteral(R"(digraph "Orv" {
  rankdir=LR;
 
  // Nodes
  "Cameras";
  "ShadowMap";
  "GBuffer";
  "AmbientOcclusion";
  "Lighting";
  "Bloom";
  "ToneMap";
  "AntiAlias";
  "Present";
  "DebugView";
  "LightMeter";
 
  // Edges
  "Cameras" -> "GBuffer";
  "Cameras" -> "Lighting";
  "Cameras" -> "AmbientOcclusion";
  "Cameras" -> "DebugView";
  "Cameras" -> "ShadowMap";
  "ShadowMap" -> "Lighting";
  "ShadowMap" -> "DebugView";
  "GBuffer" -> "Lighting";
  "GBuffer" -> "DebugView";
  "GBuffer" -> "AmbientOcclusion";
  "AmbientOcclusion" -> "Lighting";
  "Lighting" -> "Bloom";
  "Lighting" -> "ToneMap";
  "Lighting" -> "LightMeter";
  "Lighting" -> "DebugView";
  "Bloom" -> "ToneMap";
  "ToneMap" -> "AntiAlias";
  "ToneMap" -> "Present";
  "AntiAlias" -> "Present";
  "Present" -> "";
  "DebugView" -> "";
}
)"));
}
