#include <HoxLogger/log_stream_helper.h>

#include <cstdio>

namespace Hox {

LogStreamHelper::LogStreamHelper(IHoxLogger& logger, LogLevel level, const char* file, int line, const char* function)
    : m_logger(logger), m_level(level), m_file(file), m_line(line), m_function(function), m_stream(&m_message)
{
}

LogStreamHelper::~LogStreamHelper()
{
    try {
        m_logger.write(m_level, m_file, m_line, m_function, m_message);
    } catch (...) {
        std::fputs("HoxLogger: a message was lost, because its logger threw an exception\n", stderr);
    }
}

LogStreamHelper& LogStreamHelper::operator<<(QChar part)
{
    return *this << QString(part);
}

LogStreamHelper& LogStreamHelper::operator<<(const std::string& part)
{
    return *this << QString::fromStdString(part);
}

} // namespace Hox
