#pragma once

// Not part of the library's interface; may change or go without notice.

#include <HoxLogger/ihox_logger.h>

#include <QByteArray>
#include <QLoggingCategory>
#include <QString>

#include <map>
#include <memory>
#include <mutex>

namespace Hox {

class CategoryLogger;

/// Owns the default loggers and finds them by their full names.
class CategoryLoggers
{
public:
    CategoryLoggers();
    ~CategoryLoggers();
    Q_DISABLE_COPY_MOVE(CategoryLoggers)

    /// The logger of that full name, made when it is missing. Thread-safe.
    IHoxLogger& logger(const QString& name);

private:
    std::mutex m_mutex;
    std::map<QString, std::unique_ptr<CategoryLogger>> m_loggers;
};

/// Writes to the Qt logging category of its name.
class CategoryLogger final : public IHoxLogger
{
public:
    CategoryLogger(CategoryLoggers& loggers, const QString& name);

    QString name() const override;
    IHoxLogger& logger(const QString& name) override;
    bool isEnabled(LogLevel level) const override;
    void write(LogLevel level, const char* file, int line, const char* function, const QString& message) override;

private:
    CategoryLoggers& m_loggers;
    const QString m_name;
    const QByteArray m_categoryName; // the category keeps the pointer only
    const QLoggingCategory m_category;
};

} // namespace Hox
