// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "DotProgram.h"

#include "Errors.h"

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
            throw SystemError(QLatin1String("dot: ") + process.errorString());
        process.kill();
        process.waitForFinished();
        throw SystemError(QLatin1String("dot did not finish within ")
                          + QString::number(timeoutSeconds) + QLatin1String(" s"));
    }
    if (process.exitStatus() != QProcess::NormalExit)
        throw SystemError(QStringLiteral("dot crashed"));
    if (process.exitCode() != 0) {
        const QByteArray messages = process.readAllStandardError();
        QString reason =
            QLatin1String("dot failed with exit code ") + QString::number(process.exitCode());
        if (!messages.isEmpty())
            reason +=
                QLatin1String(": ") + QString::fromUtf8(messages.left(messages.indexOf('\n')));
        throw SystemError(reason);
    }
    return process.readAllStandardOutput();
}

} // namespace Kestrin::Orv::Program
