// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_DIAGNOSTICS_H
#define KESTRIN_ORV_DIAGNOSTICS_H

#include <QtCore/QDebug>
#include <QtCore/QMessageLogger>
#include <QtCore/QString>

#include <cstring>

/// Log lines and soft assertions for the library's own sources.
///
/// ORV_DEBUG(format, ...) and ORV_CRITICAL(format, ...) log one message "[File.cpp:line] ..." at
/// Qt's debug or critical level. ORV_ASSERT(condition, format, ...) logs one critical message that
/// quotes the condition if it is false. Execution continues in any case. Formats are those of
/// printf; strings are passed in the local 8-bit encoding (qPrintable). ORV_ASSERT_MESSAGE takes a
/// QString instead of a format.
///
/// Write a call of these macros on one line: if a call spans lines, its line number differs between
/// compilers.

namespace Kestrin {
namespace Orv {
namespace Diagnostics {

/// The logger of every message. The text contains the source position, so the context has none. The
/// context has a category, which a default-constructed logger lacks.
inline QMessageLogger logger()
{
    return QMessageLogger(nullptr, 0, nullptr, "default");
}

/// A source file's name without its directories.
inline const char* baseName(const char* path)
{
    const char* slash = std::strrchr(path, '/');
    return slash ? slash + 1 : path;
}

/// The text of a failed assertion. A "%" in the condition is shown as "\%".
inline QString assertionText(const char* condition, const QString& message)
{
    QString text = QString::fromUtf8(condition);
    text.replace(QLatin1Char('%'), QLatin1String("\\%"));
    return QString::asprintf("[ !! ] Assertion '%s' failed: %s", text.toLocal8Bit().constData(),
                             message.toLocal8Bit().constData());
}

} // namespace Diagnostics
} // namespace Orv
} // namespace Kestrin

/// `text` is a QString. It is never used as a format.
#define ORV_LOG_LINE(level, text)                                                                  \
    Kestrin::Orv::Diagnostics::logger().level("[%s:%d] %s",                                        \
                                              Kestrin::Orv::Diagnostics::baseName(__FILE__),       \
                                              __LINE__, (text).toLocal8Bit().constData())

#define ORV_DEBUG(...) ORV_LOG_LINE(debug, QString::asprintf(__VA_ARGS__))
#define ORV_CRITICAL(...) ORV_LOG_LINE(critical, QString::asprintf(__VA_ARGS__))

#define ORV_ASSERT(condition, ...)                                                                 \
    ORV_ASSERT_TEXT(condition, #condition, QString::asprintf(__VA_ARGS__))

/// The message is an expression that is evaluated only for a failure.
#define ORV_ASSERT_MESSAGE(condition, message) ORV_ASSERT_TEXT(condition, #condition, message)

/// As above, with another text for the condition.
#define ORV_ASSERT_TEXT(condition, text, message)                                                  \
    do {                                                                                           \
        if (!(condition))                                                                          \
            ORV_LOG_LINE(critical, Kestrin::Orv::Diagnostics::assertionText(text, message));       \
    } while (false)

#endif
