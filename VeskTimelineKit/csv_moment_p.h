#pragma once

// Internal to the kit; not installed.

#include <QDate>
#include <QString>
#include <QStringView>

#include <array>
#include <optional>

namespace VeskTimeline::Kit {

/// In which order a date of numbers is written. YearFirst is also read where nothing can be mistaken: a year of four
/// digits in front, a month by its English name.
enum class CsvDateOrder { YearFirst, DayFirst, MonthFirst };

/// A date as it is written, before anything is made of its three parts.
struct CsvWrittenDate
{
    std::array<int, 3> numbers{};
    std::array<int, 3> digits{};
    int monthName = -1; ///< which of the parts is the month by its name; -1: none
    QChar separator;    ///< null when there is none: 20150302
    bool isYearFirst() const { return digits[0] == 4; }
    /// Whether it says itself what is what.
    bool isClear() const { return isYearFirst() || monthName >= 0; }
};

/// A date, a time of day, or both, as they are written.
struct CsvMoment
{
    std::optional<CsvWrittenDate> date;
    std::optional<qint64> timeOfDay;  ///< milliseconds since midnight
    std::optional<qint64> zoneOffset; ///< of local time from UTC in milliseconds; nothing when no zone is written
    bool isCut = false;               ///< there were fractions of a millisecond
    bool isTwelveHours = false;       ///< with am or pm
};

/// Takes a text apart: "2015-03-02T08:15:00.5-10:00", "02.03.2015 8:15", "Mar 2, 2015 8:15 pm", "8:15". Nothing for
/// what is neither. Whether the date exists is not looked at.
std::optional<CsvMoment> scanCsvMoment(QStringView text);

/// A time in the form that nearly all files have.
struct CsvIsoTime
{
    qint64 local = 0;                 ///< milliseconds since 1970-01-01T00:00 local time
    std::optional<qint64> zoneOffset; ///< as of CsvMoment
};

/// The same as with scanCsvMoment() and csvDate(), in a tenth of the time, of texts like "2015-03-02T08:15:00",
/// "2015-03-02 08:15:00Z" and "2015-03-02T08:15:00-10:00". Nothing for any other, which may still be a time.
std::optional<CsvIsoTime> scanCsvIsoTime(QStringView text);

/// The date that is meant; not valid for one that does not exist or is written in another order.
QDate csvDate(const CsvWrittenDate& written, CsvDateOrder order);

} // namespace VeskTimeline::Kit
