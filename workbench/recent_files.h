#pragma once

#include <QObject>
#include <QStringList>

class QMenu;

namespace Workbench {

/// The files that were opened or saved last, remembered from one run to the next, and the menu that offers them.
class RecentFiles : public QObject
{
    Q_OBJECT

public:
    static constexpr int most = 10;

    explicit RecentFiles(QObject* parent = nullptr);

    /// Absolute, the latest first. Another window may have added some.
    QStringList files() const;
    void add(const QStringList& fileNames);
    /// While not, add() does nothing; default true.
    void setRecording(bool isRecording) { m_isRecording = isRecording; }
    /// @param fileName absolute
    void remove(const QString& fileName);

    /// Has a menu show the files, each time that it is opened. Not owned.
    void fill(QMenu* menu);

public Q_SLOTS:
    void clear();

Q_SIGNALS:
    /// The user wants the file.
    void chosen(const QString& fileName);

private:
    bool m_isRecording = true;
};

} // namespace Workbench
