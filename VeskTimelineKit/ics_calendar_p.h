#pragma once

// Internal to the kit; not installed.

#include "ics_packed_event_p.h"
#include "ics_zones_p.h"

#include <map>
#include <memory>

namespace VeskTimeline::Kit {

/// A track that a calendar names itself.
struct IcsTrack
{
    QStringList path;
    QColor color;
};

/// A VCALENDAR.
struct IcsCalendar
{
    int line = 0;
    QString name;
    bool hasTrack = true; ///< false for the calendar that stands for a document without tracks
    QColor color;
    std::vector<IcsTrack> tracks;
    std::vector<IcsPackedEvent> events;
    IcsZones zones;
};

/// Takes the lines of a stream apart into calendars with their events.
class IcsCalendarParser
{
public:
    explicit IcsCalendarParser(WarningList& warnings) : m_warnings(warnings) {}

    /// @return why the rest makes no sense, translated; empty to go on
    QString takeLine(int number, const QByteArray& text);
    /// To be called at the end of the stream. What is left open there is cut off.
    void finish();

    /// Their events last as long as the parser.
    const std::vector<std::unique_ptr<IcsCalendar>>& calendars() const { return m_calendars; }

private:
    struct Component
    {
        QByteArray name;
        int line = 0;
    };
    struct Skipped
    {
        int firstLine = 0;
        int count = 0;
    };

    QString begin(const IcsLine& line);
    void end(const IcsLine& line);
    void openCalendar(int line);
    void takeProperty(const IcsLine& line, const QByteArray& text);
    void takeCalendarProperty(const IcsLine& line);
    void takeTrack(const IcsLine& line);
    void takeColor(const IcsLine& line);
    void closeInnermost();
    void closeDownTo(std::size_t depth);
    bool isInEvent() const { return m_open.size() == 2 && m_open[0].name == "VCALENDAR" && m_open[1].name == "VEVENT"; }
    bool isInZone() const
    {
        return m_open.size() >= 2 && m_open[0].name == "VCALENDAR" && m_open[1].name == "VTIMEZONE";
    }
    void skip(const QByteArray& name, int line);
    IcsCalendar& calendar() { return *m_calendars.back(); }

    WarningList& m_warnings;
    std::vector<std::unique_ptr<IcsCalendar>> m_calendars;
    std::vector<Component> m_open;
    IcsEventPacker m_packer;
    std::vector<IcsLine> m_eventLines;
    QByteArrayList m_zoneLines;
    std::map<QByteArray, Skipped> m_skippedComponents;
    std::map<QByteArray, Skipped> m_skippedProperties;
    Skipped m_strayLines;
    qint64 m_zoneChangesLeft = 300'000;
};

} // namespace VeskTimeline::Kit
