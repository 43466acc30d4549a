#pragma once

// Internal to the kit; not installed.

#include "ics_line_p.h"

#include <QHash>
#include <QMap>

namespace VeskTimeline::Kit {

/// How the properties of an event are kept as an item's attributes, and become properties again.
///
/// An attribute has the name of its property. A second property of that name is "NAME#2" and so on, and a parameter
/// is an attribute of its own, "NAME;PARAMETER". TEXT values are unescaped, all others as they are written.
///
/// Attributes of names or values that make no such property are written as X-VESKTIMELINE-ATTRIBUTE with a JSON list
/// of the name and the value.
class IcsAttributes
{
public:
    /// Keeps the property and its parameters.
    void addProperty(const IcsLine& line);
    /// Keeps the parameters of a property whose value has a place of its own.
    void addParameters(const IcsLine& line);
    void add(const QString& name, const QString& value) { m_attributes.insert(name, value); }

    const QMap<QString, QString>& all() const { return m_attributes; }

private:
    void addParameters(const IcsLine& line, const QString& attributeName);

    QMap<QString, QString> m_attributes;
    QHash<QByteArray, int> m_counts; ///< of properties, by name
};

/// The lines, without folding, from which IcsAttributes makes these attributes.
/// @param reserved names of properties that have another place
QByteArrayList icsAttributeLines(const QMap<QString, QString>& attributes, const QByteArrayList& reserved);

/// A list of texts as the value of a property; nothing when it is none.
std::optional<QStringList> icsJsonList(const QByteArray& value);
QByteArray icsJsonListValue(const QStringList& entries);

} // namespace VeskTimeline::Kit
