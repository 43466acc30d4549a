#include "ics_attributes_p.h"
#include "ics_event_p.h"
#include "ics_names_p.h"
#include "kit_tr_p.h"

#include <QHash>

namespace VeskTimeline::Kit {

namespace {

/// Takes the lines of one event, each by its name.
class EventParser
{
public:
    EventParser(int line, WarningList& warnings) : m_warnings(warnings) { m_event.line = line; }

    /// The names of properties to pass over; before any is taken.
    void takeGenerated(const IcsLine& line) { m_generated += line.value.split(','); }
    void take(const IcsLine& line);
    std::optional<IcsEvent> finish();

private:
    using Handler = void (EventParser::*)(const IcsLine&);
    static const QHash<QByteArray, Handler>& handlers();

    void takeSummary(const IcsLine& line);
    void takeDescription(const IcsLine& line);
    void takeUid(const IcsLine& line);
    void takeOriginalUid(const IcsLine& line);
    void takeCategories(const IcsLine& line) { m_categories += splitIcsList(line.value); }
    void takeColor(const IcsLine& line);
    void takeExactColor(const IcsLine& line);
    void takeStart(const IcsLine& line);
    void takeEnd(const IcsLine& line);
    void takeDuration(const IcsLine& line);
    void takeRule(const IcsLine& line);
    void takeExclusionRule(const IcsLine& line);
    void takeDates(const IcsLine& line);
    void takeExceptions(const IcsLine& line);
    void takeRecurrenceId(const IcsLine& line);
    void takeTrack(const IcsLine& line);
    void takeText(const IcsLine& line);
    void takeAttribute(const IcsLine& line);
    void takeExactStart(const IcsLine& line);
    void takeExactDuration(const IcsLine& line);
    void takeLocked(const IcsLine&) { m_event.item.isEditable = false; }
    void takeOpenEnded(const IcsLine&) { m_event.isOpenEnded = true; }

    bool isFirst(const IcsLine& line);
    std::optional<IcsTime> time(const IcsLine& line);
    std::optional<IcsRecurrenceDate> date(const IcsLine& line, const QByteArray& value);
    void leaveOut(const IcsLine& line);
    void keepCategories();

    WarningList& m_warnings;
    IcsEvent m_event;
    IcsAttributes m_attributes;
    QHash<QByteArray, int> m_counts; ///< of properties that can be there once, by name
    QByteArrayList m_generated;
    QStringList m_categories;
    bool m_hasStart = false;
    bool m_hasExactColor = false;
    bool m_hasOriginalUid = false;
};

const QHash<QByteArray, EventParser::Handler>& EventParser::handlers()
{
    static const QHash<QByteArray, Handler> handlers{{"SUMMARY", &EventParser::takeSummary},
                                                     {"DESCRIPTION", &EventParser::takeDescription},
                                                     {"UID", &EventParser::takeUid},
                                                     {"CATEGORIES", &EventParser::takeCategories},
                                                     {"COLOR", &EventParser::takeColor},
                                                     {"DTSTART", &EventParser::takeStart},
                                                     {"DTEND", &EventParser::takeEnd},
                                                     {"DURATION", &EventParser::takeDuration},
                                                     {"RRULE", &EventParser::takeRule},
                                                     {"EXRULE", &EventParser::takeExclusionRule},
                                                     {"RDATE", &EventParser::takeDates},
                                                     {"EXDATE", &EventParser::takeExceptions},
                                                     {"RECURRENCE-ID", &EventParser::takeRecurrenceId},
                                                     {IcsNames::uid, &EventParser::takeOriginalUid},
                                                     {IcsNames::color, &EventParser::takeExactColor},
                                                     {IcsNames::track, &EventParser::takeTrack},
                                                     {IcsNames::text, &EventParser::takeText},
                                                     {IcsNames::attribute, &EventParser::takeAttribute},
                                                     {IcsNames::start, &EventParser::takeExactStart},
                                                     {IcsNames::duration, &EventParser::takeExactDuration},
                                                     {IcsNames::locked, &EventParser::takeLocked},
                                                     {IcsNames::openEnded, &EventParser::takeOpenEnded}};
    return handlers;
}

void EventParser::take(const IcsLine& line)
{
    if (m_generated.contains(line.name))
        return;
    if (const Handler handler = handlers().value(line.name))
        (this->*handler)(line);
    else
        m_attributes.addProperty(line);
}

// The other ones of a property that can be there once become attributes.
bool EventParser::isFirst(const IcsLine& line)
{
    const int number = ++m_counts[line.name];
    if (number == 1)
        return true;
    m_attributes.add(QString::fromUtf8(line.name) + u'#' + QString::number(number), icsUnescaped(line.value));
    return false;
}

void EventParser::leaveOut(const IcsLine& line)
{
    m_warnings.add(
        line.number,
        Tr::tr("%1 %2 cannot be read and is left out").arg(QString::fromUtf8(line.name), quotedIcs(line.value)));
}

void EventParser::takeSummary(const IcsLine& line)
{
    if (!isFirst(line))
        return;
    m_event.item.label = icsUnescaped(line.value);
    m_attributes.addParameters(line);
}

void EventParser::takeDescription(const IcsLine& line)
{
    if (!isFirst(line))
        return;
    m_event.item.description = icsUnescaped(line.value);
    m_attributes.addParameters(line);
}

void EventParser::takeUid(const IcsLine& line)
{
    if (!isFirst(line))
        return;
    m_event.uid = line.value;
    if (!m_hasOriginalUid)
        m_attributes.add(QStringLiteral("UID"), icsUnescaped(line.value));
}

void EventParser::takeOriginalUid(const IcsLine& line)
{
    m_hasOriginalUid = true;
    m_attributes.add(QStringLiteral("UID"), icsUnescaped(line.value));
}

void EventParser::takeColor(const IcsLine& line)
{
    if (m_hasExactColor)
        return;
    m_event.item.color = parseIcsColor(line.value);
    if (!m_event.item.color.isValid())
        leaveOut(line);
}

void EventParser::takeExactColor(const IcsLine& line)
{
    const QColor color = parseIcsColor(line.value);
    if (!color.isValid())
        return leaveOut(line);
    m_event.item.color = color;
    m_hasExactColor = true;
}

std::optional<IcsTime> EventParser::time(const IcsLine& line)
{
    const auto parsed = parseIcsTime(line.value, line.parameter("TZID"));
    if (!parsed)
        leaveOut(line);
    return parsed;
}

void EventParser::takeStart(const IcsLine& line)
{
    if (!isFirst(line))
        return;
    const auto parsed = time(line);
    if (!parsed)
        return;
    m_event.start = *parsed;
    m_hasStart = true;
    // All the difference between a day and a span that happens to be as long.
    if (parsed->isDate)
        m_attributes.add(QStringLiteral("DTSTART;VALUE"), QStringLiteral("DATE"));
}

void EventParser::takeEnd(const IcsLine& line)
{
    if (isFirst(line))
        m_event.end = time(line);
}

void EventParser::takeDuration(const IcsLine& line)
{
    if (!isFirst(line))
        return;
    m_event.duration = parseIcsDuration(line.value);
    if (!m_event.duration)
        leaveOut(line);
}

void EventParser::takeRule(const IcsLine& line)
{
    const icalrecurrencetype rule = icalrecurrencetype_from_string(line.value.constData());
    const bool hasUntil = icaltime_is_null_time(rule.until) == 0;
    if (rule.freq == ICAL_NO_RECURRENCE || (hasUntil && !existsIcalTime(rule.until)))
        return leaveOut(line);
    m_event.rules.append(line.value);
}

void EventParser::takeExclusionRule(const IcsLine& line)
{
    m_warnings.add(line.number, Tr::tr("EXRULE is left out; occurrences that it would take away are there"));
}

std::optional<IcsRecurrenceDate> EventParser::date(const IcsLine& line, const QByteArray& value)
{
    const QByteArray zone = line.parameter("TZID");
    const qsizetype slash = value.indexOf('/');
    const auto start = parseIcsTime(slash < 0 ? value : value.first(slash), zone);
    if (!start)
        return std::nullopt;
    IcsRecurrenceDate recurrence{*start, {}, {}};
    if (slash < 0)
        return recurrence;
    const QByteArray rest = value.mid(slash + 1);
    if (rest.contains('P'))
        recurrence.duration = parseIcsDuration(rest);
    else
        recurrence.end = parseIcsTime(rest, zone);
    return recurrence.duration || recurrence.end ? std::optional(recurrence) : std::nullopt;
}

void EventParser::takeDates(const IcsLine& line)
{
    for (const QByteArray& value : line.value.split(',')) {
        if (const auto recurrence = date(line, value))
            m_event.dates.push_back(*recurrence);
        else
            leaveOut({line.number, line.name, {}, value});
    }
}

void EventParser::takeExceptions(const IcsLine& line)
{
    for (const QByteArray& value : line.value.split(',')) {
        if (const auto exception = parseIcsTime(value, line.parameter("TZID")))
            m_event.exceptions.push_back(*exception);
        else
            leaveOut({line.number, line.name, {}, value});
    }
}

void EventParser::takeRecurrenceId(const IcsLine& line)
{
    if (!isFirst(line))
        return;
    m_event.recurrenceId = time(line);
    if (line.parameter("RANGE").toUpper() == "THISANDFUTURE")
        m_warnings.add(line.number, Tr::tr("the change is taken for its own occurrence only, not for those after it"));
}

void EventParser::takeTrack(const IcsLine& line)
{
    const auto path = icsJsonList(line.value);
    if (path && !path->isEmpty())
        m_event.path = *path;
    else
        leaveOut(line);
}

void EventParser::takeText(const IcsLine& line)
{
    const auto entries = icsJsonList(line.value);
    if (!entries || entries->size() != 2)
        return leaveOut(line);
    (entries->at(0) == QStringLiteral("SUMMARY") ? m_event.item.label : m_event.item.description) = entries->at(1);
}

void EventParser::takeAttribute(const IcsLine& line)
{
    const auto entries = icsJsonList(line.value);
    if (entries && entries->size() == 2)
        m_attributes.add(entries->at(0), entries->at(1));
    else
        leaveOut(line);
}

void EventParser::takeExactStart(const IcsLine& line)
{
    bool isNumber = false;
    const qint64 value = line.value.toLongLong(&isNumber);
    isNumber ? static_cast<void>(m_event.exactStart = value) : leaveOut(line);
}

void EventParser::takeExactDuration(const IcsLine& line)
{
    bool isNumber = false;
    const qint64 value = line.value.toLongLong(&isNumber);
    isNumber ? static_cast<void>(m_event.exactDuration = value) : leaveOut(line);
}

// The first category is told by the track.
void EventParser::keepCategories()
{
    const bool isTold = m_event.path.isEmpty() ? m_categories.size() < 2 : m_categories.isEmpty();
    if (!isTold)
        m_attributes.add(QStringLiteral("CATEGORIES"), QString::fromUtf8(joinIcsList(m_categories)));
    if (!m_categories.isEmpty())
        m_event.category = m_categories.first();
}

std::optional<IcsEvent> EventParser::finish()
{
    if (!m_hasStart) {
        m_warnings.add(m_event.line, Tr::tr("the event %1 has no start that can be read and is left out")
                                         .arg(quotedIcs(m_event.item.label.toUtf8())));
        return std::nullopt;
    }
    keepCategories();
    if (m_event.recurrenceId && m_event.isRecurring())
        m_warnings.add(m_event.line, Tr::tr("the event replaces one occurrence; its own recurrence is left out"));
    m_event.item.attributes = m_attributes.all();
    return std::move(m_event);
}

} // namespace

QString quotedIcs(const QByteArray& text)
{
    constexpr qsizetype longest = 40;
    QString shown = QString::fromUtf8(text.first(std::min<qsizetype>(text.size(), 4 * longest))).simplified();
    if (shown.size() > longest)
        shown = shown.first(longest) + u'…';
    return u'"' + shown + u'"';
}

QColor parseIcsColor(const QByteArray& value)
{
    const QByteArray text = value.trimmed();
    if (text.size() == 9 && text.startsWith('#'))
        return QColor::fromString(QString::fromLatin1('#' + text.right(2) + text.mid(1, 6)));
    return QColor::fromString(QString::fromUtf8(text));
}

std::optional<IcsEvent> parseIcsEvent(const std::vector<IcsLine>& lines, int number, WarningList& warnings)
{
    EventParser parser(number, warnings);
    for (const IcsLine& line : lines) {
        if (line.name == IcsNames::generated)
            parser.takeGenerated(line);
    }
    for (const IcsLine& line : lines) {
        if (line.name != IcsNames::generated)
            parser.take(line);
    }
    return parser.finish();
}

} // namespace VeskTimeline::Kit
