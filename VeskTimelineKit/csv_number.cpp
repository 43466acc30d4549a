#include "csv_number_p.h"

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

struct NumberParts
{
    bool isNegative = false;
    QStringView whole;
    QStringView fraction;
};

std::optional<NumberParts> partsOf(QStringView text, QChar decimalPoint)
{
    NumberParts parts;
    if (text.startsWith(u'-') || text.startsWith(u'+')) {
        parts.isNegative = text.front() == u'-';
        text = text.mid(1);
    }
    const qsizetype point = text.indexOf(decimalPoint);
    parts.whole = point < 0 ? text : text.left(point);
    parts.fraction = point < 0 ? QStringView() : text.mid(point + 1);
    const bool isNumber = !parts.whole.isEmpty() && (point < 0 || !parts.fraction.isEmpty()) &&
                          std::all_of(parts.whole.begin(), parts.whole.end(), isDigit) &&
                          std::all_of(parts.fraction.begin(), parts.fraction.end(), isDigit);
    return isNumber ? std::optional(parts) : std::nullopt;
}

// How many places the point goes to the right to make milliseconds.
int shiftOf(CsvTimeUnit unit)
{
    switch (unit) {
    case CsvTimeUnit::Seconds:
        return 3;
    case CsvTimeUnit::Milliseconds:
        return 0;
    case CsvTimeUnit::Microseconds:
        return -3;
    case CsvTimeUnit::Nanoseconds:
        break;
    }
    return -6;
}

} // namespace

bool isCsvNumber(QStringView text, QChar decimalPoint)
{
    return partsOf(text, decimalPoint).has_value();
}

std::optional<CsvMsecs> csvMsecs(QStringView text, CsvTimeUnit unit, QChar decimalPoint)
{
    const std::optional<NumberParts> parts = partsOf(text, decimalPoint);
    if (!parts)
        return std::nullopt;
    // More than any time within the years 1 to 9999; one more digit still fits.
    constexpr qint64 tooFar = 100'000'000'000'000'000;
    const int shift = shiftOf(unit);
    const qsizetype wholeSize = std::max<qsizetype>(parts->whole.size() + std::min(shift, 0), 0);
    CsvMsecs result;
    const auto append = [&result](QChar digit) {
        result.isTooFar = result.isTooFar || result.msecs >= tooFar;
        if (!result.isTooFar)
            result.msecs = result.msecs * 10 + (digit.unicode() - u'0');
    };
    for (const QChar digit : parts->whole.left(wholeSize))
        append(digit);
    for (qsizetype i = 0; i < shift; ++i)
        append(i < parts->fraction.size() ? parts->fraction.at(i) : QChar(u'0'));
    const auto isNotZero = [](QChar digit) { return digit != u'0'; };
    const QStringView cutWhole = parts->whole.mid(wholeSize);
    const QStringView cutFraction =
        parts->fraction.mid(std::min<qsizetype>(std::max(shift, 0), parts->fraction.size()));
    result.isCut = std::any_of(cutWhole.begin(), cutWhole.end(), isNotZero) ||
                   std::any_of(cutFraction.begin(), cutFraction.end(), isNotZero);
    if (parts->isNegative)
        result.msecs = -result.msecs - (result.isCut ? 1 : 0);
    return result;
}

} // namespace VeskTimeline::Kit
