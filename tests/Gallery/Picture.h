// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_GALLERY_PICTURE_H
#define ORV_TESTS_GALLERY_PICTURE_H

#include <QtCore/QString>
#include <QtGui/QImage>

#include <gtest/gtest.h>

/// A picture file as RGB, 8 bits each; a null image, and a failed test, when there is none.
QImage loadPicture(const QString& path);

/// Whether two pictures show the same thing. Drivers round differently and cover edges differently,
/// so colours may differ by 2 of 255 on average, and 2% of the pixels may differ by more than 24 in
/// some channel.
testing::AssertionResult similar(const QImage& picture, const QImage& reference);

/// The greatest difference in a channel of one pixel.
int difference(QRgb a, QRgb b);
/// The brightness of a pixel, 0 to 255.
int brightness(QRgb pixel);

#endif
