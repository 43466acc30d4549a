#include "ics_attributes_p.h"
#include "ics_names_p.h"
#include "ics_time_p.h"
#include "kit_tr_p.h"
#include "time_limits_p.h"
#include "write_file_p.h"

#include <VeskTimelineKit/ics_writer.h>

#include <QCryptographicHash>
#include <QSet>

#include <algorithm>
#include <limits>

namespace VeskTimeline::Kit {

namespace {

constexpr qint64 second = 1'000;

QString dateMark()
{
    return QStringLiteral("DTSTART;VALUE");
}

bool survives(const QString& text)
{
    return icsUnescaped(icsEscaped(text)) == text;
}

bool isPlain(const QString& text)
{
    return std::none_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x20 || c.unicode() == 0x7f; });
}

qint64 wholeSecond(qint64 time)
{
    const qint64 rest = time % second;
    return time - (rest < 0 ? rest + second : rest);
}

QByteArray colorText(const QColor& color)
{
    const QByteArray opaque = color.name().toLatin1();
    return color.alpha() == 255 ? opaque : opaque + QByteArray::number(color.alpha(), 16).rightJustified(2, '0');
}

// COLOR knows the names of style sheets and no others.
QByteArray nearestColorName(const QColor& color)
{
    QString nearest;
    int smallest = std::numeric_limits<int>::max();
    const QStringList names = QColor::colorNames();
    for (const QString& name : names) {
        const QColor named = QColor::fromString(name);
        const int red = named.red() - color.red();
        const int green = named.green() - color.green();
        const int blue = named.blue() - color.blue();
        const int distance = red * red + green * green + blue * blue;
        if (named.alpha() == 255 && distance < smallest) {
            smallest = distance;
            nearest = name;
        }
    }
    return nearest.toLatin1();
}

/// Gives each event a UID that no other one of the file has.
class UidMaker
{
public:
    explicit UidMaker(const Document& document)
    {
        for (const DocumentTrack& track : document.tracks()) {
            for (const DocumentItem& item : track.items)
                m_known.insert(item.attributes.value(QStringLiteral("UID")));
        }
    }

    /// False when an event has it already.
    bool take(const QString& uid)
    {
        const bool isNew = !m_taken.contains(uid);
        m_taken.insert(uid);
        return isNew;
    }

    QString make(const QString& stem)
    {
        for (;;) {
            const QString uid = QStringLiteral("%1-%2").arg(stem).arg(++m_counts[stem]);
            if (!m_known.contains(uid) && take(uid))
                return uid;
        }
    }

private:
    QSet<QString> m_known;
    QSet<QString> m_taken;
    QHash<QString, int> m_counts;
};

/// The lines of one event.
class EventWriter
{
public:
    EventWriter(const DocumentItem& item, const QStringList& path, UidMaker& uids, const QByteArray& stamp)
        : m_item(item), m_path(path), m_attributes(item.attributes), m_uids(uids), m_stamp(stamp)
    {
    }

    QByteArray text()
    {
        addUid();
        addStamp();
        addTimes();
        addText("SUMMARY", m_item.label);
        addText("DESCRIPTION", m_item.description);
        addTrack();
        addColor();
        if (!m_item.isEditable)
            add(IcsNames::locked, "TRUE");
        addAttributes();
        if (!m_generated.isEmpty())
            add(IcsNames::generated, m_generated.join(','));
        return "BEGIN:VEVENT\r\n" + m_text + "END:VEVENT\r\n";
    }

private:
    void addLine(const QByteArray& line) { m_text += foldedIcsLine(line); }
    void add(const QByteArray& name, const QByteArray& value) { addLine(name + ':' + value); }
    void addUid();
    void addStamp();
    void addTimes();
    void addExactTimes();
    bool isAllDay() const;
    void addText(const QByteArray& name, const QString& text);
    std::vector<IcsParameter> takeParameters(const QByteArray& name);
    void addTrack();
    void addColor();
    void addAttributes();

    const DocumentItem& m_item;
    const QStringList& m_path;
    QMap<QString, QString> m_attributes; ///< those that are not written yet
    UidMaker& m_uids;
    const QByteArray& m_stamp;
    QByteArrayList m_generated;
    QByteArray m_text;
};

void EventWriter::addUid()
{
    const QString name = QStringLiteral("UID");
    const auto found = m_attributes.constFind(name);
    if (found == m_attributes.cend()) {
        const QByteArray what =
            (m_path + QStringList{m_item.label, QString::number(m_item.start)}).join(u'\n').toUtf8();
        const QByteArray hash = QCryptographicHash::hash(what, QCryptographicHash::Sha1).toHex();
        add("UID", icsEscaped(m_uids.make(QString::fromLatin1(hash) + QStringLiteral("@vesktimeline"))));
        m_generated.append("UID");
        return;
    }
    const QString& uid = *found;
    if (!uid.isEmpty() && survives(uid) && m_uids.take(uid)) {
        add("UID", icsEscaped(uid));
        m_attributes.remove(name);
        return;
    }
    // Occurrences of one series have the UID in common, and another program would take them for one event.
    add("UID", icsEscaped(m_uids.make(uid)));
    if (survives(uid)) {
        add(IcsNames::uid, icsEscaped(uid));
        m_attributes.remove(name);
    }
}

void EventWriter::addStamp()
{
    const QString name = QStringLiteral("DTSTAMP");
    const QByteArray own = m_attributes.value(name).toUtf8();
    const auto time = parseIcsTime(own, {});
    if (time && time->isUtc && icsTimeText(time->local) == own) {
        add("DTSTAMP", own);
        m_attributes.remove(name);
        return;
    }
    add("DTSTAMP", m_stamp);
    m_generated.append("DTSTAMP");
}

bool EventWriter::isAllDay() const
{
    return m_attributes.value(dateMark()) == QStringLiteral("DATE") && m_item.start % msecsPerDay == 0 &&
           m_item.duration > 0 && m_item.duration % msecsPerDay == 0;
}

void EventWriter::addTimes()
{
    if (isAllDay()) {
        add("DTSTART;VALUE=DATE", icsDateText(m_item.start));
        add("DTEND;VALUE=DATE", icsDateText(m_item.end()));
        m_attributes.remove(dateMark());
        return;
    }
    add("DTSTART", icsTimeText(m_item.start));
    // An end must be later than the start; without one the event has no length.
    if (wholeSecond(m_item.end()) > wholeSecond(m_item.start))
        add("DTEND", icsTimeText(m_item.end()));
    if (m_item.duration == DocumentItem::openEnded)
        add(IcsNames::openEnded, "TRUE");
    addExactTimes();
}

void EventWriter::addExactTimes()
{
    if (wholeSecond(m_item.start) != m_item.start)
        add(IcsNames::start, QByteArray::number(m_item.start));
    const qint64 written = wholeSecond(m_item.end()) - wholeSecond(m_item.start);
    if (m_item.duration >= 0 && m_item.duration != written)
        add(IcsNames::duration, QByteArray::number(m_item.duration));
}

// The parameters that the attributes have for a property, as far as they can be written.
std::vector<IcsParameter> EventWriter::takeParameters(const QByteArray& name)
{
    std::vector<IcsParameter> parameters;
    const QString prefix = QString::fromUtf8(name) + u';';
    for (auto it = m_attributes.lowerBound(prefix); it != m_attributes.end() && it.key().startsWith(prefix);) {
        const IcsParameter parameter{it.key().mid(prefix.size()).toUtf8(), it.value().toUtf8()};
        const QByteArray text = icsLineText({0, name, {parameter}, {}});
        const auto read = parseIcsLine(text);
        const bool isReadBack = read && read->value.isEmpty() && read->parameters.size() == 1 &&
                                read->parameters.front().name == parameter.name &&
                                read->parameters.front().value == parameter.value && isPlain(it.value());
        if (isReadBack)
            parameters.push_back(parameter);
        it = isReadBack ? m_attributes.erase(it) : std::next(it);
    }
    return parameters;
}

void EventWriter::addText(const QByteArray& name, const QString& text)
{
    const std::vector<IcsParameter> parameters = takeParameters(name);
    if (!text.isEmpty() || !parameters.empty())
        addLine(icsLineText({0, name, parameters, icsEscaped(text)}));
    if (!survives(text))
        add(IcsNames::text, icsJsonListValue({QString::fromUtf8(name), text}));
}

void EventWriter::addTrack()
{
    const QString name = QStringLiteral("CATEGORIES");
    const QByteArray own = m_attributes.value(name).toUtf8();
    QStringList categories = splitIcsList(own);
    const bool isOwn = !categories.isEmpty() && joinIcsList(categories) == own;
    if (!isOwn)
        categories = m_path.mid(1);
    // Where the category alone brings a reader to the track.
    const bool isTold =
        isOwn ? m_path.size() == 2 && categories.size() > 1 && categories.first() == m_path.at(1)
              : m_path.size() == 1 || (m_path.size() == 2 && splitIcsList(joinIcsList(categories)) == categories);
    if (!categories.isEmpty())
        add("CATEGORIES", joinIcsList(categories));
    if (!isTold)
        add(IcsNames::track, icsJsonListValue(m_path));
    if (isOwn)
        m_attributes.remove(name);
    else if (!isTold)
        m_generated.append(name.toLatin1());
}

void EventWriter::addColor()
{
    if (!m_item.color.isValid())
        return;
    const QByteArray named = nearestColorName(m_item.color);
    add("COLOR", named);
    if (QColor::fromString(QString::fromLatin1(named)) != m_item.color)
        add(IcsNames::color, colorText(m_item.color));
}

void EventWriter::addAttributes()
{
    static const QByteArrayList reserved{"SUMMARY", "DESCRIPTION",   "UID",      "DTSTAMP", "CATEGORIES", "COLOR",
                                         "DTSTART", "DTEND",         "DURATION", "RRULE",   "RDATE",      "EXDATE",
                                         "EXRULE",  "RECURRENCE-ID", "BEGIN",    "END"};
    const QByteArrayList lines = icsAttributeLines(m_attributes, reserved);
    for (const QByteArray& line : lines)
        addLine(line);
}

bool isTopOf(const QStringList& path, const QString& name)
{
    return path.first() == name;
}

QByteArray calendarHead()
{
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//VeskTimeline//VeskTimelineKit//EN\r\n";
}

/// The calendar of a track of the top level.
class CalendarWriter
{
public:
    CalendarWriter(const Document& document, const DocumentTrack& top, UidMaker& uids, const QByteArray& stamp,
                   WriteProgress& progress)
        : m_document(document), m_top(top), m_uids(uids), m_stamp(stamp), m_progress(progress)
    {
    }

    /// @throws QString the reason why it cannot be written
    QByteArray text()
    {
        const QString& name = m_top.path.first();
        QByteArray text = calendarHead();
        if (!name.isEmpty())
            text += foldedIcsLine("X-WR-CALNAME:" + icsEscaped(name));
        if (m_top.color.isValid())
            text += foldedIcsLine("COLOR:" + nearestColorName(m_top.color));
        for (const DocumentTrack& track : m_document.tracks()) {
            if (isTopOf(track.path, name))
                text += trackLine(track);
        }
        for (const DocumentTrack& track : m_document.tracks()) {
            if (isTopOf(track.path, name))
                text += events(track);
        }
        return text + "END:VCALENDAR\r\n";
    }

private:
    static QByteArray trackLine(const DocumentTrack& track)
    {
        IcsLine line{0, IcsNames::track, {}, icsJsonListValue(track.path)};
        if (track.color.isValid())
            line.parameters.push_back({IcsNames::color, colorText(track.color)});
        return foldedIcsLine(icsLineText(line));
    }

    QByteArray events(const DocumentTrack& track)
    {
        QByteArray text;
        for (const DocumentItem& item : track.items) {
            if (!isWithinTimeLimits(item.start) || !isWithinTimeLimits(item.end()))
                throw Tr::tr("the item \"%1\" is outside the years 1 to 9999").arg(item.label.simplified());
            text += EventWriter(item, track.path, m_uids, m_stamp).text();
            m_progress.itemIsDone();
        }
        return text;
    }

    const Document& m_document;
    const DocumentTrack& m_top;
    UidMaker& m_uids;
    const QByteArray& m_stamp;
    WriteProgress& m_progress;
};

// Throws QString the reason why it cannot be written.
QByteArray calendarsText(const Document& document, const QDateTime& stamp, const WriteOptions& options)
{
    if (document.tracks().empty())
        return calendarHead() + IcsNames::track + ":[]\r\nEND:VCALENDAR\r\n";
    WriteProgress progress(options, document);
    UidMaker uids(document);
    const QByteArray stampText = icsTimeText(stamp.toMSecsSinceEpoch());
    QByteArray text;
    for (const DocumentTrack& track : document.tracks()) {
        if (track.path.size() == 1)
            text += CalendarWriter(document, track, uids, stampText, progress).text();
    }
    return text;
}

} // namespace

std::variant<QByteArray, QString> icsText(const Document& document, const QDateTime& stamp)
{
    try {
        return calendarsText(document, stamp, {});
    } catch (const QString& reason) {
        return reason;
    }
}

WriteResult writeIcs(const Document& document, const QString& fileName, const WriteOptions& options)
{
    return writeFile(fileName, [&](QIODevice& device) {
        device.write(calendarsText(document, QDateTime::currentDateTimeUtc(), options));
        return QStringList();
    });
}

} // namespace VeskTimeline::Kit
