#include "csv_command_line.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>
#include <optional>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

struct Tr
{
    Q_DECLARE_TR_FUNCTIONS(CommandLine)
};

// Thrown for a value that is wrong.
using Fault = QString;

/// Takes "start=COLUMN,track=COLUMN+COLUMN" apart. A backslash takes the meaning from the character behind it.
class MapParser
{
public:
    explicit MapParser(const QString& text) : m_text(text) {}

    QMap<CsvField, QStringList> parse()
    {
        while (m_at <= m_text.size()) {
            const CsvField field = parseField();
            if (m_columns.contains(field))
                throw Fault(Tr::tr("--map names \"%1\" more than once").arg(csvFieldName(field)));
            QStringList& columns = m_columns[field];
            do
                columns.append(parseColumn());
            while (passed(u'+'));
            ++m_at; // the comma, or past the end
        }
        return m_columns;
    }

private:
    CsvField parseField()
    {
        const QString name = next().trimmed();
        if (!passed(u'='))
            throw Fault(Tr::tr("--map needs FIELD=COLUMN, not \"%1\"").arg(name));
        const auto& fields = csvFields();
        const auto field = std::find_if(fields.begin(), fields.end(), [&name](CsvField candidate) {
            return name.compare(csvFieldName(candidate), Qt::CaseInsensitive) == 0;
        });
        if (field != fields.end())
            return *field;
        QStringList names;
        for (const CsvField candidate : fields)
            names.append(csvFieldName(candidate));
        throw Fault(Tr::tr("--map knows no \"%1\"; there are %2").arg(name, names.join(QStringLiteral(", "))));
    }

    QString parseColumn()
    {
        const QString column = next();
        if (column.isEmpty())
            throw Fault(Tr::tr("--map needs a column behind each \"=\" and \"+\""));
        if (m_at < m_text.size() && m_text.at(m_at) == u'=')
            throw Fault(Tr::tr("--map has a \"=\" too many behind \"%1\"").arg(column));
        return column;
    }

    bool passed(QChar c)
    {
        if (m_at >= m_text.size() || m_text.at(m_at) != c)
            return false;
        ++m_at;
        return true;
    }

    // Up to the next character that has a meaning.
    QString next()
    {
        QString text;
        for (; m_at < m_text.size(); ++m_at) {
            if (m_text.at(m_at) == u'\\' && m_at + 1 < m_text.size())
                ++m_at;
            else if (QStringView(u",+=").contains(m_text.at(m_at)))
                break;
            text += m_text.at(m_at);
        }
        return text;
    }

    QString m_text;
    qsizetype m_at = 0;
    QMap<CsvField, QStringList> m_columns;
};

QChar delimiterOf(const QString& text)
{
    if (text.compare(QStringView(u"tab"), Qt::CaseInsensitive) == 0 || text == QStringLiteral("\\t"))
        return u'\t';
    if (text.size() != 1 || !isCsvDelimiter(text.front()))
        throw Fault(Tr::tr("fields cannot be separated by \"%1\": a delimiter is one character that is no letter, "
                           "digit or quote, or the word tab")
                        .arg(text));
    return text.front();
}

QChar decimalOf(const QString& text)
{
    if (text != QStringLiteral(".") && text != QStringLiteral(","))
        throw Fault(Tr::tr("the decimal point is . or , and not \"%1\"").arg(text));
    return text.front();
}

CsvEncoding encodingOf(const QString& text)
{
    static const QMap<QString, CsvEncoding> encodings{{QStringLiteral("utf8"), CsvEncoding::Utf8},
                                                      {QStringLiteral("utf16"), CsvEncoding::Utf16},
                                                      {QStringLiteral("windows1252"), CsvEncoding::Windows1252},
                                                      {QStringLiteral("cp1252"), CsvEncoding::Windows1252},
                                                      {QStringLiteral("latin1"), CsvEncoding::Latin1},
                                                      {QStringLiteral("iso88591"), CsvEncoding::Latin1}};
    const QString name = QString(text).toLower().remove(u'-').remove(u'_').remove(u' ');
    const auto found = encodings.constFind(name);
    if (found == encodings.cend())
        throw Fault(Tr::tr("there is no encoding \"%1\"; there are UTF-8, UTF-16, Windows-1252 and Latin-1").arg(text));
    return *found;
}

CsvTimeUnit timeUnitOf(const QString& text)
{
    if (text == QStringLiteral("s"))
        return CsvTimeUnit::Seconds;
    if (text == QStringLiteral("ms"))
        return CsvTimeUnit::Milliseconds;
    if (text == QStringLiteral("us"))
        return CsvTimeUnit::Microseconds;
    if (text == QStringLiteral("ns"))
        return CsvTimeUnit::Nanoseconds;
    throw Fault(Tr::tr("there is no unit \"%1\"; there are s, ms, us and ns").arg(text));
}

QString dateFormatOf(const QString& text)
{
    for (const QChar part : {u'd', u'M', u'y'}) {
        if (!text.contains(part))
            throw Fault(
                Tr::tr("\"%1\" is no pattern of dates: it has to name day (d), month (M) and year (y)").arg(text));
    }
    return text;
}

QByteArray timeZoneOf(const QString& text)
{
    const QByteArray id = text.toUtf8();
    if (!isCsvTimeZone(id))
        throw Fault(Tr::tr("there is no time zone \"%1\"").arg(text));
    return id;
}

} // namespace

CsvCommandLine::CsvCommandLine()
    : m_map(QStringLiteral("map"),
            Tr::tr("CSV: which columns are what, as start=COLUMN,end=COLUMN,track=COLUMN+COLUMN; there are track, "
                   "label, start, end, duration, color, editable and description. A backslash goes before a comma, "
                   "plus, equals sign or backslash that is part of a column's name."),
            QStringLiteral("FIELD=COLUMN,...")),
      m_delimiter(QStringLiteral("delimiter"), Tr::tr("CSV: the character between fields, or the word tab."),
                  QStringLiteral("CHARACTER")),
      m_decimal(QStringLiteral("decimal"), Tr::tr("CSV: the decimal point of numbers, . or ,"),
                QStringLiteral("CHARACTER")),
      m_encoding(QStringLiteral("encoding"), Tr::tr("CSV: UTF-8, UTF-16, Windows-1252 or Latin-1."),
                 QStringLiteral("ENCODING")),
      m_timeUnit(QStringLiteral("time-unit"), Tr::tr("CSV: what plain numbers count: s, ms, us or ns."),
                 QStringLiteral("UNIT")),
      m_dateFormat(QStringLiteral("date-format"), Tr::tr("CSV: how dates are written, as dd.MM.yyyy."),
                   QStringLiteral("PATTERN")),
      m_timeZone(QStringLiteral("time-zone"),
                 Tr::tr("CSV: the zone of times that are written without one, as Europe/Berlin; else UTC."),
                 QStringLiteral("ZONE"))
{
}

QList<QCommandLineOption> CsvCommandLine::options() const
{
    return {m_map, m_delimiter, m_decimal, m_encoding, m_timeUnit, m_dateFormat, m_timeZone};
}

QString CsvCommandLine::read(const QCommandLineParser& parser, CsvOptions& csvOptions) const
{
    try {
        if (parser.isSet(m_map))
            csvOptions.columns = MapParser(parser.value(m_map)).parse();
        if (parser.isSet(m_delimiter))
            csvOptions.delimiter = delimiterOf(parser.value(m_delimiter));
        if (parser.isSet(m_decimal))
            csvOptions.decimalPoint = decimalOf(parser.value(m_decimal));
        if (parser.isSet(m_encoding))
            csvOptions.encoding = encodingOf(parser.value(m_encoding));
        if (parser.isSet(m_timeUnit))
            csvOptions.timeUnit = timeUnitOf(parser.value(m_timeUnit));
        if (parser.isSet(m_dateFormat))
            csvOptions.dateFormat = dateFormatOf(parser.value(m_dateFormat));
        if (parser.isSet(m_timeZone))
            csvOptions.timeZone = timeZoneOf(parser.value(m_timeZone));
    } catch (const Fault& fault) {
        return fault;
    }
    return {};
}

} // namespace Workbench
