#pragma once

#include <VeskTimelineKit/csv_reader.h>

#include <QBuffer>

/// Reading CSV from memory, and what it came to as text.
namespace CsvReading {

using namespace VeskTimeline::Kit;

inline Result<Document> read(QByteArray text, const ReadOptions& options = {})
{
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    return readCsv(buffer, "f.csv", options);
}

inline Result<Document> read(const QByteArray& text, const CsvOptions& csv)
{
    ReadOptions options;
    options.csv = csv;
    return read(text, options);
}

/// "path: label start+duration attribute=value" of every item, or the error's text.
inline QStringList itemTexts(const Result<Document>& result)
{
    if (!result)
        return {result.error().text()};
    QStringList texts;
    for (const DocumentTrack& track : result.value().tracks()) {
        for (const DocumentItem& item : track.items) {
            QString text =
                QString("%1: %2 %3+%4").arg(track.path.join('>'), item.label).arg(item.start).arg(item.duration);
            for (auto attribute = item.attributes.cbegin(); attribute != item.attributes.cend(); ++attribute)
                text += QString(" %1=%2").arg(attribute.key(), *attribute);
            texts.append(text);
        }
    }
    return texts;
}

} // namespace CsvReading
