// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_GALLERY_PROGRAM_H
#define ORV_TESTS_GALLERY_PROGRAM_H

#include <QtCore/QByteArray>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

/// What a run of the gallery came to.
struct ProgramRun
{
    int exitCode = -1; ///< -1 when the program did not end by itself
    QString out;
    QString err;

    QStringList outLines() const { return out.split(QLatin1Char('\n'), Qt::SkipEmptyParts); }
    /// The lines of the output that begin like this, without their beginnings.
    QStringList linesAfter(const QString& beginning) const;
};

/// Runs the gallery and waits for it.
/// \param extra environment variables as "NAME=value"
/// \param outFile where standard output goes instead of into the result
ProgramRun runGallery(const QStringList& arguments, const QStringList& extra = QStringList(),
                      const QString& outFile = QString());

/// The bytes of a file; none, and a failed test, when it cannot be read.
QByteArray bytesOf(const QString& path);
/// The words of a command line.
QStringList words(const char* line);

/// A model of three boxes and a post that is part of the tests.
QString blocksModel();

/// A folder for the pictures, removed after the test.
class GalleryTest : public testing::Test
{
protected:
    QString folder(const QString& name) const { return directory.filePath(name); }

    /// Renders the blocks at 192x144 into folder(name), and expects that to work.
    ProgramRun render(const QString& name, const QStringList& options = QStringList());

private:
    QTemporaryDir directory;
};

#endif
