#include "ics_attributes_p.h"
#include "ics_calendar_p.h"
#include "ics_names_p.h"
#include "kit_tr_p.h"

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

constexpr std::size_t deepestComponent = 100;

// The components that stand in a calendar only: where one begins, the one before it has ended.
bool isOfCalendar(const QByteArray& name)
{
    static const QByteArrayList names{"VEVENT", "VTODO", "VJOURNAL", "VFREEBUSY", "VTIMEZONE"};
    return names.contains(name);
}

// Says nothing about what takes place.
bool isAdministration(const IcsLine& line)
{
    static const QByteArrayList names{"PRODID", "METHOD"};
    return names.contains(line.name) || (line.name == "VERSION" && line.value.trimmed() == "2.0") ||
           (line.name == "CALSCALE" && line.value.trimmed().toUpper() == "GREGORIAN");
}

} // namespace

QString IcsCalendarParser::takeLine(int number, const QByteArray& text)
{
    std::optional<IcsLine> line = parseIcsLine(text);
    if (!line) {
        m_warnings.add(number, Tr::tr("the line %1 is no property and is left out").arg(quotedIcs(text)));
        return {};
    }
    line->number = number;
    if (line->name == "BEGIN")
        return begin(*line);
    if (line->name == "END")
        end(*line);
    else
        takeProperty(*line, text);
    return {};
}

QString IcsCalendarParser::begin(const IcsLine& line)
{
    const QByteArray name = line.value.trimmed().toUpper();
    if (name == "VCALENDAR") {
        closeDownTo(0);
        openCalendar(line.number);
        return {};
    }
    if (isOfCalendar(name) && m_open.size() > 1 && m_open[0].name == "VCALENDAR")
        closeDownTo(1);
    if (m_open.size() >= deepestComponent)
        return Tr::tr("components are more than %1 levels deep").arg(deepestComponent);

    m_open.push_back({name, line.number});
    const bool isInCalendar = m_open.size() == 2 && m_open[0].name == "VCALENDAR";
    if (isInCalendar && name == "VEVENT")
        m_eventLines.clear();
    else if (isInCalendar && name == "VTIMEZONE")
        m_zoneLines = {"BEGIN:VTIMEZONE"};
    else if (isInZone())
        m_zoneLines.append("BEGIN:" + name);
    else
        skip(name, line.number);
    return {};
}

void IcsCalendarParser::openCalendar(int line)
{
    m_calendars.push_back(std::make_unique<IcsCalendar>());
    calendar().line = line;
    m_open.push_back({"VCALENDAR", line});
}

void IcsCalendarParser::end(const IcsLine& line)
{
    const QByteArray name = line.value.trimmed().toUpper();
    const auto found = std::find_if(m_open.rbegin(), m_open.rend(),
                                    [&name](const Component& component) { return component.name == name; });
    if (found == m_open.rend()) {
        m_warnings.add(line.number, Tr::tr("END:%1 without a beginning").arg(QString::fromUtf8(name)));
        return;
    }
    closeDownTo(static_cast<std::size_t>(m_open.rend() - found));
    closeInnermost();
}

void IcsCalendarParser::closeDownTo(std::size_t depth)
{
    while (m_open.size() > depth) {
        m_warnings.add(m_open.back().line, Tr::tr("%1 has no end").arg(QString::fromUtf8(m_open.back().name)));
        closeInnermost();
    }
}

void IcsCalendarParser::closeInnermost()
{
    if (isInEvent()) {
        if (const auto event = parseIcsEvent(m_eventLines, m_open.back().line, m_warnings))
            calendar().events.push_back(m_packer.pack(*event));
    } else if (isInZone()) {
        m_zoneLines.append("END:" + m_open.back().name);
        const QString reason = m_open.size() == 2 ? calendar().zones.add(m_zoneLines, m_zoneChangesLeft) : QString();
        if (!reason.isEmpty())
            m_warnings.add(m_open.back().line, reason);
    }
    m_open.pop_back();
}

void IcsCalendarParser::takeProperty(const IcsLine& line, const QByteArray& text)
{
    if (isInEvent())
        m_eventLines.push_back(line);
    else if (isInZone())
        m_zoneLines.append(text);
    else if (m_open.size() == 1 && m_open[0].name == "VCALENDAR")
        takeCalendarProperty(line);
    else if (m_open.empty() && ++m_strayLines.count == 1)
        m_strayLines.firstLine = line.number;
}

void IcsCalendarParser::takeCalendarProperty(const IcsLine& line)
{
    if (line.name == "X-WR-CALNAME" || (line.name == "NAME" && calendar().name.isEmpty()))
        calendar().name = icsUnescaped(line.value).simplified();
    else if (line.name == "COLOR" || line.name == "X-APPLE-CALENDAR-COLOR" || line.name == IcsNames::color)
        takeColor(line);
    else if (line.name == IcsNames::track)
        takeTrack(line);
    else if (!isAdministration(line)) {
        Skipped& skipped = m_skippedProperties[line.name];
        if (++skipped.count == 1)
            skipped.firstLine = line.number;
    }
}

void IcsCalendarParser::takeColor(const IcsLine& line)
{
    const QColor color = parseIcsColor(line.value);
    if (!color.isValid())
        m_warnings.add(
            line.number,
            Tr::tr("%1 %2 cannot be read and is left out").arg(QString::fromUtf8(line.name), quotedIcs(line.value)));
    else if (!calendar().color.isValid() || line.name != "COLOR")
        calendar().color = color;
}

void IcsCalendarParser::takeTrack(const IcsLine& line)
{
    const auto path = icsJsonList(line.value);
    if (path && path->isEmpty())
        calendar().hasTrack = false;
    else if (!path)
        m_warnings.add(
            line.number,
            Tr::tr("%1 %2 cannot be read and is left out").arg(QString::fromUtf8(line.name), quotedIcs(line.value)));
    else
        calendar().tracks.push_back({*path, parseIcsColor(line.parameter(IcsNames::color))});
}

void IcsCalendarParser::skip(const QByteArray& name, int line)
{
    // What is inside something that is left out goes with it.
    const bool isInside = m_open.size() > 2 && m_open[m_open.size() - 2].name != "VEVENT";
    if (isInside)
        return;
    Skipped& skipped = m_skippedComponents[name];
    if (++skipped.count == 1)
        skipped.firstLine = line;
}

void IcsCalendarParser::finish()
{
    // An event that the end of the stream cuts off may lack anything, also in its last line.
    if (isInEvent()) {
        m_warnings.add(m_open.back().line, Tr::tr("the file ends within this event, which is left out"));
        m_open.pop_back();
    }
    closeDownTo(0);
    for (const auto& [name, skipped] : m_skippedComponents)
        m_warnings.add(skipped.firstLine,
                       Tr::tr("components %1 are left out: %2").arg(quotedIcs(name)).arg(skipped.count));
    for (const auto& [name, skipped] : m_skippedProperties)
        m_warnings.add(skipped.firstLine,
                       Tr::tr("properties %1 of calendars are left out: %2").arg(quotedIcs(name)).arg(skipped.count));
    if (m_strayLines.count > 0)
        m_warnings.add(m_strayLines.firstLine,
                       Tr::tr("lines outside of calendars are left out: %1").arg(m_strayLines.count));
}

} // namespace VeskTimeline::Kit
