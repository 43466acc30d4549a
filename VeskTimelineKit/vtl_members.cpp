#include "json_record_p.h"
#include "kit_tr_p.h"
#include "quoted_text_p.h"
#include "vtl_members_p.h"

namespace VeskTimeline::Kit {

using namespace simdjson;

namespace {

QColor colorOf(const QString& text)
{
    // Sixteen bits of alpha, red, green and blue each, for the colours that "#AARRGGBB" cannot say.
    if (text.size() == 17 && text.startsWith(u'#')) {
        bool isNumber = false;
        const quint64 value = text.mid(1).toULongLong(&isNumber, 16);
        const auto channel = [value](int shift) { return static_cast<quint16>(value >> shift & 0xFFFF); };
        const QRgba64 color = QRgba64::fromRgba64(channel(32), channel(16), channel(0), channel(48));
        return isNumber ? QColor::fromRgba64(color) : QColor();
    }
    return text.startsWith(u'#') && QColor::isValidColorName(text) ? QColor::fromString(text) : QColor();
}

void appendAttributes(QByteArray& line, const QMap<QString, QString>& attributes)
{
    char separator = '{';
    for (auto attribute = attributes.cbegin(); attribute != attributes.cend(); ++attribute) {
        line += separator;
        appendVtlText(line, attribute.key());
        line += ':';
        appendVtlText(line, attribute.value());
        separator = ',';
    }
    line += '}';
}

void setAttributes(DocumentItem& item, const dom::element& value)
{
    dom::object attributes;
    if (value.get(attributes) != SUCCESS)
        throw Tr::tr("\"attributes\" is no object");
    for (const dom::key_value_pair& attribute : attributes)
        item.attributes.insert(jsonText(attribute.key), vtlTextOf(attribute.value, attribute.key));
}

} // namespace

void appendVtlText(QByteArray& target, const QString& text)
{
    constexpr char digits[] = "0123456789abcdef";
    target += '"';
    for (const char c : text.toUtf8()) {
        if (c == '"' || c == '\\')
            (target += '\\') += c;
        else if (c == '\n')
            target += "\\n";
        else if (c >= 0 && c < ' ')
            ((target += "\\u00") += digits[c >> 4]) += digits[c & 15];
        else
            target += c;
    }
    target += '"';
}

// Eight bits a channel where they are enough; otherwise sixteen, as "#AAAARRRRGGGGBBBB".
QString vtlColorText(const QColor& color)
{
    const QColor rgb = color.toRgb();
    if (QColor::fromRgba(rgb.rgba()) == rgb)
        return rgb.name(rgb.alpha() == 255 ? QColor::HexRgb : QColor::HexArgb);
    const QRgba64 wide = rgb.rgba64();
    return QStringLiteral("#%1%2%3%4")
        .arg(wide.alpha(), 4, 16, QLatin1Char('0'))
        .arg(wide.red(), 4, 16, QLatin1Char('0'))
        .arg(wide.green(), 4, 16, QLatin1Char('0'))
        .arg(wide.blue(), 4, 16, QLatin1Char('0'));
}

void appendVtlMembers(QByteArray& line, const DocumentItem& item)
{
    line += "\"start\":" + QByteArray::number(item.start);
    if (item.duration != DocumentItem::openEnded)
        line += ",\"duration\":" + QByteArray::number(item.duration);
    line += ",\"label\":";
    appendVtlText(line, item.label);
    if (item.color.isValid()) {
        line += ",\"color\":";
        appendVtlText(line, vtlColorText(item.color));
    }
    if (!item.isEditable)
        line += ",\"editable\":false";
    if (!item.description.isEmpty()) {
        line += ",\"description\":";
        appendVtlText(line, item.description);
    }
    if (!item.attributes.isEmpty()) {
        line += ",\"attributes\":";
        appendAttributes(line, item.attributes);
    }
}

QString vtlTextOf(const dom::element& value, std::string_view name)
{
    std::string_view text;
    if (value.get(text) != SUCCESS)
        throw Tr::tr("\"%1\" is no text").arg(jsonText(name));
    return jsonText(text);
}

qint64 vtlWholeNumber(const dom::element& value, std::string_view name)
{
    std::int64_t number = 0;
    if (value.get(number) != SUCCESS)
        throw Tr::tr("\"%1\" is no whole number, or out of range").arg(jsonText(name));
    return number;
}

QColor vtlColor(const dom::element& value)
{
    const QString text = vtlTextOf(value, "color");
    const QColor color = colorOf(text);
    if (!color.isValid())
        throw Tr::tr("bad color %1").arg(quotedText(text));
    return color;
}

bool setVtlMember(DocumentItem& item, std::string_view name, const dom::element& value)
{
    if (name == "start") {
        item.start = vtlWholeNumber(value, name);
    } else if (name == "duration") {
        item.duration = vtlWholeNumber(value, name);
        if (item.duration < 0)
            throw Tr::tr("the duration is negative");
    } else if (name == "label") {
        item.label = vtlTextOf(value, name);
    } else if (name == "description") {
        item.description = vtlTextOf(value, name);
    } else if (name == "color") {
        item.color = vtlColor(value);
    } else if (name == "editable") {
        if (value.get(item.isEditable) != SUCCESS)
            throw Tr::tr("\"editable\" is neither true nor false");
    } else if (name == "attributes") {
        setAttributes(item, value);
    } else {
        return false;
    }
    return true;
}

} // namespace VeskTimeline::Kit
