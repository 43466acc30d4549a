#pragma once

// Internal to the kit; not installed.

#include "byte_packing_p.h"
#include "ics_event_p.h"

namespace VeskTimeline::Kit {

/// An event as a few bytes: of a large file all have to be kept until the last of its time zones is known, and most
/// values of an event are not there.
class IcsPackedEvent
{
public:
    explicit IcsPackedEvent(const char* data) : m_data(data) {}

    const char* data() const { return m_data; }

private:
    const char* m_data;
};

/// Packs events, and holds them.
class IcsEventPacker
{
public:
    /// @return valid as long as this object
    IcsPackedEvent pack(const IcsEvent& event);

private:
    void putTime(const IcsTime& time);
    void putTime(const std::optional<IcsTime>& time);
    void putDuration(const std::optional<IcsDuration>& duration);
    void putNumber(const std::optional<qint64>& number);
    void putTimes(const IcsEvent& event);
    void putItem(const DocumentItem& item);
    void putRecurrence(const IcsEvent& event);

    BytePacker m_bytes;
    ByteArena m_arena;
};

/// Makes events again of packed ones.
class IcsEventUnpacker
{
public:
    /// The UID refers to the packed event.
    IcsEventTimes times(IcsPackedEvent packed);
    IcsEvent event(IcsPackedEvent packed);

private:
    IcsTime time(PackedBytes& bytes);
    std::optional<IcsTime> optionalTime(PackedBytes& bytes);
    static std::optional<IcsDuration> duration(PackedBytes& bytes);
    static std::optional<qint64> number(PackedBytes& bytes);
    IcsEventTimes times(PackedBytes& bytes);
    DocumentItem item(PackedBytes& bytes);
    void takeRecurrence(PackedBytes& bytes, IcsEvent& event);

    SharedTexts m_texts;
    QByteArray m_zone; ///< of the last time that had one; mostly the next has the same
};

} // namespace VeskTimeline::Kit
