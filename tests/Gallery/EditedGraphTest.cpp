// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Document.h"
#include "Picture.h"
#include "Program.h"

#include <QtCore/QFileInfo>
#include <QtCore/QPoint>

namespace {

const QString firstFrame = QStringLiteral("frame-0000.png");
const QString firstDebug = QStringLiteral("debug-0000.png");

/// The memory that a run reports for its textures.
double mebibytes(const ProgramRun& run)
{
    const QStringList found = run.linesAfter(QStringLiteral("textures: "));
    EXPECT_EQ(found.size(), 1) << qPrintable(run.out);
    return found.value(0).section(QLatin1Char(' '), 0, 0).toDouble();
}

} // namespace

/// The gallery's graph, saved, edited and rendered.
class GalleryEditedGraph : public GalleryTest
{
protected:
    /// The built-in graph.
    Document builtIn(const QStringList& options = QStringList())
    {
        const QString file = folder(QStringLiteral("built-in.json"));
        const ProgramRun run =
            runGallery(words("--list --save-graph") + QStringList{file} + options);
        EXPECT_EQ(run.exitCode, 0) << qPrintable(run.err);
        return Document(file);
    }

    QString save(const Document& document)
    {
        const QString file = folder(QStringLiteral("edited.json"));
        document.write(file);
        return file;
    }

    /// Renders the blocks with a graph into the folder of this name.
    ProgramRun renderWith(const Document& document, const QString& name,
                          const QStringList& options = QStringList())
    {
        return render(name, QStringList{QStringLiteral("--graph"), save(document)} + options);
    }

    QByteArray frame(const QString& name, const QString& file = firstFrame)
    {
        return bytesOf(folder(name + QLatin1Char('/') + file));
    }
    QImage picture(const QString& name, const QString& file = firstFrame)
    {
        return loadPicture(folder(name + QLatin1Char('/') + file));
    }

    /// Expects the picture of a graph to be that of options for the built-in one, to the byte.
    void expectAsWith(const Document& document, const char* options)
    {
        renderWith(document, QStringLiteral("edited"));
        render(QStringLiteral("options"), words(options));
        EXPECT_EQ(frame(QStringLiteral("edited")), frame(QStringLiteral("options")));
    }

    void expectFailure(const Document& document, const QStringList& options, const QString& message)
    {
        const ProgramRun run = runGallery(QStringList{blocksModel()} + words("--size 64x48 --graph")
                                          + QStringList{save(document)} + words("--out")
                                          + QStringList{folder(QStringLiteral("out"))} + options);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_STREQ(qPrintable(run.err),
                     qPrintable(QStringLiteral("gallery: ") + message + QLatin1Char('\n')));
    }
};

TEST_F(GalleryEditedGraph, GivesTheSamePicturesUnedited)
{
    render(QStringLiteral("built-in"));
    renderWith(builtIn(), QStringLiteral("document"));
    EXPECT_EQ(frame(QStringLiteral("built-in")), frame(QStringLiteral("document")));
    EXPECT_EQ(frame(QStringLiteral("built-in"), firstDebug),
              frame(QStringLiteral("document"), firstDebug));
}

TEST_F(GalleryEditedGraph, RunsInTheSameOrderUnedited)
{
    const QString file = save(builtIn());
    EXPECT_EQ(runGallery(words("--list --graph") + QStringList{file}).out,
              runGallery(words("--list")).out);
}

TEST_F(GalleryEditedGraph, RunsWithoutAPassThatWasDisabled)
{
    Document document = builtIn();
    document.set(QStringLiteral("ShadowMap"), QStringLiteral("enabled"), false);
    expectAsWith(document, "--disable ShadowMap");
    EXPECT_NE(frame(QStringLiteral("edited")),
              (render(QStringLiteral("plain")), frame(QStringLiteral("plain"))));
}

TEST_F(GalleryEditedGraph, TakesAnInputFromWhereItWasRewired)
{
    Document document = builtIn();
    document.rewire(QStringLiteral("AntiAlias.Smooth -> Present.Smooth"),
                    QStringLiteral("ToneMap.Color -> Present.Smooth"));
    expectAsWith(document, "--disable AntiAlias");
}

TEST_F(GalleryEditedGraph, RunsWithoutAGroupThatWasRemoved)
{
    Document document = builtIn();
    document.remove(QStringLiteral("Bloom"));
    expectAsWith(document, "--disable Glow");
    EXPECT_FALSE(runGallery(words("--list --graph") + QStringList{save(document)})
                     .out.contains(QLatin1String("Bloom")));
}

TEST_F(GalleryEditedGraph, RunsWithoutAGroupWithinAGroup)
{
    Document document = builtIn();
    document.remove(QStringLiteral("Bloom/Pyramid"));
    document.connect(QStringLiteral("Bloom/Threshold.Bright -> Bloom/Glow.Color"));
    renderWith(document, QStringLiteral("out"));
    render(QStringLiteral("bloom"));
    EXPECT_NE(frame(QStringLiteral("out")), frame(QStringLiteral("bloom")));
}

TEST_F(GalleryEditedGraph, HasAPyramidWhoseLevelsHalveTheirSize)
{
    const QStringList options = words("--size 512x384 --no-pool");
    Document document = builtIn();
    document.remove(QStringLiteral("Bloom/Pyramid"));
    document.connect(QStringLiteral("Bloom/Threshold.Bright -> Bloom/Glow.Color"));
    const double without = mebibytes(renderWith(document, QStringLiteral("without"), options));
    const double with = mebibytes(render(QStringLiteral("with"), options));
    // 4 bytes for a 16th, 64th, 256th and 1024th of the frame's texels, and for the first three of
    // them once more: 0.12 MiB. The reports are rounded to tenths.
    EXPECT_NEAR(with - without, 0.12, 0.11);
}

TEST_F(GalleryEditedGraph, RunsAPassThatWasAdded)
{
    // A fifth level of the pyramid.
    Document document = builtIn();
    document.addCopy(QStringLiteral("Bloom/Pyramid/Downsample4"),
                     QStringLiteral("Bloom/Pyramid/Downsample5"));
    document.addCopy(QStringLiteral("Bloom/Pyramid/Upsample3"),
                     QStringLiteral("Bloom/Pyramid/Upsample4"));
    document.rewire(
        QStringLiteral("Bloom/Pyramid/Downsample4.Color -> Bloom/Pyramid/Upsample3.Color"),
        QStringLiteral("Bloom/Pyramid/Downsample4.Color -> Bloom/Pyramid/Upsample4.Detail"));
    document.connect(
        QStringLiteral("Bloom/Pyramid/Downsample4.Color -> Bloom/Pyramid/Downsample5.Color"));
    document.connect(
        QStringLiteral("Bloom/Pyramid/Downsample5.Color -> Bloom/Pyramid/Upsample4.Color"));
    document.connect(
        QStringLiteral("Bloom/Pyramid/Upsample4.Color -> Bloom/Pyramid/Upsample3.Color"));
    const QStringList frames = renderWith(document, QStringLiteral("five"), words("--verbose"))
                                   .linesAfter(QStringLiteral("frame 0: "));
    ASSERT_EQ(frames.size(), 1);
    EXPECT_TRUE(frames.first().startsWith(QStringLiteral("21 of 21 passes started: ")))
        << qPrintable(frames.first());
    EXPECT_TRUE(frames.first().contains(QStringLiteral(" Downsample5 Upsample4 ")));
    render(QStringLiteral("four"));
    EXPECT_NE(frame(QStringLiteral("five")), frame(QStringLiteral("four")));
}

TEST_F(GalleryEditedGraph, TakesTheValueOfAParameter)
{
    Document document = builtIn();
    document.setParameter(QStringLiteral("Exposure"), QStringLiteral("value"), 0);
    renderWith(document, QStringLiteral("out"));
    const QImage dark = picture(QStringLiteral("out"));
    for (int y = 0; y < dark.height(); ++y) {
        for (int x = 0; x < dark.width(); ++x)
            ASSERT_EQ(brightness(dark.pixel(x, y)), 0) << x << ' ' << y;
    }
}

TEST_F(GalleryEditedGraph, LightsFromTheDirectionOfItsParameter)
{
    const QPoint inShadow(178, 100); // on the ground, to the right of the post
    Document document = builtIn();
    render(QStringLiteral("before"));
    document.setParameter(QStringLiteral("LightDirection"), QStringLiteral("value"),
                          QJsonArray{-0.6, 1, 0.7});
    renderWith(document, QStringLiteral("after"));
    EXPECT_GT(brightness(picture(QStringLiteral("after")).pixel(inShadow)),
              brightness(picture(QStringLiteral("before")).pixel(inShadow)) + 25);
}

TEST_F(GalleryEditedGraph, ShowsTheDefaultColorOfAnInputThatNothingFeeds)
{
    Document document = builtIn();
    document.rewire(QStringLiteral("GBuffer.Albedo -> DebugView.Albedo"));
    document.setInput(QStringLiteral("DebugView"), QStringLiteral("Albedo"),
                      QStringLiteral("default"),
                      QJsonObject{{QStringLiteral("type"), QStringLiteral("QColor")},
                                  {QStringLiteral("value"), QStringLiteral("#ff8000")}});
    renderWith(document, QStringLiteral("out"));
    // The albedo is the first of the three pictures at the top.
    EXPECT_EQ(picture(QStringLiteral("out"), firstDebug).pixel(10, 10), qRgb(255, 128, 0));
}

TEST_F(GalleryEditedGraph, TakesAMatrixRowByRow)
{
    // A camera that looks at the model from the front.
    Document document = builtIn();
    document.rewire(QStringLiteral("Cameras.View -> GBuffer.View"));
    document.setInput(QStringLiteral("GBuffer"), QStringLiteral("View"), QStringLiteral("default"),
                      QJsonObject{{QStringLiteral("type"), QStringLiteral("QMatrix4x4")},
                                  {QStringLiteral("value"),
                                   QJsonArray{1, 0, 0, 0,  //
                                              0, 1, 0, 0,  //
                                              0, 0, 1, -4, //
                                              0, 0, 0, 1}}});
    renderWith(document, QStringLiteral("out"));
    // The upper left of the debug view's pictures, of the surfaces' own colors.
    const QRgb block = picture(QStringLiteral("out"), firstDebug).pixel(41, 38);
    EXPECT_GT(qBlue(block), qRed(block) + 50);
}

TEST_F(GalleryEditedGraph, IsRenderedWithoutADebugView)
{
    Document document = builtIn();
    document.remove(QStringLiteral("DebugView"));
    document.removePort(QStringLiteral("outputs"), QStringLiteral("Debug"));
    renderWith(document, QStringLiteral("out"));
    render(QStringLiteral("built-in"));
    EXPECT_EQ(frame(QStringLiteral("out")), frame(QStringLiteral("built-in")));
    EXPECT_FALSE(QFileInfo::exists(folder(QStringLiteral("out/")) + firstDebug));
}

TEST_F(GalleryEditedGraph, StandsStillWithoutAnAngle)
{
    Document document = builtIn();
    document.removePort(QStringLiteral("parameters"), QStringLiteral("Angle"));
    renderWith(document, QStringLiteral("out"), words("--turn 4 --frames 0-1"));
    EXPECT_EQ(frame(QStringLiteral("out")),
              frame(QStringLiteral("out"), QStringLiteral("frame-0001.png")));
}

TEST_F(GalleryEditedGraph, FindsAPassByItsPath)
{
    Document document = builtIn();
    const QString list =
        runGallery(words("--list --disable Bloom/Glow --graph") + QStringList{save(document)}).out;
    EXPECT_FALSE(list.contains(QLatin1String("Glow")));
    EXPECT_TRUE(list.contains(QLatin1String("Present")));
}

TEST_F(GalleryEditedGraph, KeepsATextureForReadersThatTheRendererDoesNotCount)
{
    // For the two readers of a group's output, the renderer counts one.
    Document document = builtIn();
    document.rewire(QStringLiteral("Lighting.Terms -> DebugView.Terms"),
                    QStringLiteral("AmbientOcclusion.Occlusion -> DebugView.Terms"));
    const ProgramRun run = renderWith(document, QStringLiteral("out"));
    EXPECT_EQ(run.linesAfter(QStringLiteral("every output gets a texture of its own: ")).size(), 1)
        << qPrintable(run.out);
    EXPECT_TRUE(run.out.contains(QLatin1String(" without the pool\n"))) << qPrintable(run.out);
    render(QStringLiteral("built-in"));
    EXPECT_EQ(frame(QStringLiteral("out")), frame(QStringLiteral("built-in")));
}

TEST_F(GalleryEditedGraph, WithoutAPictureIsRefused)
{
    Document document = builtIn();
    document.removePort(QStringLiteral("outputs"), QStringLiteral("Picture"));
    expectFailure(document, {}, QStringLiteral("the graph has no output \"Picture\""));
}

TEST_F(GalleryEditedGraph, CannotBeStaggeredWithoutTheParameter)
{
    Document document = builtIn();
    document.removePort(QStringLiteral("parameters"),
                        QStringLiteral("Orv_bool_staggeredFirstFrame"));
    expectFailure(document, words("--staggered"),
                  QStringLiteral("the graph has no parameter \"Orv_bool_staggeredFirstFrame\""));
}

TEST_F(GalleryEditedGraph, OfWhichThePictureIsNoneIsRefused)
{
    Document document = builtIn();
    document.rewire(QStringLiteral("Present.Picture -> Picture"),
                    QStringLiteral("ShadowMap.ShadowDepth -> Picture"));
    expectFailure(
        document, {},
        QStringLiteral("what arrives at the output \"Picture\" cannot be written as a picture"));
}
