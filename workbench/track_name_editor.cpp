#include "track_name_editor.h"

#include <VeskTimeline/timeline_view.h>

#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>

namespace Workbench {

using VeskTimeline::TimelineView;

TrackNameEditor::TrackNameEditor(TimelineView* view, int trackId, const QString& name)
    : QLineEdit(name, view->viewport()), m_view(view), m_trackId(trackId), m_former(name)
{
    setObjectName(QStringLiteral("trackNameEditor"));
    setAttribute(Qt::WA_DeleteOnClose);
    const auto drop = [this] { finish(false); };
    connect(view->verticalScrollBar(), &QScrollBar::valueChanged, this, &TrackNameEditor::place);
    connect(view->QTreeView::header(), &QHeaderView::sectionResized, this, &TrackNameEditor::place);
    connect(view->model(), &QAbstractItemModel::modelReset, this, drop);
    connect(view->model(), &QAbstractItemModel::rowsRemoved, this, drop);
    connect(view->model(), &QAbstractItemModel::rowsMoved, this, drop);
    connect(view->model(), &QAbstractItemModel::rowsInserted, this, drop);
    place();
    show();
    setFocus();
    selectAll();
}

void TrackNameEditor::place()
{
    constexpr int margin = 2;
    const QRect cell = m_view->visualRect(m_view->indexOfTrackRow(m_trackId, 0));
    if (!cell.isValid()) {
        finish(false);
        return;
    }
    const int height = sizeHint().height();
    // The row's buttons at its right end stay free.
    setGeometry(cell.left() + margin, cell.center().y() - height / 2, cell.width() - cell.height() / 2 - 2 * margin,
                height);
}

void TrackNameEditor::finish(bool isTaken)
{
    if (std::exchange(m_isFinished, true))
        return;
    const QString name = text().trimmed();
    // The editor may be what is destroyed by what the new name leads to.
    const bool hadFocus = hasFocus();
    close();
    if (hadFocus)
        m_view->setFocus();
    if (isTaken && !name.isEmpty() && name != m_former)
        Q_EMIT named(name);
}

// The keys of the view around it are text here.
bool TrackNameEditor::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept();
        return true;
    }
    return QLineEdit::event(event);
}

void TrackNameEditor::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        finish(false);
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        finish(true);
    else
        QLineEdit::keyPressEvent(event);
    // Nothing typed here is for the items.
    event->accept();
}

void TrackNameEditor::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason)
        finish(true);
}

} // namespace Workbench
