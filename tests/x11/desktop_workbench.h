#pragma once

#include "x11/pointer.h"

#include <VeskTimelineKit/standard_timeline_model.h>

#include <QPointer>
#include <QSet>
#include <QStringList>
#include <QUndoStack>

#include <workbench/main_window.h>

class QAction;
class QLineEdit;
class QMenu;

/// The workbench's window on the screen, with a small document: two tracks, A with two items and B with one.
struct DesktopWorkbench
{
    static constexpr qint64 origin = 1'600'000'200'000;
    static constexpr qint64 minute = 60'000;

    /// contents() as they are at the start.
    const QString initially;

    Workbench::MainWindow window;

    DesktopWorkbench();

    /// Shows the window; returns whether it is there and has the keyboard's focus.
    bool show();

    // Menus and their entries are named as they are as objects; those without a name, entries by their menu and text,
    // "zone/A (UTC+1)", menus by their text.

    /// Null for none.
    QAction* entry(const QString& name) const;
    /// The entries by which something can be done in a menu of the menu bar and the menus inside it; menus that are
    /// filled only when they open count as one entry.
    QSet<QString> entries(const QString& menu) const;
    QStringList menus() const;
    /// Opens the menu that has the entry, and the menus inside it, and clicks the entry, all with the mouse.
    /// @param keys to press in the dialog that then opens, if this one holds everything up until it is closed
    /// @return why it cannot be done; null when it is done
    QString choose(const QString& name, const QStringList& keys = {});
    /// The same for an entry of a menu that is filled only when it opens.
    QString chooseIn(const QString& menu, const QString& name);
    /// Those of a menu of the menu bar that no window of this program has been made to choose.
    QStringList unchosen(const QString& menu) const;
    /// The dialog of a class that is open, and ready for input; null when there is none.
    template <typename Dialog>
    Dialog* dialog() const;
    /// Where the name of any colour is typed in the dialog that is open; null when there is none.
    QLineEdit* colorField() const;

    /// The items of all tracks with start and duration in minutes, and tracks inside tracks, as
    /// "A[first 0+5, second 20+5]{inside[]} B[third 40+5]".
    QString contents() const;
    /// Clicks an item; it is then the only one that is selected.
    bool select(int itemId);
    /// Position in the name of a track in the rows.
    QPoint namePos(int trackId) const;
    /// Ids of the items in the order of their start times.
    QList<int> items() const;
    /// Position of the middle of an item in the rows.
    QPoint itemPos(int itemId) const;
    QWidget* rows() const;

    VeskTimeline::TimelineView* view() const;
    VeskTimeline::Kit::StandardTimelineModel* model() const { return window.model(); }

    Pointer pointer;

private:
    mutable QPointer<QWidget> m_ready;

    QList<QMenu*> pathTo(const QString& name, const QString& menu) const;
    QString chooseAlong(const QList<QMenu*>& path, const QString& name, const QStringList& keys);
    QString clickIn(QMenu* menu, const QString& name, const QStringList& keys = {});
};

template <typename Dialog>
Dialog* DesktopWorkbench::dialog() const
{
    for (auto* const dialog : window.findChildren<Dialog*>()) {
        // One that has been ready for input stays so, though the focus may leave it for a moment.
        if (dialog->isVisible() && (dialog->isActiveWindow() || dialog == m_ready)) {
            m_ready = dialog;
            return dialog;
        }
    }
    return nullptr;
}

/// Undoes with the keyboard all there is to undo, one step at a time, or ends the test function.
#define UNDO_ALL(workbench)                                                                                            \
    while ((workbench).model()->undoStack()->canUndo()) {                                                              \
        const int step = (workbench).model()->undoStack()->index();                                                    \
        PLAY((workbench).pointer.shortcut(QStringLiteral("ctrl+z")));                                                  \
        QTRY_VERIFY((workbench).model()->undoStack()->index() < step);                                                 \
    }                                                                                                                  \
    static_assert(true)

/// Chooses a menu entry, with the parameters of DesktopWorkbench::choose(), or ends the test function with why that
/// cannot be done.
#define CHOOSE(workbench, ...)                                                                                         \
    do {                                                                                                               \
        const QString trouble = (workbench).choose(__VA_ARGS__);                                                       \
        QVERIFY2(trouble.isNull(), qPrintable(trouble));                                                               \
    } while (false)

/// Types the name of any colour into the dialog that is open, and takes it, or ends the test function.
#define TYPE_COLOR(workbench, name)                                                                                    \
    do {                                                                                                               \
        QTRY_VERIFY((workbench).dialog<QColorDialog>());                                                               \
        const QLineEdit* const field = (workbench).colorField();                                                       \
        QVERIFY(field);                                                                                                \
        PLAY((workbench).pointer.moveTo(field).click().key(QStringLiteral("ctrl+a")).type(QStringLiteral(name)));      \
        PLAY((workbench).pointer.key(QStringLiteral("Return")));                                                       \
        QTRY_VERIFY(!(workbench).dialog<QColorDialog>());                                                              \
    } while (false)
