#include "json_record_p.h"
#include "kit_tr_p.h"

#include <algorithm>

namespace VeskTimeline::Kit {

using namespace simdjson;

std::optional<dom::element> JsonRecordParser::parse(QByteArray& text)
{
    dom::element element;
    error_code error = tryParse(text, element);
    m_wasMended = error == UTF8_ERROR;
    if (m_wasMended) {
        text = QString::fromUtf8(text).toUtf8();
        error = tryParse(text, element);
    }
    if (error == SUCCESS)
        return element;
    m_errorReason = error == NUMBER_ERROR   ? Tr::tr("a number is malformed or out of range")
                    : error == STRING_ERROR ? Tr::tr("a text is malformed")
                                            : Tr::tr("it is not valid JSON");
    return std::nullopt;
}

error_code JsonRecordParser::tryParse(QByteArray& text, dom::element& element)
{
    const auto size = static_cast<std::size_t>(text.size());
    // In steps, or else records that each are a little longer than the one before would have it allocate each time; but
    // the parser takes many times the capacity, so steps must not be large.
    if (size > m_parser.capacity()) {
        constexpr std::size_t largestStep = 1024 * 1024;
        const std::size_t capacity = size + std::min(size, largestStep);
        if (const error_code error = m_parser.allocate(capacity))
            return error;
    }
    text.reserve(text.size() + static_cast<qsizetype>(SIMDJSON_PADDING));
    return m_parser.parse(text.constData(), size, false).get(element);
}

QString jsonValueText(const dom::element& element)
{
    return QString::fromStdString(jsonValueUtf8(element));
}

std::string jsonValueUtf8(const dom::element& element)
{
    std::string_view text;
    if (element.get(text) == SUCCESS)
        return std::string(text);
    // Most are whole numbers, which need no formatter.
    std::int64_t number = 0;
    if (element.type() == dom::element_type::INT64 && element.get(number) == SUCCESS)
        return std::to_string(number);
    return minify(element);
}

std::optional<double> jsonNumber(const dom::element& element)
{
    double number = 0.0;
    if (element.get(number) != SUCCESS)
        return std::nullopt;
    return number;
}

} // namespace VeskTimeline::Kit
