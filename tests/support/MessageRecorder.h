// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_MESSAGERECORDER_H
#define ORV_TESTS_MESSAGERECORDER_H

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <mutex>
#include <string>
#include <vector>

/// While it lives, records every message that reaches Qt's message handler, from any thread.
/// One at a time.
class MessageRecorder
{
public:
    struct Message
    {
        QtMsgType level;
        QString text;
        int contextVersion;
        std::string category; // "(null)" for null
        bool hasFile;
        int line;
        bool hasFunction;

        /// The context that all of the library's messages carry.
        bool hasPlainContext() const
        {
            return contextVersion == 2 && category == "default" && !hasFile && line == 0
                && !hasFunction;
        }
        /// The text behind the "[File.cpp:123] " prefix; the whole text if it has none.
        QString body() const
        {
            const int end = text.indexOf(QLatin1String("] "));
            return text.startsWith(QLatin1Char('[')) && end > 0 ? text.mid(end + 2) : text;
        }
        /// The file name of the "[File.cpp:123] " prefix.
        QString prefixFile() const
        {
            return text.startsWith(QLatin1Char('['))
                ? text.mid(1, text.indexOf(QLatin1Char(':')) - 1)
                : QString();
        }
    };

    MessageRecorder()
    {
        current() = this;
        previous = qInstallMessageHandler(&MessageRecorder::handle);
    }
    ~MessageRecorder()
    {
        qInstallMessageHandler(previous);
        current() = nullptr;
    }
    MessageRecorder(const MessageRecorder&) = delete;
    MessageRecorder& operator=(const MessageRecorder&) = delete;

    std::vector<Message> messages() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return recorded;
    }

private:
    static MessageRecorder*& current()
    {
        static MessageRecorder* recorder = nullptr;
        return recorder;
    }

    static void handle(QtMsgType level, const QMessageLogContext& context, const QString& text)
    {
        MessageRecorder* recorder = current();
        const std::lock_guard<std::mutex> lock(recorder->mutex);
        recorder->recorded.push_back(
            {level, text, context.version, context.category ? context.category : "(null)",
             context.file != nullptr, context.line, context.function != nullptr});
    }

    mutable std::mutex mutex;
    std::vector<Message> recorded;
    QtMessageHandler previous;
};

#endif
