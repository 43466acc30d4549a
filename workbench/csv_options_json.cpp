#include "csv_options_json.h"

#include <QJsonArray>
#include <QTimeZone>

#include <algorithm>
#include <array>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

template <typename Value>
struct Named
{
    Value value;
    QLatin1String name;
};

constexpr std::array fields{
    Named<CsvField>{CsvField::Track, QLatin1String("track")},
    Named<CsvField>{CsvField::Label, QLatin1String("label")},
    Named<CsvField>{CsvField::Start, QLatin1String("start")},
    Named<CsvField>{CsvField::End, QLatin1String("end")},
    Named<CsvField>{CsvField::Duration, QLatin1String("duration")},
    Named<CsvField>{CsvField::Color, QLatin1String("color")},
    Named<CsvField>{CsvField::Editable, QLatin1String("editable")},
    Named<CsvField>{CsvField::Description, QLatin1String("description")},
};
constexpr std::array encodings{
    Named<CsvEncoding>{CsvEncoding::Utf8, QLatin1String("UTF-8")},
    Named<CsvEncoding>{CsvEncoding::Utf16, QLatin1String("UTF-16")},
    Named<CsvEncoding>{CsvEncoding::Windows1252, QLatin1String("Windows-1252")},
    Named<CsvEncoding>{CsvEncoding::Latin1, QLatin1String("Latin-1")},
};
constexpr std::array units{
    Named<CsvTimeUnit>{CsvTimeUnit::Seconds, QLatin1String("s")},
    Named<CsvTimeUnit>{CsvTimeUnit::Milliseconds, QLatin1String("ms")},
    Named<CsvTimeUnit>{CsvTimeUnit::Microseconds, QLatin1String("us")},
    Named<CsvTimeUnit>{CsvTimeUnit::Nanoseconds, QLatin1String("ns")},
};

template <typename Value, std::size_t Size>
QString nameOf(const std::array<Named<Value>, Size>& names, Value value)
{
    const auto found =
        std::find_if(names.begin(), names.end(), [value](const auto& named) { return named.value == value; });
    return found == names.end() ? QString() : QString(found->name);
}

template <typename Value, std::size_t Size>
std::optional<Value> valueOf(const std::array<Named<Value>, Size>& names, const QString& name)
{
    const auto found =
        std::find_if(names.begin(), names.end(), [&name](const auto& named) { return named.name == name; });
    if (found == names.end())
        return {};
    return found->value;
}

/// Takes an object apart, entry by entry. Absent entries are fine, entries of a wrong kind are not.
class Reader
{
public:
    explicit Reader(const QJsonObject& object) : m_object(object) {}

    bool isOk() const { return m_isOk; }

    QString text(const QString& key)
    {
        const QJsonValue value = m_object.value(key);
        m_isOk = m_isOk && (value.isUndefined() || (value.isString() && !value.toString().isEmpty()));
        return value.toString();
    }
    std::optional<QChar> character(const QString& key)
    {
        const QString one = text(key);
        m_isOk = m_isOk && one.size() <= 1;
        return one.size() == 1 ? std::optional(one.front()) : std::nullopt;
    }
    template <typename Value, std::size_t Size>
    std::optional<Value> named(const QString& key, const std::array<Named<Value>, Size>& names)
    {
        const QString name = text(key);
        const auto value = valueOf(names, name);
        m_isOk = m_isOk && (name.isEmpty() || value);
        return value;
    }
    QMap<CsvField, QStringList> columns(const QString& key);

private:
    QStringList list(const QJsonValue& value);

    QJsonObject m_object;
    bool m_isOk = true;
};

QMap<CsvField, QStringList> Reader::columns(const QString& key)
{
    const QJsonValue value = m_object.value(key);
    m_isOk = m_isOk && (value.isUndefined() || value.isObject());
    const QJsonObject object = value.toObject();
    QMap<CsvField, QStringList> columns;
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        const auto field = valueOf(fields, entry.key());
        m_isOk = m_isOk && field;
        if (field)
            columns.insert(*field, list(entry.value()));
    }
    return columns;
}

QStringList Reader::list(const QJsonValue& value)
{
    m_isOk = m_isOk && value.isArray();
    QStringList texts;
    const QJsonArray array = value.toArray();
    for (const auto& text : array) {
        m_isOk = m_isOk && text.isString();
        texts.append(text.toString());
    }
    return texts;
}

} // namespace

QJsonObject toJson(const CsvOptions& options)
{
    QJsonObject object;
    QJsonObject columns;
    for (auto entry = options.columns.begin(); entry != options.columns.end(); ++entry)
        columns.insert(nameOf(fields, entry.key()), QJsonArray::fromStringList(entry.value()));
    if (!columns.isEmpty())
        object.insert(QStringLiteral("columns"), columns);
    if (options.delimiter)
        object.insert(QStringLiteral("delimiter"), QString(*options.delimiter));
    if (options.decimalPoint)
        object.insert(QStringLiteral("decimalPoint"), QString(*options.decimalPoint));
    if (options.encoding)
        object.insert(QStringLiteral("encoding"), nameOf(encodings, *options.encoding));
    if (options.timeUnit)
        object.insert(QStringLiteral("timeUnit"), nameOf(units, *options.timeUnit));
    if (!options.dateFormat.isEmpty())
        object.insert(QStringLiteral("dateFormat"), options.dateFormat);
    if (!options.timeZone.isEmpty())
        object.insert(QStringLiteral("timeZone"), QString::fromLatin1(options.timeZone));
    return object;
}

std::optional<CsvOptions> csvOptionsFromJson(const QJsonObject& object)
{
    Reader reader(object);
    CsvOptions options;
    options.columns = reader.columns(QStringLiteral("columns"));
    options.delimiter = reader.character(QStringLiteral("delimiter"));
    options.decimalPoint = reader.character(QStringLiteral("decimalPoint"));
    options.encoding = reader.named(QStringLiteral("encoding"), encodings);
    options.timeUnit = reader.named(QStringLiteral("timeUnit"), units);
    options.dateFormat = reader.text(QStringLiteral("dateFormat"));
    options.timeZone = reader.text(QStringLiteral("timeZone")).toLatin1();
    const bool hasPoint = !options.decimalPoint || *options.decimalPoint == u'.' || *options.decimalPoint == u',';
    const bool hasZone = options.timeZone.isEmpty() || QTimeZone::isTimeZoneIdAvailable(options.timeZone);
    if (!reader.isOk() || !hasPoint || !hasZone)
        return {};
    return options;
}

} // namespace Workbench
