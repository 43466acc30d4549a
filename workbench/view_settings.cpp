#include "view_settings.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <hoxtools/dtg.h>

#include <QDateTime>
#include <QSettings>

namespace Workbench {

using namespace VeskTimeline;

namespace {

constexpr int clockInterval = 1000;

QString key(const char* name)
{
    return QStringLiteral("view/%1").arg(QLatin1String(name));
}

// The setting as what it should be; nothing for one that is missing or no such value.
std::optional<int> numberOf(const QSettings& settings, const char* name)
{
    bool isNumber = false;
    const int number = settings.value(key(name)).toInt(&isNumber);
    return isNumber ? std::optional<int>(number) : std::nullopt;
}

bool flagOf(const QSettings& settings, const char* name, bool otherwise)
{
    return settings.value(key(name), otherwise).toBool();
}

} // namespace

ViewSettings::ViewSettings(TimelineWidget* timeline) : QObject(timeline), m_timeline(timeline)
{
    m_clock.setInterval(clockInterval);
    connect(&m_clock, &QTimer::timeout, this, &ViewSettings::showNow);
    connect(timeline->view(), &TimelineView::zoomChanged, this, &ViewSettings::updateRulerFormat);
    TimelineHeaderView* const header = timeline->header();
    header->setLimitsVisible(true);
    header->setIndicatorVisible(true);
    header->setHoverVisible(true);
    timeline->setSnapEnabled(true);
    updateRulerFormat();
}

bool ViewSettings::isSnapEnabled() const
{
    return m_timeline->isSnapEnabled();
}

void ViewSettings::setSnapEnabled(bool isEnabled)
{
    if (isEnabled == isSnapEnabled())
        return;
    m_timeline->setSnapEnabled(isEnabled);
    Q_EMIT changed();
}

int ViewSettings::snapStep() const
{
    return m_timeline->timelineModel()->snapStep();
}

void ViewSettings::setSnapStep(int step)
{
    if (step < 0 || step == snapStep())
        return;
    m_timeline->timelineModel()->setSnapStep(step);
    Q_EMIT changed();
}

int ViewSettings::snapTolerance() const
{
    return m_timeline->timelineModel()->snapTolerance();
}

void ViewSettings::setSnapTolerance(int tolerance)
{
    if (tolerance < 0 || tolerance == snapTolerance())
        return;
    m_timeline->timelineModel()->setSnapTolerance(tolerance);
    Q_EMIT changed();
}

void ViewSettings::setLive(bool isLive)
{
    if (isLive == this->isLive())
        return;
    if (isLive) {
        m_clock.start();
        showNow();
    } else {
        m_clock.stop();
    }
    m_timeline->header()->setLiveIndicatorVisible(isLive);
    repaint();
    Q_EMIT changed();
}

void ViewSettings::setFollowsLive(bool follows)
{
    if (follows == m_followsLive)
        return;
    m_followsLive = follows;
    if (isLive())
        showNow();
    Q_EMIT changed();
}

// By the wall clock, since a timer that only counts its own ticks falls behind.
void ViewSettings::showNow()
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    // The grid is for what the user places; with a step of an hour the clock would stand still.
    const bool snaps = isSnapEnabled();
    m_timeline->setSnapEnabled(false);
    m_timeline->header()->setLiveIndicatorTime(now);
    m_timeline->setSnapEnabled(snaps);
    TimelineView* const view = m_timeline->view();
    view->viewport()->update();
    if (m_followsLive && view->startTime() <= now && now <= view->endTime())
        view->setCurrentTime(now - view->zoomFactor() / 2);
}

void ViewSettings::setRulerFormat(std::optional<Format> format)
{
    if (format == m_rulerFormat)
        return;
    m_rulerFormat = format;
    updateRulerFormat();
    Q_EMIT changed();
}

// Labels have room for the time of day only; the date stands at the limits.
void ViewSettings::updateRulerFormat()
{
    const Zoom::Factor factor = m_timeline->view()->zoomFactor();
    const bool showsSeconds = Zoom::majorInterval(factor) % Zoom::SixtySeconds != 0;
    const Format byZoom = showsSeconds ? DateTime::DTGShort : DateTime::DTGVeryShort;
    m_timeline->header()->setDateTimeFormat(m_rulerFormat.value_or(byZoom));
    // Hover and limits say the date as well, in the manner of the ruler.
    const bool isDated = m_rulerFormat == DateTime::ISODate || m_rulerFormat == DateTime::Standard;
    m_timeline->header()->setHoverDateTimeFormat(isDated ? *m_rulerFormat : DateTime::DTG);
    m_timeline->header()->setLimitsDateTimeFormat(isDated ? *m_rulerFormat : DateTime::DTG);
    repaint();
}

char ViewSettings::zone() const
{
    return DTG::timezone();
}

void ViewSettings::setZone(char zone)
{
    if (zone == DTG::timezone() || !DTG::setTimezone(zone))
        return;
    // The ticks keep their labels until they get another format.
    TimelineHeaderView* const header = m_timeline->header();
    const Format format = header->dateTimeFormat();
    header->setDateTimeFormat(format == DateTime::DTG ? DateTime::DTGShort : DateTime::DTG);
    header->setDateTimeFormat(format);
    repaint();
    Q_EMIT changed();
}

QString ViewSettings::zones()
{
    return QStringLiteral("YXWVUTSRQPONZABCDEFGHIKLM");
}

QString ViewSettings::zoneText(char zone)
{
    const int hours = DTG::timezone2Hours(zone);
    const QString offset =
        hours == 0 ? QString() : QStringLiteral("%1%2").arg(QChar(hours < 0 ? u'−' : u'+')).arg(qAbs(hours));
    return QStringLiteral("%1 (UTC%2)").arg(QLatin1Char(zone)).arg(offset);
}

bool ViewSettings::areLimitsVisible() const
{
    return m_timeline->header()->isLimitsVisible();
}

void ViewSettings::setLimitsVisible(bool isVisible)
{
    if (isVisible == areLimitsVisible())
        return;
    m_timeline->header()->setLimitsVisible(isVisible);
    Q_EMIT changed();
}

bool ViewSettings::isIndicatorVisible() const
{
    return m_timeline->header()->isIndicatorVisible();
}

void ViewSettings::setIndicatorVisible(bool isVisible)
{
    if (isVisible == isIndicatorVisible())
        return;
    m_timeline->header()->setIndicatorVisible(isVisible);
    repaint();
    Q_EMIT changed();
}

bool ViewSettings::isHoverVisible() const
{
    return m_timeline->header()->isHoverVisible();
}

void ViewSettings::setHoverVisible(bool isVisible)
{
    if (isVisible == isHoverVisible())
        return;
    m_timeline->header()->setHoverVisible(isVisible);
    repaint();
    Q_EMIT changed();
}

void ViewSettings::repaint()
{
    m_timeline->header()->viewport()->update();
    m_timeline->view()->viewport()->update();
}

void ViewSettings::restore(const QSettings& settings)
{
    setSnapEnabled(flagOf(settings, "snap", isSnapEnabled()));
    setSnapStep(numberOf(settings, "snapStep").value_or(-1));
    setSnapTolerance(numberOf(settings, "snapTolerance").value_or(-1));
    setFollowsLive(flagOf(settings, "followLive", m_followsLive));
    setLive(flagOf(settings, "live", isLive()));
    setLimitsVisible(flagOf(settings, "limits", areLimitsVisible()));
    setIndicatorVisible(flagOf(settings, "indicator", isIndicatorVisible()));
    setHoverVisible(flagOf(settings, "hover", isHoverVisible()));
    const int format = numberOf(settings, "rulerFormat").value_or(-1);
    if (DateTime::DTG <= format && format < DateTime::TimeOnly)
        setRulerFormat(static_cast<Format>(format));
    const QString zone = settings.value(key("zone")).toString();
    if (zone.size() == 1)
        setZone(zone.front().toLatin1());
}

void ViewSettings::save(QSettings& settings) const
{
    settings.setValue(key("snap"), isSnapEnabled());
    settings.setValue(key("snapStep"), snapStep());
    settings.setValue(key("snapTolerance"), snapTolerance());
    settings.setValue(key("followLive"), m_followsLive);
    settings.setValue(key("live"), isLive());
    settings.setValue(key("limits"), areLimitsVisible());
    settings.setValue(key("indicator"), isIndicatorVisible());
    settings.setValue(key("hover"), isHoverVisible());
    settings.setValue(key("rulerFormat"), m_rulerFormat ? static_cast<int>(*m_rulerFormat) : -1);
    settings.setValue(key("zone"), QString(QLatin1Char(zone())));
}

} // namespace Workbench
