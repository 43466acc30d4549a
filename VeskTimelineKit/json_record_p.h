#pragma once

// Internal to the kit; not installed.

#include <QByteArray>
#include <QString>

#include <optional>
#include <simdjson.h>
#include <string>

namespace VeskTimeline::Kit {

/// Parses records one after the other in the same memory.
class JsonRecordParser
{
public:
    /// @param text gets room for the parser, and is mended when it is not valid UTF-8
    /// @return null, with errorReason(), when the text is no JSON value; valid until the next call
    std::optional<simdjson::dom::element> parse(QByteArray& text);

    /// Of the last call that returned nothing, translated.
    QString errorReason() const { return m_errorReason; }
    /// Whether the last text had bytes that are not UTF-8; they are replacement characters now.
    bool wasMended() const { return m_wasMended; }

private:
    simdjson::error_code tryParse(QByteArray& text, simdjson::dom::element& element);

    simdjson::dom::parser m_parser;
    QString m_errorReason;
    bool m_wasMended = false;
};

inline QString jsonText(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Strings as they are, everything else as compact JSON.
QString jsonValueText(const simdjson::dom::element& element);
/// The same as UTF-8.
std::string jsonValueUtf8(const simdjson::dom::element& element);
/// Nothing for anything but a number.
std::optional<double> jsonNumber(const simdjson::dom::element& element);

} // namespace VeskTimeline::Kit
