// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Output.h"

#include "Errors.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSaveFile>

#include <cerrno>

#include <unistd.h>

namespace Kestrin::Orv::Program {

void Output::write(const QByteArray& bytes)
{
    const int pieceSize = 1 << 16;
    pending += bytes;
    if (pending.size() >= pieceSize)
        flush();
}

void Output::write(const QString& text)
{
    write(text.toUtf8());
}

void Output::write(const QJsonObject& object)
{
    write(QJsonDocument(object).toJson());
}

void Output::flush()
{
    const QByteArray bytes = pending;
    pending.clear();
    for (int written = 0; written < bytes.size();) {
        const ssize_t count = ::write(STDOUT_FILENO, bytes.constData() + written,
                                      static_cast<std::size_t>(bytes.size() - written));
        if (count >= 0)
            written += static_cast<int>(count);
        else if (errno != EINTR)
            throw SystemError(QLatin1String("cannot write to standard output: ")
                              + qt_error_string(errno));
    }
}

void saveFile(const QString& file, const QByteArray& bytes)
{
    const auto check = [&file](bool succeeded, const QFileDevice& device) {
        if (!succeeded)
            throw SystemError(QLatin1String("cannot write \"") + file + QLatin1String("\": ")
                              + device.errorString());
    };

    const QFileInfo existing(file);
    if (existing.exists() && !existing.isFile() && !existing.isDir()) {
        QFile device(file);
        check(device.open(QIODevice::WriteOnly | QIODevice::Unbuffered)
                  && device.write(bytes) == bytes.size(),
              device);
        return;
    }
    QSaveFile saved(file);
    check(saved.open(QIODevice::WriteOnly) && saved.write(bytes) == bytes.size() && saved.commit(),
          saved);
}

} // namespace Kestrin::Orv::Program
