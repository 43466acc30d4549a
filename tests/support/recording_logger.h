#pragma once

#include <HoxLogger/ihox_logger.h>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <map>
#include <memory>
#include <vector>

/// A logger that keeps what is written. While it lives it is the process's root logger: create it before the objects
/// whose messages are wanted, and destroy it after them.
class RecordingLogger : public IHoxLogger
{
public:
    struct Entry
    {
        QString logger;
        Hox::LogLevel level;
        QString message;
        QByteArray function;
    };

    RecordingLogger() : m_root(this) { Hox::HoxLoggerBootstrap::setHoxRootLogger(this); }
    RecordingLogger(const RecordingLogger&) = delete;
    RecordingLogger& operator=(const RecordingLogger&) = delete;
    ~RecordingLogger() override
    {
        if (m_root == this)
            Hox::HoxLoggerBootstrap::setHoxRootLogger(nullptr);
    }

    QString name() const override { return m_name; }
    IHoxLogger& logger(const QString& name) override
    {
        std::unique_ptr<RecordingLogger>& child = m_children[name];
        if (!child)
            child.reset(new RecordingLogger(m_root, name));
        return *child;
    }
    bool isEnabled(Hox::LogLevel level) const override { return level >= m_root->m_threshold; }
    void write(Hox::LogLevel level, const char* /*file*/, int /*line*/, const char* function,
               const QString& message) override
    {
        m_root->m_entries.push_back({m_name, level, message, function});
    }

    /// Messages below the level are not written; at first all are.
    void setThreshold(Hox::LogLevel level) { m_threshold = level; }
    const std::vector<Entry>& entries() const { return m_entries; }
    void clear() { m_entries.clear(); }
    /// The messages of one level, in order.
    QStringList messages(Hox::LogLevel level) const
    {
        QStringList texts;
        for (const Entry& entry : m_entries) {
            if (entry.level == level)
                texts.append(entry.message);
        }
        return texts;
    }

private:
    RecordingLogger(RecordingLogger* root, const QString& name) : m_root(root), m_name(name) {}

    RecordingLogger* m_root;
    QString m_name;
    Hox::LogLevel m_threshold = Hox::Undefined;
    std::map<QString, std::unique_ptr<RecordingLogger>> m_children;
    std::vector<Entry> m_entries;
};
