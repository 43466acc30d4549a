#include "csv_moment_p.h"

namespace VeskTimeline::Kit {

namespace {

constexpr qint64 msecsPerSecond = 1000;
constexpr qint64 msecsPerMinute = 60 * msecsPerSecond;
constexpr qint64 msecsPerHour = 60 * msecsPerMinute;
constexpr qint64 msecsPerDay = 24 * msecsPerHour;

/// Reads numbers of two digits at fixed places, and remembers when one was none.
class Places
{
public:
    explicit Places(QStringView text) : m_text(text) {}

    int number(qsizetype at)
    {
        const int tens = digit(at);
        return 10 * tens + digit(at + 1);
    }
    bool areGood() const { return m_areGood; }

private:
    int digit(qsizetype at)
    {
        const int value = m_text.at(at).unicode() - u'0';
        m_areGood = m_areGood && value >= 0 && value <= 9;
        return value;
    }

    QStringView m_text;
    bool m_areGood = true;
};

// Days since 1970-01-01 in the Gregorian calendar, which is counted from March on, so that a leap day ends a year.
qint64 daysOf(int year, int month, int day)
{
    constexpr qint64 daysOfEra = 146097; // 400 years
    constexpr qint64 daysToEpoch = 719468;
    const qint64 shifted = month > 2 ? year : year - 1;
    const qint64 era = shifted / 400;
    const qint64 yearOfEra = shifted - era * 400;
    const qint64 dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    return era * daysOfEra + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - daysToEpoch;
}

// Nothing for a zone in any other form.
std::optional<qint64> offsetOf(QStringView text, qsizetype at, Places& places)
{
    if (text.size() == at + 1 && text.at(at) == u'Z')
        return 0;
    const bool isOffset =
        text.size() == at + 6 && text.at(at + 3) == u':' && (text.at(at) == u'+' || text.at(at) == u'-');
    if (!isOffset)
        return std::nullopt;
    const int hour = places.number(at + 1);
    const int minute = places.number(at + 4);
    if (hour > 23 || minute > 59)
        return std::nullopt;
    const qint64 offset = hour * msecsPerHour + minute * msecsPerMinute;
    return text.at(at) == u'+' ? offset : -offset;
}

} // namespace

std::optional<CsvIsoTime> scanCsvIsoTime(QStringView text)
{
    constexpr qsizetype size = 19;
    const bool hasForm = text.size() >= size && text.at(4) == u'-' && text.at(7) == u'-' &&
                         (text.at(10) == u'T' || text.at(10) == u' ') && text.at(13) == u':' && text.at(16) == u':';
    if (!hasForm)
        return std::nullopt;
    Places places(text);
    const int year = 100 * places.number(0) + places.number(2);
    const int month = places.number(5);
    const int day = places.number(8);
    const int hour = places.number(11);
    const int minute = places.number(14);
    const int second = places.number(17);
    CsvIsoTime time;
    if (text.size() > size) {
        time.zoneOffset = offsetOf(text, size, places);
        if (!time.zoneOffset)
            return std::nullopt;
    }
    // Days that only some months have are left to those who look closer.
    if (!places.areGood() || year < 1 || month < 1 || month > 12 || day < 1 || day > 28 || hour > 23 || minute > 59 ||
        second > 59)
        return std::nullopt;
    time.local = daysOf(year, month, day) * msecsPerDay + hour * msecsPerHour + minute * msecsPerMinute +
                 second * msecsPerSecond;
    return time;
}

} // namespace VeskTimeline::Kit
