#pragma once

#include <HoxLogger/hoxlogger_export.h>
#include <HoxLogger/ihox_logger.h>

#include <QChar>
#include <QDebug>
#include <QString>

#include <string>

namespace Hox {

/// Collects one message with << and writes it to a logger when destroyed, exactly once, also when it is empty.
///
/// It does not ask whether the level is enabled: callers do, before they create it:
///
///     if (logger.isEnabled(Hox::Warning))
///         Hox::LogStreamHelper(logger, Hox::Warning, __FILE__, __LINE__, Q_FUNC_INFO) << Q_FUNC_INFO << " failed";
///
/// The parts follow each other without blanks or quotes. Besides texts and numbers everything that QDebug prints can be
/// a part; plain char texts are taken as UTF-8, a null one as empty, and truth values are written as true and false.
/// Stream manipulators such as Qt::hex hold for the parts that follow.
class HOXLOGGER_EXPORT LogStreamHelper
{
public:
    /// @p logger is not owned and must outlive this object, as must the two texts, which may be null.
    LogStreamHelper(IHoxLogger& logger, LogLevel level, const char* file, int line, const char* function);

    /// Writes the message. An exception of the logger goes no further: the message is lost, which is noted on
    /// standard error.
    ~LogStreamHelper();

    Q_DISABLE_COPY_MOVE(LogStreamHelper)

    /// Appends @p part to the message.
    template <typename T>
    LogStreamHelper& operator<<(const T& part)
    {
        // Asked for each time, because the operators of some types leave the stream with blanks or quotes on.
        m_stream.nospace().noquote() << part;
        return *this;
    }

    LogStreamHelper& operator<<(QChar part); // QDebug would write an escape sequence for all but ASCII
    LogStreamHelper& operator<<(const std::string& part);

private:
    IHoxLogger& m_logger;
    const LogLevel m_level;
    const char* const m_file;
    const int m_line;
    const char* const m_function;
    QString m_message;
    QDebug m_stream;
};

} // namespace Hox
