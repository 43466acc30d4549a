#pragma once

// Internal to the kit; not installed.

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace VeskTimeline::Kit {

/// A parameter of a property, as it is written.
struct IcsParameter
{
    QByteArray name;  ///< upper case
    QByteArray value; ///< without the quotes when they enclose all of it
};

/// One line of an iCalendar stream, unfolded and taken apart.
struct IcsLine
{
    int number = 0;  ///< where it begins, counted from 1
    QByteArray name; ///< upper case
    std::vector<IcsParameter> parameters;
    QByteArray value; ///< as written, escapes included

    /// Empty when there is none of that name.
    QByteArray parameter(const char* parameterName) const;
};

/// Takes an unfolded line apart; nothing when it is no property.
std::optional<IcsLine> parseIcsLine(const QByteArray& text);

/// NAME;PARAMETER=value:value, without folding.
QByteArray icsLineText(const IcsLine& line);

/// The text that TEXT values escape. A backslash that escapes nothing stands for itself.
QString icsUnescaped(const QByteArray& value);
/// Line ends of any kind become "\n"; control characters other than tabs, which no value can have, are dropped.
QByteArray icsEscaped(const QString& text);

/// The entries of a comma-separated list of TEXT values, with blanks around them and empty ones dropped.
QStringList splitIcsList(const QByteArray& value);
QByteArray joinIcsList(const QStringList& entries);

/// The line with CR LF, folded so that no part is longer than 75 bytes and no character is torn apart.
QByteArray foldedIcsLine(const QByteArray& line);

} // namespace VeskTimeline::Kit
