// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Picture.h"

#include <algorithm>
#include <cstdlib>

QImage loadPicture(const QString& path)
{
    const QImage image(path);
    EXPECT_FALSE(image.isNull()) << "no picture " << qPrintable(path);
    return image.convertToFormat(QImage::Format_RGB32);
}

int difference(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b))});
}

int brightness(QRgb pixel)
{
    return qGray(pixel);
}

testing::AssertionResult similar(const QImage& picture, const QImage& reference)
{
    if (picture.isNull() || picture.size() != reference.size())
        return testing::AssertionFailure() << "the sizes differ";
    qint64 sum = 0;
    int outliers = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb a = picture.pixel(x, y);
            const QRgb b = reference.pixel(x, y);
            sum += std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b))
                + std::abs(qBlue(a) - qBlue(b));
            outliers += difference(a, b) > 24;
        }
    }
    const int numPixels = picture.width() * picture.height();
    const double mean = double(sum) / (3.0 * numPixels);
    const double share = double(outliers) / numPixels;
    if (mean <= 2 && share <= 0.02)
        return testing::AssertionSuccess() << "mean difference " << mean;
    return testing::AssertionFailure() << "mean difference " << mean << ", " << 100 * share
                                       << "% of the pixels differ by more than 24";
}
