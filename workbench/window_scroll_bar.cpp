#include "window_scroll_bar.h"

#include "navigation.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_widget.h>

#include <QGridLayout>
#include <QSignalBlocker>

#include <algorithm>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

WindowScrollBar::WindowScrollBar(Navigation* navigation, QWidget* parent)
    : QScrollBar(Qt::Horizontal, parent), m_navigation(navigation)
{
    setAccessibleName(tr("Time"));
    connect(navigation, &Navigation::windowChanged, this, &WindowScrollBar::sync);
    connect(navigation, &Navigation::reachChanged, this, &WindowScrollBar::sync);
    connect(this, &QScrollBar::actionTriggered, this, &WindowScrollBar::act);
    connect(this, &QScrollBar::valueChanged, this, &WindowScrollBar::drag);
    sync();
}

WindowScrollBar* WindowScrollBar::replaceSlider(Navigation* navigation)
{
    TimelineWidget* const widget = navigation->widget();
    QScrollBar* const slider = widget->slider();
    auto* const grid = qobject_cast<QGridLayout*>(widget->layout());
    Q_ASSERT(grid);
    int row = 0;
    int column = 0;
    int rowSpan = 1;
    int columnSpan = 1;
    grid->getItemPosition(grid->indexOf(slider), &row, &column, &rowSpan, &columnSpan);
    auto* const bar = new WindowScrollBar(navigation, widget);
    grid->addWidget(bar, row, column, rowSpan, columnSpan, Qt::AlignLeft);
    // As wide as the time column above it.
    const auto fitToColumn = [bar, slider] { bar->setFixedSize(slider->size()); };
    connect(widget->header(), &QHeaderView::sectionResized, bar, fitToColumn);
    fitToColumn();
    return bar;
}

void WindowScrollBar::sync()
{
    constexpr qint64 mostUnits = 1 << 30;
    const TimeSpan reach = m_navigation->reach();
    const TimeSpan window = m_navigation->window();
    const qint64 length = reach.end - reach.start;
    m_unit = std::max<qint64>(1, (length + mostUnits - 1) / mostUnits);
    const auto units = [this](qint64 milliseconds) { return static_cast<int>(milliseconds / m_unit); };

    const QSignalBlocker blocker(this);
    setRange(0, std::max(0, units(length - (window.end - window.start))));
    setPageStep(std::max(1, units(window.end - window.start)));
    setValue(units(window.start - reach.start));
}

// A unit may be longer than a window, so these are not left to the scroll bar's own arithmetic.
void WindowScrollBar::act(int action)
{
    const TimeSpan window = m_navigation->window();
    const qint64 page = window.end - window.start;
    const qint64 mark = Zoom::majorInterval(static_cast<Zoom::Factor>(page));
    if (action == SliderSingleStepAdd)
        m_navigation->scrollTo(window.start + mark);
    else if (action == SliderSingleStepSub)
        m_navigation->scrollTo(window.start - mark);
    else if (action == SliderPageStepAdd)
        m_navigation->scrollTo(window.start + page);
    else if (action == SliderPageStepSub)
        m_navigation->scrollTo(window.start - page);
    else
        return;
    // At the edge the window does not change, and the position has moved on.
    sync();
}

void WindowScrollBar::drag(int position)
{
    const TimeSpan reach = m_navigation->reach();
    m_navigation->scrollTo(position == maximum() ? reach.end : reach.start + position * m_unit);
}

} // namespace Workbench
