#include "write_file_p.h"

#include <VeskTimelineKit/csv_writer.h>
#include <VeskTimelineKit/time_text.h>
#include <VeskTimelineKit/track_path.h>

#include <algorithm>
#include <csv.h>

namespace VeskTimeline::Kit {

namespace {

bool needsQuotes(const QByteArray& field)
{
    // Blanks at the ends of a field that is not quoted are not part of it.
    return field.trimmed().size() != field.size() || std::any_of(field.begin(), field.end(), [](char c) {
               return c == ',' || c == '"' || c == '\n' || c == '\r';
           });
}

QByteArray csvField(const QString& text)
{
    const QByteArray plain = text.toUtf8();
    if (!needsQuotes(plain))
        return plain;
    const auto size = static_cast<std::size_t>(plain.size());
    QByteArray quoted(static_cast<qsizetype>(csv_write(nullptr, 0, plain.constData(), size)), '\0');
    csv_write(quoted.data(), static_cast<std::size_t>(quoted.size()), plain.constData(), size);
    return quoted;
}

QString colorText(const QColor& color)
{
    if (!color.isValid())
        return {};
    return color.name(color.alpha() == 255 ? QColor::HexRgb : QColor::HexArgb);
}

QByteArray csvLine(const QStringList& fields)
{
    QByteArray line;
    for (qsizetype i = 0; i < fields.size(); ++i) {
        if (i > 0)
            line += ',';
        line += csvField(fields.at(i));
    }
    return line + '\n';
}

} // namespace

QByteArray csvText(const Document& document)
{
    QByteArray text = "track,label,start,end,color,editable\n";
    for (const DocumentTrack& track : document.tracks()) {
        const QString path = joinTrackPath(track.path);
        for (const DocumentItem& item : track.items) {
            const bool hasEnd = item.duration != DocumentItem::openEnded;
            text +=
                csvLine({path, item.label, formatTime(item.start), hasEnd ? formatTime(item.end()) : QString(),
                         colorText(item.color), item.isEditable ? QStringLiteral("true") : QStringLiteral("false")});
        }
    }
    return text;
}

WriteResult writeCsv(const Document& document, const QString& fileName, const WriteOptions& /*options*/)
{
    return writeFile(fileName, [&](QIODevice& device) {
        device.write(csvText(document));
        return QStringList();
    });
}

} // namespace VeskTimeline::Kit
