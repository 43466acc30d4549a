#pragma once

#include "x11/pointer.h"

#include <QSet>
#include <QString>

#include <workbench/main_window.h>

class QAction;
class QMenu;

/// The workbench's window on the screen, with a small document: two tracks, A with two items and B with one.
struct DesktopWorkbench
{
    static constexpr qint64 origin = 1'600'000'200'000;
    static constexpr qint64 minute = 60'000;

    Workbench::MainWindow window;

    DesktopWorkbench();

    /// Shows the window; returns whether it is there and has the keyboard's focus.
    bool show();

    /// The menu entry of that name as an object; null for none.
    QAction* entry(const char* name) const;
    /// All menu entries by which something can be done, by their names as objects; those without a name by their text.
    QSet<QString> entries() const;
    /// Opens the menu that has the entry, and the menus inside it, and clicks the entry, all with the mouse.
    /// @return why it cannot be done; null when it is done
    QString choose(const char* name);
    /// Ids of the items in the order of their start times.
    QList<int> items() const;
    /// Position of the middle of an item in the rows.
    QPoint itemPos(int itemId) const;
    QWidget* rows() const;

    VeskTimeline::TimelineView* view() const;
    VeskTimeline::Kit::StandardTimelineModel* model() const { return window.model(); }

    Pointer pointer;

private:
    QString clickIn(QMenu* menu, QAction* action);
};

/// Chooses a menu entry, or ends the test function with why that cannot be done.
#define CHOOSE(workbench, name)                                                                                        \
    do {                                                                                                               \
        const QString trouble = (workbench).choose(name);                                                              \
        QVERIFY2(trouble.isNull(), qPrintable(trouble));                                                               \
    } while (false)
