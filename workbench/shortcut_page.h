#pragma once

#include <QDialog>
#include <QList>
#include <QString>

class QLineEdit;
class QMainWindow;
class QTreeWidget;

namespace Workbench {

/// What can be done, and how.
struct ShortcutGroup
{
    struct Entry
    {
        QString input; ///< keys as the platform writes them, or a gesture of the mouse
        QString effect;
    };

    QString title;
    QList<Entry> entries;
};

/// The shortcuts of all menus of a window, one group a menu, as they are at this moment.
QList<ShortcutGroup> menuShortcuts(const QMainWindow& window);
/// What mouse and keys do in the timeline itself.
QList<ShortcutGroup> timelineGestures();

/// A page that lists all shortcuts and gestures, can be searched, and be copied as text.
class ShortcutPage : public QDialog
{
    Q_OBJECT

public:
    explicit ShortcutPage(const QMainWindow& window, QWidget* parent = nullptr);

    /// All that is listed, whatever is searched for, as lines for printing.
    QString text() const;

private:
    void fill();
    void showOnly(const QString& searched);

    QList<ShortcutGroup> m_groups;
    QLineEdit* m_search;
    QTreeWidget* m_list;
};

} // namespace Workbench
