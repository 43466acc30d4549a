#include "track_commands.h"

#include "color_menu.h"
#include "track_name_editor.h"

#include <VeskTimeline/timeline_view.h>
#include <VeskTimelineKit/standard_timeline_model.h>
#include <VeskWidgets/vesk_message_dialog_new.h>

#include <QAction>
#include <QMenu>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

QString newName(const Track& parent)
{
    QStringList taken;
    for (const TrackPtr& sibling : parent.tracks())
        taken.append(sibling->text());
    QString name = TrackCommands::tr("New track");
    for (int number = 2; taken.contains(name); ++number)
        name = TrackCommands::tr("New track %1").arg(number);
    return name;
}

} // namespace

TrackCommands::TrackCommands(StandardTimelineModel* model, TimelineView* view, QObject* parent)
    : QObject(parent),
      m_model(model),
      m_view(view),
      m_colorMenu(new ColorMenu(tr("&Colour of track"), tr("&Default"), view)),
      m_title(new QAction(this)),
      m_add(addAction("add_track", tr("&Add track"), tr("Ctrl+T"), &TrackCommands::addTrack)),
      m_addInside(
          addAction("add_track_inside", tr("Add track &inside"), tr("Ctrl+Shift+T"), &TrackCommands::addTrackInside)),
      m_rename(addAction("rename_track", tr("&Rename track…"), tr("F2"), &TrackCommands::renameCurrent)),
      m_remove(addAction("remove_track", tr("Re&move track…"), {}, &TrackCommands::removeCurrent)),
      m_up(addAction("track_up", tr("Move track &up"), tr("Alt+Up"), &TrackCommands::moveUp)),
      m_down(addAction("track_down", tr("Move track &down"), tr("Alt+Down"), &TrackCommands::moveDown)),
      m_in(addAction("track_in", tr("Move track &into the one above"), tr("Ctrl+]"), &TrackCommands::moveIn)),
      m_out(addAction("track_out", tr("Move track &out of its parent"), tr("Ctrl+["), &TrackCommands::moveOut))
{
    m_title->setObjectName(QStringLiteral("track_title"));
    m_title->setEnabled(false);
    connect(m_colorMenu, &ColorMenu::colorChosen, this, &TrackCommands::setColor);
}

QAction* TrackCommands::addAction(const char* name, const QString& text, const QKeySequence& shortcut,
                                  void (TrackCommands::*slot)())
{
    auto* const action = new QAction(text, this);
    action->setObjectName(QString::fromLatin1(name));
    action->setShortcut(shortcut);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    m_view->addAction(action);
    connect(action, &QAction::triggered, this, slot);
    return action;
}

void TrackCommands::addActions(QMenu* menu)
{
    menu->addAction(m_title);
    menu->addSeparator();
    menu->addActions({m_add, m_addInside, m_rename});
    menu->addMenu(m_colorMenu);
    menu->addSeparator();
    menu->addActions({m_up, m_down, m_in, m_out});
    menu->addSeparator();
    menu->addAction(m_remove);
    connect(menu, &QMenu::aboutToShow, this, &TrackCommands::updateActions);
    // Away from the menu its shortcuts must hold for whatever track is then current.
    connect(menu, &QMenu::aboutToHide, this, [this] {
        for (QAction* const action : {m_addInside, m_rename, m_remove, m_up, m_down, m_in, m_out})
            action->setEnabled(true);
    });
}

int TrackCommands::current() const
{
    const auto* const model = std::as_const(m_model);
    if (m_current != 0 && model->rootTrack()->hasTrack(m_current, true))
        return m_current;
    const QList<int>& selected = m_view->selectedItemIds();
    if (!selected.isEmpty()) {
        try {
            return model->item(selected.first())->parentTrackId();
        } catch (const QString&) {
            // It has gone, and the selection follows soon.
        }
    }
    return model->rootTrack()->hasTracks() ? model->rootTrack()->trackAt(0)->id() : 0;
}

void TrackCommands::setCurrent(int trackId)
{
    if (trackId == 0)
        return;
    m_current = trackId;
}

TrackCommands::Place TrackCommands::placeOf(int trackId) const
{
    const Track* const track = m_model->track(trackId);
    const Track* const parent = m_model->track(track->parentId());
    return {parent->id(), parent->rowOfTrack(trackId), parent->trackCount()};
}

void TrackCommands::updateActions()
{
    const int trackId = current();
    const Place place = trackId == 0 ? Place() : placeOf(trackId);
    constexpr int room = 300;
    const QString name = trackId == 0 ? QString() : m_model->track(trackId)->text().simplified();
    m_title->setText(trackId == 0 ? tr("No track")
                                  : tr("Track “%1”").arg(m_view->fontMetrics().elidedText(name, Qt::ElideRight, room)));
    for (QAction* const action : {m_addInside, m_rename, m_remove, m_colorMenu->menuAction()})
        action->setEnabled(trackId != 0);
    m_up->setEnabled(trackId != 0 && place.row > 0);
    m_down->setEnabled(trackId != 0 && place.row + 1 < place.siblings);
    m_in->setEnabled(trackId != 0 && place.row > 0);
    m_out->setEnabled(trackId != 0 && place.parentId != 0);
    m_colorMenu->setCurrent(trackId == 0 ? QColor() : m_model->colorOfTrack(trackId));
}

template <typename Body>
void TrackCommands::attempt(const Body& body)
{
    m_model->finishGesture();
    try {
        body();
    } catch (const QString& reason) {
        Q_EMIT refused(reason);
    }
    m_view->viewport()->update();
}

void TrackCommands::insert(int parentId, int row)
{
    attempt([&] {
        m_current = m_model->insertTrack(parentId, row, newName(*m_model->track(parentId)));
        m_view->expand(m_view->indexOfTrackRow(parentId, 0));
        rename(m_current);
    });
}

void TrackCommands::addTrack()
{
    const int trackId = current();
    const Place place = trackId == 0 ? Place{0, -1, 0} : placeOf(trackId);
    insert(place.parentId, place.row + 1);
}

void TrackCommands::addTrackInside()
{
    insert(current(), -1);
}

void TrackCommands::renameCurrent()
{
    if (current() != 0)
        rename(current());
}

void TrackCommands::rename(int trackId)
{
    if (!m_model->isEditable())
        return;
    const QModelIndex index = m_view->indexOfTrackRow(trackId, 0);
    if (!index.isValid())
        return;
    // Rows above it may be closed.
    for (QModelIndex above = index.parent(); above.isValid(); above = above.parent())
        m_view->expand(above);
    m_view->scrollTo(index);
    auto* const editor = new TrackNameEditor(m_view, trackId, m_model->track(trackId)->text());
    connect(editor, &TrackNameEditor::named, this,
            [this, trackId](const QString& name) { attempt([&] { m_model->renameTrack(trackId, name); }); });
}

void TrackCommands::setColor(const QColor& color)
{
    const int trackId = current();
    if (trackId != 0)
        attempt([&] { m_model->setTrackColor(trackId, color); });
}

void TrackCommands::removeCurrent()
{
    using VeskWidgets::Button;
    const int trackId = current();
    if (trackId == 0)
        return;
    const Track& track = *m_model->track(trackId);
    const auto items = track.itemIds(true, false).size();
    const QString question =
        items == 0 ? tr("Do you really want to remove the track “%1”?").arg(track.text())
                   : tr("Do you really want to remove the track “%1” and all of its contents (items: %2)?")
                         .arg(track.text())
                         .arg(items);
    // Shows and destroys itself.
    auto* const dialog =
        new VeskWidgets::VeskMessageDialogNew(m_view, QString(), question, VeskWidgets::Behaviour::Question,
                                              VeskWidgets::Buttons(Button::Yes) | Button::No, {}, true);
    dialog->setTextFormat(Qt::PlainText);
    connect(dialog, &VeskWidgets::VeskMessageDialogNew::yes, this,
            [this, trackId] { attempt([&] { m_model->removeTrack(trackId); }); });
}

void TrackCommands::moveTo(int trackId, int parentId, int row)
{
    attempt([&] {
        m_model->moveTrack(trackId, parentId, row);
        m_current = trackId;
        m_view->expand(m_view->indexOfTrackRow(parentId, 0));
        m_view->scrollTo(m_view->indexOfTrackRow(trackId, 0));
    });
}

void TrackCommands::moveUp()
{
    const int trackId = current();
    const Place place = trackId == 0 ? Place() : placeOf(trackId);
    if (place.row > 0)
        moveTo(trackId, place.parentId, place.row - 1);
}

void TrackCommands::moveDown()
{
    const int trackId = current();
    const Place place = trackId == 0 ? Place() : placeOf(trackId);
    if (place.row + 1 < place.siblings)
        moveTo(trackId, place.parentId, place.row + 1);
}

void TrackCommands::moveIn()
{
    const int trackId = current();
    const Place place = trackId == 0 ? Place() : placeOf(trackId);
    if (place.row > 0)
        moveTo(trackId, m_model->track(place.parentId)->trackAt(place.row - 1)->id(), -1);
}

void TrackCommands::moveOut()
{
    const int trackId = current();
    const Place place = trackId == 0 ? Place() : placeOf(trackId);
    if (place.parentId == 0)
        return;
    const Place parent = placeOf(place.parentId);
    moveTo(trackId, parent.parentId, parent.row + 1);
}

} // namespace Workbench
