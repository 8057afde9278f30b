// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Picture.h"
#include "Program.h"

#include <QtCore/QFileInfo>
#include <QtCore/QPoint>
#include <QtCore/QVector>

#include <algorithm>

namespace {

const QString firstFrame = QStringLiteral("/frame-0000.png");
const QString firstDebug = QStringLiteral("/debug-0000.png");

QImage reference(const QString& name)
{
    return loadPicture(QStringLiteral(GALLERY_TEST_DATA "/reference/%1.png").arg(name));
}

/// The pixels of at least this brightness.
QVector<QPoint> brightPixels(const QImage& picture, int level)
{
    QVector<QPoint> bright;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (brightness(picture.pixel(x, y)) >= level)
                bright.append(QPoint(x, y));
        }
    }
    return bright;
}

/// Whether none of the points is within a distance of this one.
bool isFarFrom(const QVector<QPoint>& points, const QPoint& point, int distance)
{
    return std::none_of(points.begin(), points.end(), [=](const QPoint& other) {
        return QPoint::dotProduct(point - other, point - other) < distance * distance;
    });
}

} // namespace

class GalleryPicture : public GalleryTest
{
};

TEST_F(GalleryPicture, LooksLikeItsReference)
{
    render(QStringLiteral("out"), words("--size 128x96"));
    EXPECT_TRUE(similar(loadPicture(folder(QStringLiteral("out")) + firstFrame),
                        reference(QStringLiteral("blocks"))));
}

TEST_F(GalleryPicture, DebugViewLooksLikeItsReference)
{
    render(QStringLiteral("out"), words("--size 128x96"));
    EXPECT_TRUE(similar(loadPicture(folder(QStringLiteral("out")) + firstDebug),
                        reference(QStringLiteral("blocks-debug"))));
}

TEST_F(GalleryPicture, OfTheEngineLooksLikeItsReference)
{
    if (!QFileInfo::exists(QStringLiteral(
            "/usr/share/assimp/models/glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb")))
        GTEST_SKIP() << "the package assimp-testmodels is not installed";
    const ProgramRun run =
        runGallery(words("--size 128x96 --out") << folder(QStringLiteral("out")));
    ASSERT_EQ(run.exitCode, 0) << qPrintable(run.err);
    EXPECT_TRUE(similar(loadPicture(folder(QStringLiteral("out")) + firstFrame),
                        reference(QStringLiteral("engine"))));
}

TEST_F(GalleryPicture, HasTheSizeThatWasAskedFor)
{
    render(QStringLiteral("out"), words("--size 61x37"));
    EXPECT_EQ(loadPicture(folder(QStringLiteral("out")) + firstFrame).size(), QSize(61, 37));
}

TEST_F(GalleryPicture, CanBeOnePixel)
{
    render(QStringLiteral("out"), words("--size 1x1"));
    EXPECT_EQ(loadPicture(folder(QStringLiteral("out")) + firstFrame).size(), QSize(1, 1));
}

TEST_F(GalleryPicture, IsTheSameInWhicheverRangeOfFrames)
{
    render(QStringLiteral("range"), words("--turn 8 --frames 1-3"));
    render(QStringLiteral("single"), words("--turn 8 --frames 3"));
    EXPECT_EQ(bytesOf(folder(QStringLiteral("range/frame-0003.png"))),
              bytesOf(folder(QStringLiteral("single/frame-0003.png"))));
}

TEST_F(GalleryPicture, ChangesWhileTheCameraTurns)
{
    render(QStringLiteral("out"), words("--turn 4 --frames 0-1"));
    EXPECT_FALSE(similar(loadPicture(folder(QStringLiteral("out/frame-0000.png"))),
                         loadPicture(folder(QStringLiteral("out/frame-0001.png")))));
}

TEST_F(GalleryPicture, ComesBackAfterAFullTurn)
{
    render(QStringLiteral("out"), words("--turn 2 --frames 0-2"));
    EXPECT_EQ(bytesOf(folder(QStringLiteral("out/frame-0000.png"))),
              bytesOf(folder(QStringLiteral("out/frame-0002.png"))));
}

TEST_F(GalleryPicture, IsTheSameWithoutThePool)
{
    render(QStringLiteral("pool"));
    render(QStringLiteral("none"), words("--no-pool"));
    EXPECT_EQ(bytesOf(folder(QStringLiteral("pool")) + firstFrame),
              bytesOf(folder(QStringLiteral("none")) + firstFrame));
    EXPECT_EQ(bytesOf(folder(QStringLiteral("pool")) + firstDebug),
              bytesOf(folder(QStringLiteral("none")) + firstDebug));
}

TEST_F(GalleryPicture, IsTheSameAfterAStaggeredStart)
{
    render(QStringLiteral("at-once"));
    render(QStringLiteral("staggered"), words("--staggered"));
    EXPECT_EQ(bytesOf(folder(QStringLiteral("at-once")) + firstFrame),
              bytesOf(folder(QStringLiteral("staggered")) + firstFrame));
}

TEST_F(GalleryPicture, WithoutBloomIsDarkerAroundBrightPartsAndTheSameElsewhere)
{
    // Without anti-aliasing, which would carry a change of brightness along edges.
    render(QStringLiteral("bloom"), words("--disable AntiAlias"));
    render(QStringLiteral("plain"), words("--disable AntiAlias --disable Glow"));
    const QImage bloom = loadPicture(folder(QStringLiteral("bloom")) + firstFrame);
    const QImage plain = loadPicture(folder(QStringLiteral("plain")) + firstFrame);

    const QVector<QPoint> bright = brightPixels(plain, 190);

    int changedNear = 0;
    int changedFar = 0;
    int numFar = 0;
    int darkened = 0;
    for (int y = 0; y < plain.height(); ++y) {
        for (int x = 0; x < plain.width(); ++x) {
            const QRgb with = bloom.pixel(x, y);
            const QRgb without = plain.pixel(x, y);
            darkened += qRed(with) < qRed(without) || qGreen(with) < qGreen(without)
                || qBlue(with) < qBlue(without);
            const bool isFar = isFarFrom(bright, QPoint(x, y), 40);
            numFar += isFar;
            (isFar ? changedFar : changedNear) += difference(with, without) > 1;
        }
    }
    EXPECT_EQ(darkened, 0) << "bloom only adds light";
    EXPECT_GT(changedNear, 300);
    EXPECT_GT(numFar, 5000);
    EXPECT_EQ(changedFar, 0);
}

TEST_F(GalleryPicture, WithoutOcclusionIsBrighterInCorners)
{
    render(QStringLiteral("occluded"), words("--disable AntiAlias --disable Glow"));
    render(QStringLiteral("plain"),
           words("--disable AntiAlias --disable Glow --disable OcclusionBlur"));
    const QImage occluded = loadPicture(folder(QStringLiteral("occluded")) + firstFrame);
    const QImage plain = loadPicture(folder(QStringLiteral("plain")) + firstFrame);
    int brighter = 0;
    int darker = 0;
    for (int y = 0; y < plain.height(); ++y) {
        for (int x = 0; x < plain.width(); ++x) {
            const int change = brightness(plain.pixel(x, y)) - brightness(occluded.pixel(x, y));
            brighter += change > 5;
            darker += change < 0;
        }
    }
    EXPECT_EQ(darker, 0);
    EXPECT_GT(brighter, 500);
}

TEST_F(GalleryPicture, WithoutShadowMapHasNoShadow)
{
    render(QStringLiteral("shadow"));
    render(QStringLiteral("plain"), words("--disable ShadowMap"));
    // On the ground, to the right of the post.
    const QPoint inShadow(178, 100);
    const QRgb shadow = loadPicture(folder(QStringLiteral("shadow")) + firstFrame).pixel(inShadow);
    const QRgb plain = loadPicture(folder(QStringLiteral("plain")) + firstFrame).pixel(inShadow);
    EXPECT_GT(brightness(plain), brightness(shadow) + 25);
}

TEST_F(GalleryPicture, WithoutAntiAliasingIsTakenFromToneMapping)
{
    render(QStringLiteral("smooth"));
    render(QStringLiteral("jagged"), words("--disable AntiAlias"));
    const QImage smooth = loadPicture(folder(QStringLiteral("smooth")) + firstFrame);
    const QImage jagged = loadPicture(folder(QStringLiteral("jagged")) + firstFrame);
    EXPECT_NE(smooth, jagged);
    int changed = 0;
    for (int y = 0; y < smooth.height(); ++y) {
        for (int x = 0; x < smooth.width(); ++x)
            changed += smooth.pixel(x, y) != jagged.pixel(x, y);
    }
    EXPECT_LT(changed, smooth.width() * smooth.height() / 5) << "only edges differ";
}

TEST_F(GalleryPicture, OfADisabledDebugViewIsNotWritten)
{
    render(QStringLiteral("out"), words("--disable DebugView"));
    EXPECT_TRUE(QFileInfo::exists(folder(QStringLiteral("out")) + firstFrame));
    EXPECT_FALSE(QFileInfo::exists(folder(QStringLiteral("out")) + firstDebug));
}
