#include <HoxLogger/category_logger_p.h>

#include <QDebug>
#include <QMessageLogger>

namespace {

constexpr char s_rootCategory[] = "default";

QtMsgType messageType(Hox::LogLevel level)
{
    if (level >= Hox::Error)
        return QtCriticalMsg;
    if (level >= Hox::Warning)
        return QtWarningMsg;
    if (level >= Hox::Info)
        return QtInfoMsg;
    return QtDebugMsg;
}

// The stream leads nowhere when the category has the type off.
QDebug openStream(QtMsgType type, const QMessageLogger& out, const QLoggingCategory& category)
{
    switch (type) {
    case QtDebugMsg:
        return out.debug(category);
    case QtInfoMsg:
        return out.info(category);
    case QtWarningMsg:
        return out.warning(category);
    default:
        return out.critical(category);
    }
}

} // namespace

namespace Hox {

CategoryLoggers::CategoryLoggers() = default;

CategoryLoggers::~CategoryLoggers() = default;

IHoxLogger& CategoryLoggers::logger(const QString& name)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::unique_ptr<CategoryLogger>& entry = m_loggers[name];
    if (!entry)
        entry = std::make_unique<CategoryLogger>(*this, name);
    return *entry;
}

CategoryLogger::CategoryLogger(CategoryLoggers& loggers, const QString& name)
    : m_loggers(loggers),
      m_name(name),
      m_categoryName(name.isEmpty() ? QByteArray(s_rootCategory) : name.toUtf8()),
      m_category(m_categoryName.constData(), QtInfoMsg)
{
}

QString CategoryLogger::name() const
{
    return m_name;
}

IHoxLogger& CategoryLogger::logger(const QString& name)
{
    return m_loggers.logger(name);
}

bool CategoryLogger::isEnabled(LogLevel level) const
{
    return m_category.isEnabled(messageType(level));
}

void CategoryLogger::write(LogLevel level, const char* file, int line, const char* function, const QString& message)
{
    const QMessageLogger out(file, line, function);
    openStream(messageType(level), out, m_category).nospace().noquote() << message;
}

} // namespace Hox
