#include "ics_packed_event_p.h"

#include <QRgba64>

#include <map>

namespace VeskTimeline::Kit {

namespace {

// Of a time; none for one that is not there.
constexpr quint64 isThere = 1;
constexpr quint64 isDate = 2;
constexpr quint64 isUtc = 4;
constexpr quint64 hasZone = 8;
// Of an item.
constexpr quint64 isLocked = 1;
constexpr quint64 hasColor = 2;

QByteArray copyOf(std::string_view bytes)
{
    return {bytes.data(), static_cast<qsizetype>(bytes.size())};
}

} // namespace

void IcsEventPacker::putTime(const IcsTime& time)
{
    m_bytes.put(isThere | (time.isDate ? isDate : 0U) | (time.isUtc ? isUtc : 0U) |
                (time.zone.isEmpty() ? 0U : hasZone));
    m_bytes.putSigned(time.local);
    if (!time.zone.isEmpty())
        m_bytes.putBytes(time.zone);
}

void IcsEventPacker::putTime(const std::optional<IcsTime>& time)
{
    time ? putTime(*time) : m_bytes.put(0);
}

void IcsEventPacker::putDuration(const std::optional<IcsDuration>& duration)
{
    m_bytes.put(duration ? 1 : 0);
    if (!duration)
        return;
    m_bytes.putSigned(duration->days);
    m_bytes.putSigned(duration->msecs);
}

void IcsEventPacker::putNumber(const std::optional<qint64>& number)
{
    m_bytes.put(number ? 1 : 0);
    if (number)
        m_bytes.putSigned(*number);
}

void IcsEventPacker::putTimes(const IcsEvent& event)
{
    m_bytes.putSigned(event.line);
    putTime(event.start);
    putTime(event.end);
    putDuration(event.duration);
    m_bytes.put(event.dates.size());
    for (const IcsRecurrenceDate& date : event.dates) {
        putTime(date.start);
        putTime(date.end);
        putDuration(date.duration);
    }
    putTime(event.recurrenceId);
    // Nothing else asks for it.
    const bool isOfSeries = event.isRecurring() || event.recurrenceId;
    m_bytes.putBytes(isOfSeries ? event.uid : QByteArray());
}

void IcsEventPacker::putItem(const DocumentItem& item)
{
    m_bytes.put((item.isEditable ? 0U : isLocked) | (item.color.isValid() ? hasColor : 0U));
    if (item.color.isValid())
        m_bytes.put(item.color.rgba64());
    m_bytes.putText(item.label);
    m_bytes.putText(item.description);
    m_bytes.put(static_cast<quint64>(item.attributes.size()));
    for (auto attribute = item.attributes.cbegin(); attribute != item.attributes.cend(); ++attribute) {
        m_bytes.putText(attribute.key());
        m_bytes.putText(attribute.value());
    }
}

void IcsEventPacker::putRecurrence(const IcsEvent& event)
{
    m_bytes.put(static_cast<quint64>(event.rules.size()));
    for (const QByteArray& rule : event.rules)
        m_bytes.putBytes(rule);
    m_bytes.put(event.exceptions.size());
    for (const IcsTime& exception : event.exceptions)
        putTime(exception);
}

IcsPackedEvent IcsEventPacker::pack(const IcsEvent& event)
{
    m_bytes.clear();
    putTimes(event);
    putItem(event.item);
    putRecurrence(event);
    putNumber(event.exactStart);
    putNumber(event.exactDuration);
    m_bytes.put(event.isOpenEnded ? 1 : 0);
    m_bytes.putText(event.category);
    m_bytes.put(static_cast<quint64>(event.path.size()));
    for (const QString& name : event.path)
        m_bytes.putText(name);
    return IcsPackedEvent(m_arena.copy(m_bytes.bytes()).data());
}

std::optional<IcsTime> IcsEventUnpacker::optionalTime(PackedBytes& bytes)
{
    const quint64 flags = bytes.number();
    if (flags == 0)
        return std::nullopt;
    IcsTime time;
    time.isDate = (flags & isDate) != 0;
    time.isUtc = (flags & isUtc) != 0;
    time.local = bytes.signedNumber();
    if ((flags & hasZone) == 0)
        return time;
    const std::string_view zone = bytes.bytes();
    if (zone != std::string_view(m_zone.constData(), static_cast<std::size_t>(m_zone.size())))
        m_zone = copyOf(zone);
    time.zone = m_zone;
    return time;
}

IcsTime IcsEventUnpacker::time(PackedBytes& bytes)
{
    return optionalTime(bytes).value_or(IcsTime());
}

std::optional<IcsDuration> IcsEventUnpacker::duration(PackedBytes& bytes)
{
    if (bytes.number() == 0)
        return std::nullopt;
    IcsDuration duration;
    duration.days = bytes.signedNumber();
    duration.msecs = bytes.signedNumber();
    return duration;
}

std::optional<qint64> IcsEventUnpacker::number(PackedBytes& bytes)
{
    return bytes.number() == 0 ? std::nullopt : std::optional(bytes.signedNumber());
}

IcsEventTimes IcsEventUnpacker::times(PackedBytes& bytes)
{
    IcsEventTimes times;
    times.line = static_cast<int>(bytes.signedNumber());
    times.start = time(bytes);
    times.end = optionalTime(bytes);
    times.duration = duration(bytes);
    times.dates.resize(static_cast<std::size_t>(bytes.number()));
    for (IcsRecurrenceDate& date : times.dates) {
        date.start = time(bytes);
        date.end = optionalTime(bytes);
        date.duration = duration(bytes);
    }
    times.recurrenceId = optionalTime(bytes);
    const std::string_view uid = bytes.bytes();
    times.uid = QByteArray::fromRawData(uid.data(), static_cast<qsizetype>(uid.size()));
    return times;
}

DocumentItem IcsEventUnpacker::item(PackedBytes& bytes)
{
    DocumentItem item;
    const quint64 flags = bytes.number();
    item.isEditable = (flags & isLocked) == 0;
    if ((flags & hasColor) != 0)
        item.color = QColor::fromRgba64(QRgba64::fromRgba64(bytes.number()));
    item.label = bytes.text(m_texts);
    item.description = bytes.text(m_texts);
    // They come in the order of their names.
    std::map<QString, QString> attributes;
    for (quint64 left = bytes.number(); left > 0; --left) {
        QString name = bytes.text(m_texts);
        attributes.emplace_hint(attributes.end(), std::move(name), bytes.text(m_texts));
    }
    if (!attributes.empty())
        item.attributes = QMap<QString, QString>(std::move(attributes));
    return item;
}

void IcsEventUnpacker::takeRecurrence(PackedBytes& bytes, IcsEvent& event)
{
    for (quint64 left = bytes.number(); left > 0; --left)
        event.rules.append(copyOf(bytes.bytes()));
    event.exceptions.resize(static_cast<std::size_t>(bytes.number()));
    for (IcsTime& exception : event.exceptions)
        exception = time(bytes);
}

IcsEventTimes IcsEventUnpacker::times(IcsPackedEvent packed)
{
    PackedBytes bytes(packed.data());
    return times(bytes);
}

IcsEvent IcsEventUnpacker::event(IcsPackedEvent packed)
{
    PackedBytes bytes(packed.data());
    IcsEvent event;
    static_cast<IcsEventTimes&>(event) = times(bytes);
    event.item = item(bytes);
    takeRecurrence(bytes, event);
    event.exactStart = number(bytes);
    event.exactDuration = number(bytes);
    event.isOpenEnded = bytes.number() != 0;
    event.category = bytes.text(m_texts);
    for (quint64 left = bytes.number(); left > 0; --left)
        event.path.append(bytes.text(m_texts));
    return event;
}

} // namespace VeskTimeline::Kit
