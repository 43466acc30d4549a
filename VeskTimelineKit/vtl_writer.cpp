#include "vtl_format_p.h"
#include "write_file_p.h"

#include <VeskTimelineKit/vtl_writer.h>

#include <QBuffer>

namespace VeskTimeline::Kit {

namespace {

void appendText(QByteArray& target, const QString& text)
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
QString colorText(const QColor& color)
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

QByteArray trackLine(const DocumentTrack& track)
{
    QByteArray line = "{\"path\":[";
    for (qsizetype level = 0; level < track.path.size(); ++level) {
        if (level > 0)
            line += ',';
        appendText(line, track.path.at(level));
    }
    line += ']';
    if (track.color.isValid()) {
        line += ",\"color\":";
        appendText(line, colorText(track.color));
    }
    return line + '}';
}

void appendAttributes(QByteArray& line, const QMap<QString, QString>& attributes)
{
    char separator = '{';
    for (auto attribute = attributes.cbegin(); attribute != attributes.cend(); ++attribute) {
        line += separator;
        appendText(line, attribute.key());
        line += ':';
        appendText(line, attribute.value());
        separator = ',';
    }
    line += '}';
}

QByteArray itemLine(std::size_t track, const DocumentItem& item)
{
    QByteArray line = "{\"track\":" + QByteArray::number(static_cast<qulonglong>(track)) +
                      ",\"start\":" + QByteArray::number(item.start);
    if (item.duration != DocumentItem::openEnded)
        line += ",\"duration\":" + QByteArray::number(item.duration);
    line += ",\"label\":";
    appendText(line, item.label);
    if (item.color.isValid()) {
        line += ",\"color\":";
        appendText(line, colorText(item.color));
    }
    if (!item.isEditable)
        line += ",\"editable\":false";
    if (!item.description.isEmpty()) {
        line += ",\"description\":";
        appendText(line, item.description);
    }
    if (!item.attributes.isEmpty()) {
        line += ",\"attributes\":";
        appendAttributes(line, item.attributes);
    }
    return line + '}';
}

/// Writes the elements of a list, one a line.
class ListWriter
{
public:
    ListWriter(QIODevice& device, const char* name) : m_device(device)
    {
        m_device.write(QByteArray("\"") + name + "\": [");
    }
    void add(const QByteArray& element)
    {
        m_device.write(m_isFirst ? "\n" : ",\n");
        m_device.write(element);
        m_isFirst = false;
    }
    void close(const char* next) { m_device.write(QByteArray("\n]") + next + '\n'); }

private:
    QIODevice& m_device;
    bool m_isFirst = true;
};

// Whether all was written is known to the device in the end.
void write(QIODevice& device, const Document& document, const WriteOptions& options)
{
    WriteProgress progress(options, document);
    device.write(QByteArray("{\n\"format\": \"") + vtlFormatMark +
                 "\",\n\"version\": " + QByteArray::number(vtlVersion) + ",\n");
    ListWriter tracks(device, "tracks");
    for (const DocumentTrack& track : document.tracks())
        tracks.add(trackLine(track));
    tracks.close(",");

    ListWriter items(device, "items");
    for (std::size_t track = 0; track < document.tracks().size(); ++track) {
        for (const DocumentItem& item : document.tracks()[track].items) {
            items.add(itemLine(track, item));
            progress.itemIsDone();
        }
    }
    items.close("\n}");
}

} // namespace

QByteArray vtlText(const Document& document)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    write(buffer, document, {});
    return buffer.data();
}

WriteResult writeVtl(const Document& document, const QString& fileName, const WriteOptions& options)
{
    return writeFile(fileName, [&](QIODevice& device) {
        write(device, document, options);
        return QStringList();
    });
}

} // namespace VeskTimeline::Kit
