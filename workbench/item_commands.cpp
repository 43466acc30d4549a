#include "item_commands.h"

#include "color_menu.h"
#include "item_placement.h"
#include "selection_summary.h"
#include "snap_suspender.h"
#include "track_commands.h"

#include <VeskTimeline/timeline_view.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QAction>
#include <QContextMenuEvent>
#include <QMenu>
#include <QUndoStack>

#include <map>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

/// Makes one step of those pushed while it lives.
class Macro
{
public:
    Macro(QUndoStack* stack, const QString& text) : m_stack(stack) { m_stack->beginMacro(text); }
    ~Macro() { m_stack->endMacro(); }
    Q_DISABLE_COPY_MOVE(Macro)

private:
    QUndoStack* m_stack;
};

} // namespace

ItemCommands::ItemCommands(StandardTimelineModel* model, TimelineView* view, QObject* parent)
    : ViewCommands(model, view, parent),
      m_formerSelectHandler(view->selectHandler()),
      m_formerTrackHandler(view->trackHandler()),
      m_tracks(new TrackCommands(model, view, this)),
      m_colorMenu(new ColorMenu(tr("&Colour"), tr("Colour of the &track"), view))
{
    m_requests.rowPressed = [this](int trackId) { m_tracks->setCurrent(trackId); };
    m_requests.emptyPlaceActivated = [this](int trackId, qint64 time) { addItemAt(trackId, time); };
    m_requests.nameActivated = [this](int trackId) { m_tracks->rename(trackId); };
    m_requests.removeItems = [this] { removeSelected(); };
    m_selectHandler = std::make_unique<RowSelectHandler>(view, m_requests);
    m_trackHandler = std::make_unique<RowTrackHandler>(view, m_requests);
    view->setSelectHandler(m_selectHandler.get());
    view->setTrackHandler(m_trackHandler.get());
    new SnapSuspender(model, view);

    createActions();
    view->installEventFilter(this);
    connect(view, &QWidget::customContextMenuRequested, this, &ItemCommands::showContextMenu);
    connect(view, &TimelineView::itemActivated, this, &ItemCommands::activateItem);
    connect(view, &TimelineView::selectedItemsChanged, this, &ItemCommands::updateActions);
    connect(m_colorMenu, &ColorMenu::colorChosen, this, &ItemCommands::setColor);
    connect(m_tracks, &TrackCommands::refused, this, &ItemCommands::refused);
    updateActions();
}

ItemCommands::~ItemCommands()
{
    if (!view())
        return;
    view()->setSelectHandler(m_formerSelectHandler);
    view()->setTrackHandler(m_formerTrackHandler);
}

void ItemCommands::createActions()
{
    m_cut = addAction("cut", tr("Cu&t"), QKeySequence::Cut, &ItemCommands::cut);
    m_copy = addAction("copy", tr("&Copy"), QKeySequence::Copy, &ItemCommands::copy);
    m_paste = addAction("paste", tr("&Paste"), QKeySequence::Paste, &ItemCommands::paste);
    m_delete = addAction("delete", tr("&Delete"), QKeySequence::Delete, &ItemCommands::removeSelected);
    m_selectAll = addAction("select_all", tr("Select &all"), QKeySequence::SelectAll);
    connect(m_selectAll, &QAction::triggered, this, [this] { pressKey(Qt::Key_A); });
    m_duplicate = addAction("duplicate", tr("D&uplicate"), tr("Ctrl+D"), &ItemCommands::duplicate);
    m_addItem = addAction("add_item", tr("&Add item"), tr("Ins"), &ItemCommands::addItem);
    m_lock = addAction("lock", tr("&Lock"), tr("Ctrl+L"));
    connect(m_lock, &QAction::triggered, this, [this] { setLocked(true); });
    m_unlock = addAction("unlock", tr("U&nlock"), tr("Ctrl+Shift+L"));
    connect(m_unlock, &QAction::triggered, this, [this] { setLocked(false); });
}

void ItemCommands::addClipboardActions(QMenu* menu)
{
    menu->addActions({m_cut, m_copy, m_paste, m_duplicate, m_delete});
    menu->addSeparator();
    menu->addAction(m_selectAll);
    connect(menu, &QMenu::aboutToShow, this, &ItemCommands::updateActions);
}

void ItemCommands::addItemActions(QMenu* menu)
{
    menu->addAction(m_addItem);
    menu->addSeparator();
    menu->addActions({m_lock, m_unlock});
    menu->addMenu(m_colorMenu);
    connect(menu, &QMenu::aboutToShow, this, &ItemCommands::updateActions);
}

void ItemCommands::updateActions()
{
    const bool hasItems = view() && view()->hasSelectedItems();
    for (QAction* const action : {m_cut, m_copy, m_delete, m_duplicate, m_lock, m_unlock, m_colorMenu->menuAction()})
        action->setEnabled(hasItems);
    m_paste->setEnabled(!model()->isClipboardEmpty());
}

// The view's own keys do the work, so that entry and key cannot differ.
void ItemCommands::pressKey(int key)
{
    QKeyEvent press(QEvent::KeyPress, key, Qt::ControlModifier);
    model()->finishGesture();
    view()->selectHandler()->keyPressEvent(&press);
    view()->viewport()->update();
    updateActions();
}

void ItemCommands::cut()
{
    pressKey(Qt::Key_X);
}

void ItemCommands::copy()
{
    pressKey(Qt::Key_C);
}

void ItemCommands::paste()
{
    QVector<int> pasted;
    const auto connection = connect(model(), &StandardTimelineModel::itemsAdded, this,
                                    [&pasted](const QVector<int>& ids) { pasted += ids; });
    pressKey(Qt::Key_V);
    disconnect(connection);
    if (!pasted.isEmpty())
        view()->selectItems(pasted, true);
}

void ItemCommands::removeSelected()
{
    const QList<int> ids = knownItems(*model(), view()->selectedItemIds());
    view()->clearSelectedItems();
    if (!ids.isEmpty())
        attempt([&] { model()->removeItems(ids); });
}

void ItemCommands::duplicate()
{
    const SelectionSummary selected = summarise(*model(), view()->selectedItemIds());
    if (selected.ids.isEmpty())
        return;
    std::map<int, std::vector<DocumentItem>> copies;
    std::optional<TimeSpan> span;
    for (const int id : selected.ids) {
        DocumentItem copy = model()->documentItem(id);
        span = span ? TimeSpan{std::min(span->start, copy.start), std::max(span->end, copy.end())}
                    : TimeSpan{copy.start, copy.end()};
        copies[model()->item(id)->parentTrackId()].push_back(std::move(copy));
    }
    // Markers at one time would lie on their copies.
    const qint64 width = span->end - span->start;
    const qint64 offset = width > 0 ? width : roundDuration(view()->zoomFactor());
    QVector<int> added;
    const auto count = static_cast<int>(selected.ids.size());
    attempt([&] {
        const Macro step(model()->undoStack(), count == 1 ? tr("Duplicate item") : tr("Duplicate %1 items").arg(count));
        for (auto& [trackId, items] : copies) {
            for (DocumentItem& item : items)
                item.start += offset;
            added += model()->addItems(trackId, items);
        }
    });
    view()->selectItems(added, true);
}

int ItemCommands::addItemAt(int trackId, qint64 time)
{
    int id = -1;
    attempt([&] {
        const TimeSpan place = placeForItem(*model(), *model()->track(trackId), time, view()->zoomFactor());
        id = model()->addItem(trackId, {tr("New item"), place.start, place.end - place.start, {}});
    });
    if (id != -1)
        activateItem(id);
    return id;
}

void ItemCommands::addItem()
{
    const qint64 left = view()->currentTime();
    qint64 time = left + view()->zoomFactor() / 2;
    const TimelineHeaderView* const header = view()->header();
    if (header && header->isIndicatorVisible() && header->indicatorTime() >= left &&
        header->indicatorTime() <= left + view()->zoomFactor())
        time = header->indicatorTime();
    const int trackId = m_tracks->current();
    if (trackId != 0) {
        addItemAt(trackId, time);
        return;
    }
    const Macro step(model()->undoStack(), tr("Add item"));
    addItemAt(model()->addTrack(tr("New track")), time);
}

void ItemCommands::activateItem(int itemId)
{
    view()->selectItem(itemId, true);
    Q_EMIT labelEditRequested(itemId);
}

void ItemCommands::setLocked(bool isLocked)
{
    attempt([&] { model()->setItemsLocked(knownItems(*model(), view()->selectedItemIds()), isLocked); });
}

void ItemCommands::setColor(const QColor& color)
{
    attempt([&] { model()->setItemsColor(knownItems(*model(), view()->selectedItemIds()), color); });
}

void ItemCommands::showContextMenu(const QPoint& pos)
{
    if (m_contextMenu)
        return;
    const QModelIndex index = view()->indexAt(pos);
    const int trackId = index.siblingAtColumn(1).data(Qt::DisplayRole).toInt();
    m_tracks->setCurrent(trackId);
    auto* const menu = new QMenu(view());
    menu->setObjectName(QStringLiteral("contextMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    m_contextMenu = menu;
    if (index.isValid() && index.column() == 0) {
        m_tracks->addActions(menu);
    } else {
        try {
            const int itemId = model()->track(trackId)->itemAt(view()->toTime(pos.x()))->id();
            if (!view()->isItemSelected(itemId))
                view()->selectItem(itemId, true);
        } catch (const QString&) {
            // An empty place: the selection stays.
        }
        if (index.isValid()) {
            const qint64 time = view()->toTime(pos.x());
            QAction* const add = menu->addAction(tr("&Add item here"));
            add->setObjectName(QStringLiteral("add_item_here"));
            connect(add, &QAction::triggered, this, [this, trackId, time] { addItemAt(trackId, time); });
        }
        menu->addActions({m_cut, m_copy, m_paste, m_duplicate, m_delete});
        menu->addSeparator();
        menu->addActions({m_lock, m_unlock});
        menu->addMenu(m_colorMenu);
        menu->addSeparator();
        m_tracks->addActions(menu->addMenu(tr("T&rack")));
    }
    updateActions();
    menu->popup(view()->viewport()->mapToGlobal(pos));
}

QPoint ItemCommands::keyboardMenuPos() const
{
    const QRect area = view()->viewport()->rect();
    if (!view()->hasSelectedItems())
        return area.center();
    const Item& item = *model()->item(view()->selectedItemIds().constFirst());
    const QRect row = view()->visualRect(view()->indexOfTrackRow(item.parentTrackId(), 1));
    const QPoint pos(view()->toPixel(item.startTime()) + 1, row.center().y());
    return area.contains(pos) ? pos : area.center();
}

bool ItemCommands::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ContextMenu &&
        static_cast<QContextMenuEvent*>(event)->reason() == QContextMenuEvent::Keyboard) {
        showContextMenu(keyboardMenuPos());
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace Workbench
