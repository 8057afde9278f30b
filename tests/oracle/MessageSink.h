// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_MESSAGESINK_H
#define ORV_TESTS_MESSAGESINK_H

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <vector>

/// Collects, on one thread, every message as "level [File.cpp] text": the line number, which is the
/// source's own affair, is left out, and a context other than the library's is pointed at.
class MessageSink
{
public:
    MessageSink()
    {
        current() = this;
        previous = qInstallMessageHandler(&MessageSink::handle);
    }
    ~MessageSink()
    {
        qInstallMessageHandler(previous);
        current() = nullptr;
    }
    MessageSink(const MessageSink&) = delete;
    MessageSink& operator=(const MessageSink&) = delete;

    std::vector<QString> messages;

private:
    static MessageSink*& current()
    {
        static MessageSink* sink = nullptr;
        return sink;
    }

    static void handle(QtMsgType level, const QMessageLogContext& context, const QString& text)
    {
        QString line = QLatin1String(level == QtDebugMsg          ? "debug "
                                         : level == QtCriticalMsg ? "critical "
                                                                  : "other ");
        if (context.version != 2 || context.file || context.function || context.line != 0
            || qstrcmp(context.category, "default") != 0)
            line += QLatin1String("with a context of its own: ");
        const int colon = text.indexOf(QLatin1Char(':'));
        const int end = text.indexOf(QLatin1String("] "));
        bool numbered = false;
        if (text.startsWith(QLatin1Char('[')) && colon > 0 && end > colon)
            text.midRef(colon + 1, end - colon - 1).toInt(&numbered);
        line += numbered ? text.left(colon) + text.mid(end) : text;
        current()->messages.push_back(line);
    }

    QtMessageHandler previous;
};

#endif
