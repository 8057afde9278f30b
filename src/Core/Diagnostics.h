// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_DIAGNOSTICS_H
#define KESTRIN_ORV_DIAGNOSTICS_H

#include <QtCore/QDebug>
#include <QtCore/QMessageLogger>
#include <QtCore/QString>

#include <cstdarg>
#include <cstring>

/// Log lines and soft assertions for the library's own sources.
///
/// ORV_DEBUG(format, ...) and ORV_CRITICAL(format, ...) emit one message "[File.cpp:line] ..." at
/// Qt's debug or critical level. ORV_ASSERT(condition, format, ...) emits, only when the condition
/// is false, one critical message that quotes it; execution goes on either way. Formats are
/// printf's; strings are passed in the local 8-bit encoding (qPrintable). A message may also be a
/// QString, which is then worked out for failures alone.
///
/// A call of these macros stands on one line: which line number a call that spans lines is given
/// differs between compilers.

namespace Kestrin {
namespace Orv {
namespace Diagnostics {

/// The logger behind every message. The source position travels in the text, so the context has
/// none; it does have a category, which a default-constructed logger lacks.
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

/// The message that the macros are given: a QString, or a format and its arguments.
inline QString messageText(const QString& text)
{
    return text;
}
inline QString messageText(const char* format, ...) Q_ATTRIBUTE_FORMAT_PRINTF(1, 2);
inline QString messageText(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    const QString text = QString::vasprintf(format, arguments);
    va_end(arguments);
    return text;
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

/// `text` is a QString that never serves as a format itself.
#define ORV_LOG_LINE(level, text)                                                                  \
    Kestrin::Orv::Diagnostics::logger().level("[%s:%d] %s",                                        \
                                              Kestrin::Orv::Diagnostics::baseName(__FILE__),       \
                                              __LINE__, (text).toLocal8Bit().constData())

#define ORV_DEBUG(...) ORV_LOG_LINE(debug, Kestrin::Orv::Diagnostics::messageText(__VA_ARGS__))
#define ORV_CRITICAL(...)                                                                          \
    ORV_LOG_LINE(critical, Kestrin::Orv::Diagnostics::messageText(__VA_ARGS__))

#define ORV_ASSERT(condition, ...) ORV_ASSERT_TEXT(condition, #condition, __VA_ARGS__)

/// As ORV_ASSERT, with another text for the condition.
#define ORV_ASSERT_TEXT(condition, text, ...)                                                      \
    do {                                                                                           \
        if (!(condition))                                                                          \
            ORV_LOG_LINE(critical,                                                                 \
                         Kestrin::Orv::Diagnostics::assertionText(                                 \
                             text, Kestrin::Orv::Diagnostics::messageText(__VA_ARGS__)));          \
    } while (false)

#endif
