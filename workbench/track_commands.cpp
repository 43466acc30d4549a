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
    : ViewCommands(model, view, parent),
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
    const StandardTimelineModel* const document = model();
    if (m_current != 0 && document->rootTrack()->hasTrack(m_current, true))
        return m_current;
    const QList<int>& selected = view()->selectedItemIds();
    if (!selected.isEmpty()) {
        try {
            return document->item(selected.first())->parentTrackId();
        } catch (const QString&) {
            // It has gone, and the selection follows soon.
        }
    }
    return document->rootTrack()->hasTracks() ? document->rootTrack()->trackAt(0)->id() : 0;
}

void TrackCommands::setCurrent(int trackId)
{
    if (trackId == 0)
        return;
    m_current = trackId;
}

TrackCommands::Place TrackCommands::placeOf(int trackId) const
{
    const Track* const track = model()->track(trackId);
    const Track* const parent = model()->track(track->parentId());
    return {parent->id(), parent->rowOfTrack(trackId), parent->trackCount()};
}

void TrackCommands::updateActions()
{
    const int trackId = current();
    const Place place = trackId == 0 ? Place() : placeOf(trackId);
    constexpr int room = 300;
    const QString name = trackId == 0 ? QString() : model()->track(trackId)->text().simplified();
    m_title->setText(trackId == 0 ? tr("No track")
                                  : tr("Track “%1”").arg(view()->fontMetrics().elidedText(name, Qt::ElideRight, room)));
    for (QAction* const action : {m_addInside, m_rename, m_remove, m_colorMenu->menuAction()})
        action->setEnabled(trackId != 0);
    m_up->setEnabled(trackId != 0 && place.row > 0);
    m_down->setEnabled(trackId != 0 && place.row + 1 < place.siblings);
    m_in->setEnabled(trackId != 0 && place.row > 0);
    m_out->setEnabled(trackId != 0 && place.parentId != 0);
    m_colorMenu->setCurrent(trackId == 0 ? QColor() : model()->colorOfTrack(trackId));
}

void TrackCommands::insert(int parentId, int row)
{
    attempt([&] {
        m_current = model()->insertTrack(parentId, row, newName(*model()->track(parentId)));
        view()->expand(view()->indexOfTrackRow(parentId, 0));
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
    if (!model()->isEditable())
        return;
    const QModelIndex index = view()->indexOfTrackRow(trackId, 0);
    if (!index.isValid())
        return;
    // Rows above it may be closed.
    for (QModelIndex above = index.parent(); above.isValid(); above = above.parent())
        view()->expand(above);
    view()->scrollTo(index);
    m_nameEditor = new TrackNameEditor(view(), trackId, model()->track(trackId)->text());
    connect(m_nameEditor, &TrackNameEditor::named, this,
            [this, trackId](const QString& name) { attempt([&] { model()->renameTrack(trackId, name); }); });
}

void TrackCommands::commitPending()
{
    if (m_nameEditor)
        m_nameEditor->commit();
}

void TrackCommands::setColor(const QColor& color)
{
    const int trackId = current();
    if (trackId != 0)
        attempt([&] { model()->setTrackColor(trackId, color); });
}

void TrackCommands::removeCurrent()
{
    using VeskWidgets::Button;
    const int trackId = current();
    if (trackId == 0)
        return;
    const Track& track = *model()->track(trackId);
    const auto items = track.itemIds(true, false).size();
    const QString question =
        items == 0 ? tr("Do you really want to remove the track “%1”?").arg(track.text())
                   : tr("Do you really want to remove the track “%1” and all of its contents (items: %2)?")
                         .arg(track.text())
                         .arg(items);
    // Shows and destroys itself.
    auto* const dialog =
        new VeskWidgets::VeskMessageDialogNew(view(), QString(), question, VeskWidgets::Behaviour::Question,
                                              VeskWidgets::Buttons(Button::Yes) | Button::No, {}, true);
    dialog->setTextFormat(Qt::PlainText);
    connect(dialog, &VeskWidgets::VeskMessageDialogNew::yes, this,
            [this, trackId] { attempt([&] { model()->removeTrack(trackId); }); });
}

void TrackCommands::moveTo(int trackId, int parentId, int row)
{
    attempt([&] {
        model()->moveTrack(trackId, parentId, row);
        m_current = trackId;
        view()->expand(view()->indexOfTrackRow(parentId, 0));
        view()->scrollTo(view()->indexOfTrackRow(trackId, 0));
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
        moveTo(trackId, model()->track(place.parentId)->trackAt(place.row - 1)->id(), -1);
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
