#include "csv_moment_p.h"

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

constexpr qint64 msecsPerSecond = 1000;
constexpr qint64 msecsPerMinute = 60 * msecsPerSecond;
constexpr qint64 msecsPerHour = 60 * msecsPerMinute;

constexpr std::array<const char16_t*, 12> monthNames{u"january",   u"february", u"march",    u"april",
                                                     u"may",       u"june",     u"july",     u"august",
                                                     u"september", u"october",  u"november", u"december"};
constexpr std::array<const char16_t*, 7> dayNames{u"monday", u"tuesday",  u"wednesday", u"thursday",
                                                  u"friday", u"saturday", u"sunday"};

// Which of the names the word is, in full or by at least three letters; -1 for none.
template <std::size_t Count>
int indexOf(const std::array<const char16_t*, Count>& names, QStringView word)
{
    constexpr qsizetype leastLetters = 3;
    if (word.size() < leastLetters)
        return -1;
    const auto found = std::find_if(names.begin(), names.end(), [word](const char16_t* name) {
        return QStringView(name).startsWith(word, Qt::CaseInsensitive);
    });
    return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool isLetter(QChar c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

/// Walks through a text. What is not there is not passed.
class Cursor
{
public:
    explicit Cursor(QStringView text) : m_text(text) {}

    bool isAtEnd() const { return m_at == m_text.size(); }
    QChar peek(qsizetype ahead = 0) const { return m_at + ahead < m_text.size() ? m_text.at(m_at + ahead) : QChar(); }
    bool pass(QChar c)
    {
        if (isAtEnd() || peek() != c)
            return false;
        ++m_at;
        return true;
    }
    QChar passOneOf(QStringView characters)
    {
        const QChar c = peek();
        if (isAtEnd() || !characters.contains(c))
            return {};
        ++m_at;
        return c;
    }
    void passBlanks()
    {
        while (pass(u' ')) {
        }
    }
    QStringView digits()
    {
        const qsizetype from = m_at;
        while (!isAtEnd() && isDigit(peek()))
            ++m_at;
        return m_text.mid(from, m_at - from);
    }
    QStringView letters()
    {
        const qsizetype from = m_at;
        while (!isAtEnd() && isLetter(peek()))
            ++m_at;
        return m_text.mid(from, m_at - from);
    }
    qsizetype position() const { return m_at; }
    void setPosition(qsizetype position) { m_at = position; }

private:
    QStringView m_text;
    qsizetype m_at = 0;
};

int numberOf(QStringView digits)
{
    int number = 0;
    for (const QChar c : digits)
        number = number * 10 + (c.unicode() - u'0');
    return number;
}

/// Takes a moment apart. The operations are false for what is not written as they expect it.
class MomentScanner
{
public:
    explicit MomentScanner(QStringView text) : m_cursor(text) {}

    std::optional<CsvMoment> scan()
    {
        passDayName();
        if (looksLikeTimeOfDay())
            return scanTimeOfDay() && m_cursor.isAtEnd() ? std::optional(m_moment) : std::nullopt;
        if (!scanDate())
            return std::nullopt;
        if (m_cursor.isAtEnd())
            return m_moment;
        m_cursor.pass(u',');
        const bool isCompact = m_moment.date->separator.isNull() && m_moment.date->monthName < 0;
        if (m_cursor.passOneOf(u"Tt ").isNull())
            return std::nullopt;
        m_cursor.passBlanks();
        const bool isTime = isCompact && !looksLikeTimeOfDay() ? scanCompactTimeOfDay() : scanTimeOfDay();
        return isTime && scanZone() && m_cursor.isAtEnd() ? std::optional(m_moment) : std::nullopt;
    }

private:
    bool looksLikeTimeOfDay() const
    {
        return isDigit(m_cursor.peek()) && (m_cursor.peek(1) == u':' || m_cursor.peek(2) == u':');
    }

    void passDayName()
    {
        const qsizetype from = m_cursor.position();
        if (indexOf(dayNames, m_cursor.letters()) < 0) {
            m_cursor.setPosition(from);
            return;
        }
        m_cursor.pass(u',');
        m_cursor.passBlanks();
    }

    bool scanDate()
    {
        CsvWrittenDate date;
        if (!scanPart(date, 0))
            return false;
        if (date.digits[0] == 8) {
            const int number = date.numbers[0];
            m_moment.date = CsvWrittenDate{{number / 10000, number / 100 % 100, number % 100}, {4, 2, 2}, -1, {}};
            return true;
        }
        for (int part = 1; part < 3; ++part) {
            const QChar separator = m_cursor.passOneOf(u"-./, ");
            m_cursor.passBlanks();
            if (separator.isNull() || !scanPart(date, part))
                return false;
            if (part == 2 && date.monthName < 0 && separator != date.separator)
                return false;
            date.separator = separator;
        }
        const bool isInWords = date.monthName >= 0;
        if (!isInWords && (date.separator == u' ' || date.separator == u','))
            return false;
        m_moment.date = date;
        return true;
    }

    bool scanPart(CsvWrittenDate& date, int part)
    {
        const auto index = static_cast<std::size_t>(part);
        if (isLetter(m_cursor.peek())) {
            const int month = indexOf(monthNames, m_cursor.letters());
            if (month < 0 || date.monthName >= 0 || part == 2)
                return false;
            date.monthName = part;
            date.numbers[index] = month + 1;
            return true;
        }
        const QStringView digits = m_cursor.digits();
        const bool isLength =
            digits.size() == 1 || digits.size() == 2 || digits.size() == 4 || (digits.size() == 8 && part == 0);
        date.numbers[index] = isLength ? numberOf(digits) : 0;
        date.digits[index] = static_cast<int>(digits.size());
        return isLength;
    }

    // The end of a day may be written 24:00.
    bool setTimeOfDay(int hour, int minute, int second, QStringView fraction)
    {
        const bool isPastMidnight =
            hour == 24 && (minute > 0 || second > 0 ||
                           std::any_of(fraction.begin(), fraction.end(), [](QChar c) { return c != u'0'; }));
        if (hour > 24 || minute > 59 || second > 59 || isPastMidnight)
            return false;
        int msecs = 0;
        for (qsizetype i = 0; i < 3; ++i)
            msecs = msecs * 10 + (i < fraction.size() ? fraction.at(i).unicode() - u'0' : 0);
        const QStringView rest = fraction.mid(std::min<qsizetype>(3, fraction.size()));
        m_moment.isCut = std::any_of(rest.begin(), rest.end(), [](QChar c) { return c != u'0'; });
        m_moment.timeOfDay = hour * msecsPerHour + minute * msecsPerMinute + second * msecsPerSecond + msecs;
        return true;
    }

    // Behind a point or a comma; false when there is one and nothing behind it.
    bool scanFraction(QStringView& fraction)
    {
        if (m_cursor.passOneOf(u".,").isNull())
            return true;
        fraction = m_cursor.digits();
        return !fraction.isEmpty();
    }

    bool scanTimeOfDay()
    {
        const QStringView hourText = m_cursor.digits();
        if (hourText.isEmpty() || hourText.size() > 2 || !m_cursor.pass(u':'))
            return false;
        const QStringView minuteText = m_cursor.digits();
        QStringView secondText;
        QStringView fraction;
        if (m_cursor.pass(u':')) {
            secondText = m_cursor.digits();
            if (secondText.size() != 2 || !scanFraction(fraction))
                return false;
        }
        if (minuteText.size() != 2)
            return false;
        int hour = numberOf(hourText);
        return scanHalfOfDay(hour) && setTimeOfDay(hour, numberOf(minuteText), numberOf(secondText), fraction);
    }

    // am and pm, or no word at all.
    bool scanHalfOfDay(int& hour)
    {
        const qsizetype from = m_cursor.position();
        m_cursor.passBlanks();
        const QChar half = m_cursor.passOneOf(u"aApP").toLower();
        m_cursor.pass(u'.');
        if (half.isNull() || m_cursor.passOneOf(u"mM").isNull()) {
            m_cursor.setPosition(from);
            return true;
        }
        m_cursor.pass(u'.');
        if (hour < 1 || hour > 12)
            return false;
        hour = hour % 12 + (half == u'p' ? 12 : 0);
        m_moment.isTwelveHours = true;
        return true;
    }

    bool scanCompactTimeOfDay()
    {
        const QStringView digits = m_cursor.digits();
        QStringView fraction;
        if ((digits.size() != 4 && digits.size() != 6) || (digits.size() == 6 && !scanFraction(fraction)))
            return false;
        return setTimeOfDay(numberOf(digits.left(2)), numberOf(digits.mid(2, 2)), numberOf(digits.mid(4)), fraction);
    }

    bool scanZone()
    {
        m_cursor.passBlanks();
        if (m_cursor.isAtEnd())
            return true;
        if (isLetter(m_cursor.peek())) {
            const QStringView name = m_cursor.letters();
            m_moment.zoneOffset = 0;
            return name.compare(u"Z", Qt::CaseInsensitive) == 0 || name.compare(u"UTC", Qt::CaseInsensitive) == 0 ||
                   name.compare(u"GMT", Qt::CaseInsensitive) == 0;
        }
        const QChar sign = m_cursor.passOneOf(u"+-\u2212");
        const QStringView digits = m_cursor.digits();
        QStringView minuteText = digits.mid(std::min<qsizetype>(2, digits.size()));
        if (digits.size() == 2 && m_cursor.pass(u':')) {
            minuteText = m_cursor.digits();
            if (minuteText.size() != 2)
                return false;
        }
        const int hour = numberOf(digits.left(2));
        const int minute = numberOf(minuteText);
        if (sign.isNull() || (digits.size() != 2 && digits.size() != 4) || hour > 23 || minute > 59)
            return false;
        const qint64 offset = hour * msecsPerHour + minute * msecsPerMinute;
        m_moment.zoneOffset = sign == u'+' ? offset : -offset;
        return true;
    }

    Cursor m_cursor;
    CsvMoment m_moment;
};

// Of two digits: those of this century that may be planned for, and the seventies to nineties of the last.
int yearOf(int number, int digits)
{
    constexpr int firstOfLastCentury = 70;
    if (digits != 2)
        return digits == 4 ? number : 0;
    return number < firstOfLastCentury ? 2000 + number : 1900 + number;
}

} // namespace

std::optional<CsvMoment> scanCsvMoment(QStringView text)
{
    return MomentScanner(text.trimmed()).scan();
}

QDate csvDate(const CsvWrittenDate& written, CsvDateOrder order)
{
    const auto [first, second, third] = written.numbers;
    const int lastYear = yearOf(third, written.digits[2]);
    if (written.isYearFirst())
        return first > 0 && written.digits[2] <= 2 ? QDate(first, second, third) : QDate();
    if (lastYear == 0)
        return {};
    if (written.monthName == 0)
        return {lastYear, first, second};
    if (written.monthName == 1)
        return {lastYear, second, first};
    switch (order) {
    case CsvDateOrder::DayFirst:
        return {lastYear, second, first};
    case CsvDateOrder::MonthFirst:
        return {lastYear, first, second};
    case CsvDateOrder::YearFirst:
        break;
    }
    return {};
}

} // namespace VeskTimeline::Kit
