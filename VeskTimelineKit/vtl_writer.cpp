#include "kit_tr_p.h"
#include "vtl_format_p.h"
#include "vtl_members_p.h"
#include "write_file_p.h"

#include <VeskTimelineKit/vtl_writer.h>

#include <QBuffer>

namespace VeskTimeline::Kit {

namespace {

QByteArray trackLine(const DocumentTrack& track)
{
    QByteArray line = "{\"path\":[";
    for (qsizetype level = 0; level < track.path.size(); ++level) {
        if (level > 0)
            line += ',';
        appendVtlText(line, track.path.at(level));
    }
    line += ']';
    if (track.color.isValid()) {
        line += ",\"color\":";
        appendVtlText(line, vtlColorText(track.color));
    }
    return line + '}';
}

QByteArray itemLine(std::size_t track, const DocumentItem& item)
{
    QByteArray line = "{\"track\":" + QByteArray::number(static_cast<qulonglong>(track)) + ',';
    appendVtlMembers(line, item);
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
