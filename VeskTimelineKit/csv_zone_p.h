#pragma once

// Internal to the kit; not installed.

#include <QByteArray>
#include <QTimeZone>

namespace VeskTimeline::Kit {

/// Brings the local times of a zone to UTC.
///
/// A time that the clocks left out when they were put forward is as much later as they were put forward. Of a time
/// that was there twice the first is meant.
class CsvZone
{
public:
    enum class Kind { Once, Twice, LeftOut };
    struct Instant
    {
        qint64 time = 0;
        Kind kind = Kind::Once;
    };

    /// @param id an IANA id, or empty for UTC
    explicit CsvZone(const QByteArray& id);

    bool isValid() const { return m_isUtc || m_zone.isValid(); }
    /// @param local milliseconds since 1970-01-01T00:00 local time
    Instant toUtc(qint64 local);

private:
    qint64 offsetAt(qint64 utc) const;
    void lookUpDay(qint64 day);

    QTimeZone m_zone;
    bool m_isUtc;
    // Of the day looked up last: times mostly come in some order.
    qint64 m_day = 0;
    bool m_hasDay = false;
    qint64 m_offsetBefore = 0;
    qint64 m_offsetAfter = 0;
};

} // namespace VeskTimeline::Kit
