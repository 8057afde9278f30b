// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "FuzzTarget.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <gtest/gtest.h>

// Runs the code of the fuzzer on every input of the corpus, and on every input that ever failed.
TEST(Replay, AllInputsPass)
{
    int replayed = 0;
    for (const QString& directory : QString::fromUtf8(ORV_FUZZ_INPUTS).split(QLatin1Char('|'))) {
        for (const QFileInfo& info : QDir(directory).entryInfoList(QDir::Files)) {
            SCOPED_TRACE(info.fileName().toStdString());
            QFile file(info.filePath());
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            const QByteArray input = file.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.constData()),
                                   static_cast<std::size_t>(input.size()));
            ++replayed;
        }
    }
    EXPECT_GT(replayed, 0) << "the corpus is missing";
}
