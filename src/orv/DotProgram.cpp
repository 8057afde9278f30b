// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "DotProgram.h"

#include "Trouble.h"

#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>

namespace Kestrin::Orv::Program {

DotProgram::DotProgram()
    : program(QStandardPaths::findExecutable(QStringLiteral("dot")))
{
}

QByteArray DotProgram::draw(const QByteArray& text, const QString& format, int timeoutSeconds) const
{
    QProcess process;
    process.start(program, {QLatin1String("-T") + format});
    process.write(text);
    process.closeWriteChannel();
    if (!process.waitForFinished(timeoutSeconds * 1000)) {
        if (process.error() != QProcess::Timedout)
            throw Failure(QLatin1String("dot: ") + process.errorString());
        process.kill();
        process.waitForFinished();
        throw Failure(QLatin1String("dot has not finished within ")
                      + QString::number(timeoutSeconds) + QLatin1String(" s"));
    }
    if (process.exitStatus() != QProcess::NormalExit)
        throw Failure(QStringLiteral("dot has crashed"));
    if (process.exitCode() != 0) {
        const QByteArray said = process.readAllStandardError();
        QString told =
            QLatin1String("dot has failed with exit code ") + QString::number(process.exitCode());
        if (!said.isEmpty())
            told += QLatin1String(": ") + QString::fromUtf8(said.left(said.indexOf('\n')));
        throw Failure(told);
    }
    return process.readAllStandardOutput();
}

} // namespace Kestrin::Orv::Program
