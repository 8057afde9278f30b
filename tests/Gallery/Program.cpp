// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Program.h"

#include <QtCore/QFile>
#include <QtCore/QProcess>

QStringList ProgramRun::linesAfter(const QString& beginning) const
{
    QStringList found;
    const QStringList lines = outLines();
    for (const QString& line : lines) {
        if (line.startsWith(beginning))
            found.append(line.mid(beginning.size()));
    }
    return found;
}

ProgramRun runGallery(const QStringList& arguments, const QStringList& extra,
                      const QString& outFile)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(
        QStringLiteral("LSAN_OPTIONS"),
        QStringLiteral("print_suppressions=0:suppressions=" GALLERY_TEST_DATA "/sanitizers.supp"));
    // Drivers are not instrumented, so what their threads do looks like races.
    environment.insert(QStringLiteral("TSAN_OPTIONS"),
                       QStringLiteral("ignore_noninstrumented_modules=1"));
    for (const QString& variable : extra)
        environment.insert(variable.section(QLatin1Char('='), 0, 0),
                           variable.section(QLatin1Char('='), 1));

    QProcess process;
    process.setProcessEnvironment(environment);
    if (!outFile.isEmpty())
        process.setStandardOutputFile(outFile);
    process.start(QStringLiteral(GALLERY_PROGRAM), arguments);
    ProgramRun run;
    if (process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit)
        run.exitCode = process.exitCode();
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return file.readAll();
}

QStringList words(const char* line)
{
    return QString::fromLatin1(line).split(QLatin1Char(' '));
}

QString blocksModel()
{
    return QStringLiteral(GALLERY_TEST_DATA "/blocks.obj");
}

ProgramRun GalleryTest::render(const QString& name, const QStringList& options)
{
    const ProgramRun run =
        runGallery(QStringList{blocksModel(), QStringLiteral("--size"), QStringLiteral("192x144"),
                               QStringLiteral("--out"), folder(name)}
                   + options);
    EXPECT_EQ(run.exitCode, 0) << qPrintable(run.err);
    EXPECT_TRUE(run.err.isEmpty()) << qPrintable(run.err);
    return run;
}
