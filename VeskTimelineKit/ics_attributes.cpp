#include "ics_attributes_p.h"
#include "ics_names_p.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

#include <algorithm>
#include <libical/ical.h>
#include <map>

namespace VeskTimeline::Kit {

namespace {

// The properties of events whose values are no TEXT, or lists of it.
bool isText(const IcsLine& line)
{
    static const QByteArrayList others{"ATTACH",    "ATTENDEE", "CONFERENCE",    "CREATED",   "DTSTAMP",
                                       "GEO",       "IMAGE",    "LAST-MODIFIED", "ORGANIZER", "PRIORITY",
                                       "RESOURCES", "SEQUENCE", "SOURCE",        "URL",       "PERCENT-COMPLETE"};
    const QByteArray type = line.parameter("VALUE").toUpper();
    return type == "TEXT" || (type.isEmpty() && !others.contains(line.name));
}

QByteArray escapedValue(const IcsLine& line, const QString& value)
{
    return isText(line) ? icsEscaped(value) : value.toUtf8();
}

QString plainValue(const IcsLine& line)
{
    return isText(line) ? icsUnescaped(line.value) : QString::fromUtf8(line.value);
}

bool isPropertyName(const QByteArray& name)
{
    if (name.startsWith(IcsNames::ownPrefix) || name != name.toUpper())
        return false;
    return name.startsWith("X-") ||
           (icalproperty_string_to_kind(name.constData()) != ICAL_NO_PROPERTY && !name.contains('_'));
}

/// An attribute with those that are its parameters.
struct Property
{
    QString value;
    bool hasValue = false;
    std::vector<IcsParameter> parameters;
};

/// By name and number: the first of a name is 1.
using PropertyKey = std::pair<QByteArray, int>;

PropertyKey propertyKey(const QString& name)
{
    const qsizetype hash = name.indexOf(u'#');
    return hash < 0 ? PropertyKey(name.toUtf8(), 1)
                    : PropertyKey(name.first(hash).toUtf8(), name.mid(hash + 1).toInt());
}

QString attributeName(const PropertyKey& key)
{
    const QString name = QString::fromUtf8(key.first);
    return key.second == 1 ? name : name + u'#' + QString::number(key.second);
}

std::map<PropertyKey, Property> propertiesOf(const QMap<QString, QString>& attributes)
{
    std::map<PropertyKey, Property> properties;
    for (auto it = attributes.begin(); it != attributes.end(); ++it) {
        const qsizetype semicolon = it.key().indexOf(u';');
        Property& property = properties[propertyKey(semicolon < 0 ? it.key() : it.key().first(semicolon))];
        if (semicolon >= 0) {
            property.parameters.push_back({it.key().mid(semicolon + 1).toUtf8(), it.value().toUtf8()});
            continue;
        }
        property.value = it.value();
        property.hasValue = true;
    }
    return properties;
}

/// Writes attributes, and reads what it writes to be sure of it.
class AttributeWriter
{
public:
    AttributeWriter(const QMap<QString, QString>& attributes, const QByteArrayList& reserved)
        : m_attributes(attributes), m_reserved(reserved)
    {
    }

    QByteArrayList lines()
    {
        for (const auto& [key, property] : propertiesOf(m_attributes))
            addLine(key, property);
        for (auto it = m_attributes.begin(); it != m_attributes.end(); ++it) {
            if (!m_written.contains(it.key()))
                m_lines.append(QByteArray(IcsNames::attribute) + ':' + icsJsonListValue({it.key(), it.value()}));
        }
        return m_lines;
    }

private:
    void addLine(const PropertyKey& key, const Property& property)
    {
        if (!property.hasValue || m_reserved.contains(key.first) || !isPropertyName(key.first))
            return;
        IcsLine line{0, key.first, property.parameters, {}};
        line.value = escapedValue(line, property.value);
        const QByteArray text = icsLineText(line);
        // The number comes from the order of the lines, so that none may be missing.
        if (key.second != m_counts.value(key.first) + 1 || !isReadBack(key, property, text))
            return;
        ++m_counts[key.first];
        m_lines.append(text);
        m_written.insert(attributeName(key));
        for (const IcsParameter& parameter : property.parameters)
            m_written.insert(attributeName(key) + u';' + QString::fromUtf8(parameter.name));
    }

    static bool isReadBack(const PropertyKey& key, const Property& property, const QByteArray& text)
    {
        const bool hasControl = std::any_of(text.begin(), text.end(), [](char c) {
            return (static_cast<unsigned char>(c) < 0x20 && c != '\t') || c == 0x7f;
        });
        const std::optional<IcsLine> line = parseIcsLine(text);
        if (hasControl || !line)
            return false;
        IcsAttributes read;
        read.addProperty(*line);
        const QString name = QString::fromUtf8(key.first);
        return read.all().value(name) == property.value &&
               read.all().size() == 1 + static_cast<qsizetype>(property.parameters.size()) &&
               std::all_of(property.parameters.begin(), property.parameters.end(), [&](const IcsParameter& parameter) {
                   return read.all().value(name + u';' + QString::fromUtf8(parameter.name)) ==
                          QString::fromUtf8(parameter.value);
               });
    }

    const QMap<QString, QString>& m_attributes;
    const QByteArrayList& m_reserved;
    QSet<QString> m_written; ///< names of attributes
    QHash<QByteArray, int> m_counts;
    QByteArrayList m_lines;
};

} // namespace

void IcsAttributes::addProperty(const IcsLine& line)
{
    const QString name = attributeName({line.name, ++m_counts[line.name]});
    m_attributes.insert(name, plainValue(line));
    addParameters(line, name);
}

void IcsAttributes::addParameters(const IcsLine& line)
{
    addParameters(line, QString::fromUtf8(line.name));
}

void IcsAttributes::addParameters(const IcsLine& line, const QString& name)
{
    for (const IcsParameter& parameter : line.parameters)
        m_attributes.insert(name + u';' + QString::fromUtf8(parameter.name), QString::fromUtf8(parameter.value));
}

QByteArrayList icsAttributeLines(const QMap<QString, QString>& attributes, const QByteArrayList& reserved)
{
    return AttributeWriter(attributes, reserved).lines();
}

std::optional<QStringList> icsJsonList(const QByteArray& value)
{
    const QJsonDocument json = QJsonDocument::fromJson(icsUnescaped(value).toUtf8());
    if (!json.isArray())
        return std::nullopt;
    QStringList entries;
    const QJsonArray array = json.array();
    for (const auto& entry : array) {
        if (!entry.isString())
            return std::nullopt;
        entries.append(entry.toString());
    }
    return entries;
}

QByteArray icsJsonListValue(const QStringList& entries)
{
    const QJsonDocument json(QJsonArray::fromStringList(entries));
    return icsEscaped(QString::fromUtf8(json.toJson(QJsonDocument::Compact)));
}

} // namespace VeskTimeline::Kit
