#include "ics_line_p.h"

#include <algorithm>
#include <cstring>

namespace VeskTimeline::Kit {

namespace {

bool isNameCharacter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
}

qsizetype endOfName(const QByteArray& text, qsizetype from)
{
    return std::find_if_not(text.begin() + from, text.end(), isNameCharacter) - text.begin();
}

// The first of the delimiters outside quotes; the size when there is none.
qsizetype endOfPart(const QByteArray& text, qsizetype from, const char* delimiters)
{
    bool isQuoted = false;
    for (qsizetype i = from; i < text.size(); ++i) {
        if (text.at(i) == '"')
            isQuoted = !isQuoted;
        else if (!isQuoted && std::strchr(delimiters, text.at(i)))
            return i;
    }
    return text.size();
}

QByteArray withoutQuotes(const QByteArray& value)
{
    if (value.size() >= 2 && value.startsWith('"') && value.indexOf('"', 1) == value.size() - 1)
        return value.mid(1, value.size() - 2);
    return value;
}

bool needsQuotes(const QByteArray& value)
{
    return !value.contains('"') &&
           std::any_of(value.begin(), value.end(), [](char c) { return c == ':' || c == ';' || c == ','; });
}

bool isControl(QChar c)
{
    return (c.unicode() < 0x20 && c != u'\t') || c.unicode() == 0x7f;
}

} // namespace

QByteArray IcsLine::parameter(const char* parameterName) const
{
    const auto found =
        std::find_if(parameters.begin(), parameters.end(),
                     [parameterName](const IcsParameter& parameter) { return parameter.name == parameterName; });
    return found == parameters.end() ? QByteArray() : found->value;
}

std::optional<IcsLine> parseIcsLine(const QByteArray& text)
{
    IcsLine line;
    qsizetype position = endOfName(text, 0);
    line.name = text.first(position).toUpper();
    if (line.name.isEmpty())
        return std::nullopt;
    while (position < text.size() && text.at(position) == ';') {
        const qsizetype nameEnd = endOfName(text, position + 1);
        if (nameEnd == position + 1 || nameEnd == text.size() || text.at(nameEnd) != '=')
            return std::nullopt;
        const qsizetype end = endOfPart(text, nameEnd + 1, ";:");
        line.parameters.push_back({text.mid(position + 1, nameEnd - position - 1).toUpper(),
                                   withoutQuotes(text.mid(nameEnd + 1, end - nameEnd - 1))});
        position = end;
    }
    if (position >= text.size() || text.at(position) != ':')
        return std::nullopt;
    line.value = text.mid(position + 1);
    return line;
}

QByteArray icsLineText(const IcsLine& line)
{
    QByteArray text = line.name;
    for (const IcsParameter& parameter : line.parameters) {
        const bool isQuoted = needsQuotes(parameter.value);
        text += ';' + parameter.name + '=';
        text += isQuoted ? '"' + parameter.value + '"' : parameter.value;
    }
    return text + ':' + line.value;
}

QString icsUnescaped(const QByteArray& value)
{
    if (!value.contains('\\'))
        return QString::fromUtf8(value);
    QByteArray text;
    text.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        const char next = value.at(i) == '\\' && i + 1 < value.size() ? value.at(i + 1) : '\0';
        const bool isEscape = next != '\0' && std::strchr("\\;,:\"nN", next);
        if (isEscape)
            ++i;
        text += !isEscape ? value.at(i) : (next == 'n' || next == 'N' ? '\n' : next);
    }
    return QString::fromUtf8(text);
}

QByteArray icsEscaped(const QString& text)
{
    QString escaped;
    escaped.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const bool isBeforeLineFeed = i + 1 < text.size() && text.at(i + 1) == u'\n';
        if (c == u'\n' || (c == u'\r' && !isBeforeLineFeed))
            escaped += QStringLiteral("\\n");
        else if (c == u'\\' || c == u';' || c == u',')
            escaped += QStringLiteral("\\") + c;
        else if (!isControl(c))
            escaped += c;
    }
    return escaped.toUtf8();
}

QStringList splitIcsList(const QByteArray& value)
{
    QStringList entries;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= value.size(); ++i) {
        if (i < value.size() && value.at(i) == '\\') {
            ++i;
        } else if (i == value.size() || value.at(i) == ',') {
            const QString entry = icsUnescaped(value.mid(start, i - start)).trimmed();
            if (!entry.isEmpty())
                entries.append(entry);
            start = i + 1;
        }
    }
    // A backslash at the very end has let the loop pass the end.
    if (start < value.size() && value.endsWith('\\'))
        entries.append(icsUnescaped(value.mid(start)).trimmed());
    return entries;
}

QByteArray joinIcsList(const QStringList& entries)
{
    QByteArrayList parts;
    for (const QString& entry : entries)
        parts.append(icsEscaped(entry));
    return parts.join(',');
}

QByteArray foldedIcsLine(const QByteArray& line)
{
    constexpr qsizetype longestPart = 75;
    QByteArray folded;
    folded.reserve(line.size() + line.size() / longestPart * 3 + 2);
    qsizetype start = 0;
    qsizetype room = longestPart;
    while (line.size() - start > room) {
        qsizetype end = start + room;
        while (end > start + 1 && (static_cast<unsigned char>(line.at(end)) & 0xc0U) == 0x80U)
            --end;
        folded += line.mid(start, end - start) + "\r\n ";
        start = end;
        room = longestPart - 1;
    }
    return folded + line.mid(start) + "\r\n";
}

} // namespace VeskTimeline::Kit
