#include "name_column.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>

#include <QEvent>
#include <QSettings>

#include <algorithm>

namespace Workbench {

using namespace VeskTimeline;

namespace {

const QString widthKey = QStringLiteral("window/nameColumn");
constexpr int narrowest = 200;
constexpr int widestChosen = 4000;

// Of the texts in the track column, with their indentation.
int widestName(const QTreeView& view, const Track& parent, int level)
{
    int widest = 0;
    for (const TrackPtr& track : parent.tracks()) {
        const int own = view.fontMetrics().horizontalAdvance(track->text()) + level * view.indentation();
        widest = std::max({widest, own, widestName(view, *track, level + 1)});
    }
    return widest;
}

} // namespace

NameColumn::NameColumn(TimelineView* view) : QObject(view), m_view(view)
{
    view->header()->viewport()->installEventFilter(this);
    // The column gets other widths by itself, too, as rows come and the window grows.
    connect(view->header(), &QHeaderView::sectionResized, this, [this](int section, int /*old*/, int width) {
        if (section == 0 && m_isPressed)
            m_chosen = width;
    });
}

bool NameColumn::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonPress)
        m_isPressed = true;
    else if (event->type() == QEvent::MouseButtonRelease)
        m_isPressed = false;
    return QObject::eventFilter(watched, event);
}

void NameColumn::setWidth(int width)
{
    m_view->header()->resizeSection(0, width);
}

void NameColumn::fit()
{
    // A row is 50 pixels high and its buttons half as wide.
    constexpr int buttonWidth = 25;
    constexpr int margin = 16;
    constexpr int widest = 400;
    const int width = widestName(*m_view, *m_view->timelineModel()->rootTrack(), 1) + buttonWidth + margin;
    setWidth(m_chosen.value_or(std::clamp(width, narrowest, widest)));
}

void NameColumn::restore(const QSettings& settings)
{
    bool isNumber = false;
    const int width = settings.value(widthKey).toInt(&isNumber);
    if (!isNumber || width < narrowest || width > widestChosen)
        return;
    m_chosen = width;
    setWidth(width);
}

void NameColumn::save(QSettings& settings) const
{
    if (m_chosen)
        settings.setValue(widthKey, *m_chosen);
}

} // namespace Workbench
