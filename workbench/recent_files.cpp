#include "recent_files.h"

#include "settings.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMenu>

namespace Workbench {

namespace {

QString key()
{
    return QStringLiteral("recentFiles");
}

// The first nine have a digit to press; an & of the name is no sign for one.
QString menuText(int number, const QString& fileName)
{
    QString text = QDir::toNativeSeparators(fileName);
    text.replace(u'&', QStringLiteral("&&"));
    return number < 10 ? QStringLiteral("&%1  %2").arg(number).arg(text) : text;
}

} // namespace

RecentFiles::RecentFiles(QObject* parent) : QObject(parent)
{
}

QStringList RecentFiles::files() const
{
    return openSettings()->value(key()).toStringList();
}

void RecentFiles::add(const QStringList& fileNames)
{
    if (!m_isRecording)
        return;
    QStringList files = this->files();
    for (qsizetype i = fileNames.size() - 1; i >= 0; --i) {
        const QString fileName = QFileInfo(fileNames.at(i)).absoluteFilePath();
        files.removeAll(fileName);
        files.prepend(fileName);
    }
    openSettings()->setValue(key(), files.mid(0, most));
}

void RecentFiles::remove(const QString& fileName)
{
    QStringList files = this->files();
    files.removeAll(fileName);
    openSettings()->setValue(key(), files);
}

void RecentFiles::clear()
{
    openSettings()->remove(key());
}

void RecentFiles::fill(QMenu* menu)
{
    connect(menu, &QMenu::aboutToShow, this, [this, menu] {
        menu->clear();
        const QStringList names = files();
        for (int i = 0; i < names.size(); ++i) {
            QAction* const action = menu->addAction(menuText(i + 1, names.at(i)));
            action->setObjectName(QStringLiteral("recentFile%1").arg(i + 1));
            connect(action, &QAction::triggered, this, [this, name = names.at(i)] { Q_EMIT chosen(name); });
        }
        menu->addSeparator();
        QAction* const clearAction = menu->addAction(tr("&Clear this list"));
        clearAction->setObjectName(QStringLiteral("clearRecentFiles"));
        clearAction->setEnabled(!names.isEmpty());
        connect(clearAction, &QAction::triggered, this, &RecentFiles::clear);
    });
}

} // namespace Workbench
