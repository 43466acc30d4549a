#include "csv_zone_p.h"

#include <VeskTimelineKit/csv_options.h>

#include <QDateTime>

namespace VeskTimeline::Kit {

namespace {

constexpr qint64 msecsPerDay = 24 * 60 * 60 * 1000;

qint64 dayOf(qint64 local)
{
    return local >= 0 ? local / msecsPerDay : -((-local + msecsPerDay - 1) / msecsPerDay);
}

} // namespace

bool isCsvTimeZone(const QByteArray& id)
{
    // Ids of the old kind are not on the list of all zones; but nearly any word is valid otherwise, as a rule.
    static const QList<QByteArray> shortIds{"CET", "EET", "EST", "EST5EDT", "CST6CDT", "GMT",
                                            "HST", "MET", "MST", "MST7MDT", "PST8PDT", "WET"};
    const bool isOldId = id.contains('/') || shortIds.contains(id);
    return QTimeZone::isTimeZoneIdAvailable(id) || (isOldId && QTimeZone(id).isValid());
}

CsvZone::CsvZone(const QByteArray& id)
    : m_zone(isCsvTimeZone(id) ? QTimeZone(id) : QTimeZone()), m_isUtc(id.isEmpty() || id == "UTC")
{
}

qint64 CsvZone::offsetAt(qint64 utc) const
{
    return qint64(1000) * m_zone.offsetFromUtc(QDateTime::fromMSecsSinceEpoch(utc, Qt::UTC));
}

void CsvZone::lookUpDay(qint64 day)
{
    // No zone is a whole day from UTC, and none changes its clocks twice within three days.
    m_day = day;
    m_hasDay = true;
    m_offsetBefore = offsetAt((day - 1) * msecsPerDay);
    m_offsetAfter = offsetAt((day + 2) * msecsPerDay);
}

CsvZone::Instant CsvZone::toUtc(qint64 local)
{
    if (m_isUtc)
        return {local, Kind::Once};
    if (const qint64 day = dayOf(local); !m_hasDay || day != m_day)
        lookUpDay(day);
    const qint64 before = local - m_offsetBefore;
    if (m_offsetBefore == m_offsetAfter)
        return {before, Kind::Once};
    const qint64 after = local - m_offsetAfter;
    const bool isBefore = offsetAt(before) == m_offsetBefore;
    const bool isAfter = offsetAt(after) == m_offsetAfter;
    if (isBefore)
        return {before, isAfter ? Kind::Twice : Kind::Once};
    return isAfter ? Instant{after, Kind::Once} : Instant{before, Kind::LeftOut};
}

} // namespace VeskTimeline::Kit
