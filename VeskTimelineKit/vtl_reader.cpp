#include "json_record_p.h"
#include "json_record_reader_p.h"
#include "kit_tr_p.h"
#include "quoted_text_p.h"
#include "read_file_p.h"
#include "time_limits_p.h"
#include "vtl_format_p.h"
#include "vtl_members_p.h"

#include <VeskTimelineKit/vtl_reader.h>
#include <VeskTimelineKit/warnings.h>

#include <algorithm>

namespace VeskTimeline::Kit {

using namespace simdjson;

namespace {

// Deeper than what other formats may have: such a document may come below a track of another, more than once.
constexpr qsizetype deepestPath = 1000;

/// Makes a document of records. The operations throw the reason, a QString, to refuse the text.
class VtlDocumentBuilder
{
public:
    explicit VtlDocumentBuilder(const QString& fileName) : m_warnings(fileName) {}

    static bool isWanted(const QByteArray& member)
    {
        return member == "format" || member == "version" || member == "tracks" || member == "items";
    }
    void readRecord(JsonRecordReader& reader);
    Document takeDocument(const JsonRecordReader& reader);

private:
    void readFormat(const dom::element& value);
    void readVersion(const dom::element& value);
    void readTrack(const dom::element& value);
    void readItem(const dom::element& value);
    static void checkTimes(const DocumentItem& item);

    JsonRecordParser m_parser;
    Document m_document;
    WarningList m_warnings;
    std::size_t m_trackCount = 0; // of the file; the document has those that there is room for, at the same positions
    bool m_hasFormat = false;
    bool m_hasVersion = false;
    int m_line = 0;
};

void VtlDocumentBuilder::readRecord(JsonRecordReader& reader)
{
    m_line = reader.line();
    const QByteArray& member = reader.member();
    const bool isItem = member == "items" && reader.isElement();
    const std::optional<dom::element> value = m_parser.parse(reader.text());
    if (m_parser.wasMended())
        m_warnings.add(m_line, Tr::tr("bytes that are not UTF-8 are replaced"));
    if (!value && !isItem)
        throw m_parser.errorReason();

    if (member == "format")
        return readFormat(*value);
    if (member == "version")
        return readVersion(*value);
    if (!m_hasFormat || !m_hasVersion)
        throw Tr::tr("not a VeskTimeline document: it does not start with format and version");
    if (!reader.isElement())
        throw Tr::tr("\"%1\" is not a list").arg(QString::fromUtf8(member));
    if (member == "tracks")
        return readTrack(*value);
    try {
        if (!value)
            throw m_parser.errorReason();
        readItem(*value);
    } catch (const QString& reason) {
        m_warnings.add(m_line, Tr::tr("an item is left out: %1").arg(reason));
    }
}

void VtlDocumentBuilder::readFormat(const dom::element& value)
{
    std::string_view text;
    if (value.get(text) != SUCCESS || text != vtlFormatMark)
        throw Tr::tr("not a VeskTimeline document: its format is another one");
    m_hasFormat = true;
}

void VtlDocumentBuilder::readVersion(const dom::element& value)
{
    std::int64_t version = 0;
    if (value.get(version) != SUCCESS || version < 1)
        throw Tr::tr("the version is not a positive whole number");
    if (version > vtlVersion)
        throw Tr::tr("version %1 of the format is newer than this program, which knows version %2")
            .arg(version)
            .arg(vtlVersion);
    m_hasVersion = true;
}

void VtlDocumentBuilder::readTrack(const dom::element& value)
{
    dom::object track;
    dom::array names;
    if (value.get(track) != SUCCESS || track["path"].get(names) != SUCCESS || names.size() == 0)
        throw Tr::tr("a track has no path");
    if (static_cast<qsizetype>(names.size()) > deepestPath)
        throw Tr::tr("the track is more than %1 levels deep").arg(deepestPath);
    QColor color;
    for (const dom::key_value_pair& member : track) {
        if (member.key == "color")
            color = vtlColor(member.value);
        else if (member.key != "path")
            m_warnings.add(m_line,
                           Tr::tr("the member %1 of a track is left out").arg(quotedText(jsonText(member.key))));
    }
    QStringList path;
    for (const dom::element& name : names)
        path.append(vtlTextOf(name, "path"));
    ++m_trackCount;
    // Made up on the way, parents would let a short text grow into a huge tree.
    const bool hasParent = path.size() == 1 || m_document.hasTrack(path.first(path.size() - 1));
    if (!hasParent)
        throw Tr::tr("the track %1 is listed before the one above it").arg(quotedText(path.last()));
    if (m_document.hasTrack(path))
        throw Tr::tr("the track %1 is there twice").arg(quotedText(path.last()));
    m_document.track(path).color = color;
}

void VtlDocumentBuilder::readItem(const dom::element& value)
{
    dom::object members;
    if (value.get(members) != SUCCESS)
        throw Tr::tr("it is no object");
    dom::element trackValue;
    dom::element startValue;
    if (members["track"].get(trackValue) != SUCCESS)
        throw Tr::tr("it has no track");
    if (members["start"].get(startValue) != SUCCESS)
        throw Tr::tr("it has no start");
    const qint64 track = vtlWholeNumber(trackValue, "track");
    if (track < 0 || track >= static_cast<qint64>(m_trackCount))
        throw Tr::tr("there is no track %1").arg(track);

    DocumentItem item;
    item.duration = DocumentItem::openEnded;
    for (const dom::key_value_pair& member : members) {
        if (member.key != "track" && !setVtlMember(item, member.key, member.value))
            m_warnings.add(m_line,
                           Tr::tr("the member %1 of an item is left out").arg(quotedText(jsonText(member.key))));
    }
    checkTimes(item);
    m_document.trackAt(static_cast<std::size_t>(track)).items.push_back(std::move(item));
}

void VtlDocumentBuilder::checkTimes(const DocumentItem& item)
{
    if (!isWithinTimeLimits(item.start) || (item.duration > 0 && item.duration > latestTime - item.start))
        throw Tr::tr("its times are outside the years 1 to 9999");
}

Document VtlDocumentBuilder::takeDocument(const JsonRecordReader& reader)
{
    if (!m_hasFormat || !m_hasVersion)
        throw Tr::tr("not a VeskTimeline document: it has no format and version");
    for (const QByteArray& member : reader.skippedMembers())
        m_warnings.add(0, Tr::tr("the member %1 is left out").arg(quotedText(QString::fromUtf8(member))));
    m_warnings.addTo(m_document);
    return std::move(m_document);
}

} // namespace

Result<Document> readVtl(QIODevice& device, const QString& fileName, const ReadOptions& options)
{
    ReadProgress progress(options);
    JsonRecordReader reader(device, progress, VtlDocumentBuilder::isWanted);
    VtlDocumentBuilder builder(fileName);
    try {
        while (reader.next())
            builder.readRecord(reader);
        if (reader.ending() != JsonRecordReader::Ending::Complete)
            return FileError{fileName, reader.line(), Tr::tr("the file ends in the middle of a document")};
        return builder.takeDocument(reader);
    } catch (const QString& reason) {
        return FileError{fileName, reader.line(), reason};
    } catch (const ReadCancelled&) {
        return FileError{fileName, 0, cancelledReason()};
    }
}

Result<Document> readVtl(const QString& fileName, const ReadOptions& options)
{
    return readFile(fileName, [&](QIODevice& device) { return readVtl(device, fileName, options); });
}

} // namespace VeskTimeline::Kit
