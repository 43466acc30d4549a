#pragma once

// Internal to the kit; not installed.

#include <VeskTimelineKit/document.h>

#include <simdjson.h>

namespace VeskTimeline::Kit {

/// Appends a text as JSON, in quotes, on one line.
void appendVtlText(QByteArray& target, const QString& text);
/// A colour as the native format says it, see docs/native-format.md.
QString vtlColorText(const QColor& color);
/// Appends all that the native format says of an item, apart from its track: members with commas in between.
void appendVtlMembers(QByteArray& line, const DocumentItem& item);

// What reads them throws the reason, a QString, translated.

QString vtlTextOf(const simdjson::dom::element& value, std::string_view name);
qint64 vtlWholeNumber(const simdjson::dom::element& value, std::string_view name);
/// Never invalid.
QColor vtlColor(const simdjson::dom::element& value);
/// Sets what one of the members that appendVtlMembers() writes says. @return whether there is such a member
bool setVtlMember(DocumentItem& item, std::string_view name, const simdjson::dom::element& value);

} // namespace VeskTimeline::Kit
