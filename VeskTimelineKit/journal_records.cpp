#include "journal_records_p.h"
#include "json_record_p.h"
#include "kit_tr_p.h"
#include "vtl_members_p.h"

#include <QIODevice>

#include <limits>
#include <zlib.h>

namespace VeskTimeline::Kit {

using namespace simdjson;

namespace {

constexpr char journalMark[] = "vesk-timeline";
constexpr int journalVersion = 1;
constexpr qsizetype checksumLength = 8;

QByteArray checksum(const QByteArray& json)
{
    const uLong sum = crc32_z(0, reinterpret_cast<const Bytef*>(json.constData()), static_cast<z_size_t>(json.size()));
    return QByteArray::number(static_cast<qulonglong>(sum), 16).rightJustified(checksumLength, '0');
}

QByteArray idList(const QVector<int>& ids)
{
    QByteArray list = "[";
    for (const int id : ids)
        (list += QByteArray::number(id)) += ',';
    if (ids.isEmpty())
        return list + ']';
    list.back() = ']';
    return list;
}

QByteArray textList(const QStringList& texts)
{
    QByteArray list = "[";
    for (const QString& text : texts) {
        if (list.size() > 1)
            list += ',';
        appendVtlText(list, text);
    }
    return list + ']';
}

int idOf(const dom::element& value, std::string_view name)
{
    const qint64 number = vtlWholeNumber(value, name);
    if (number < 0 || number > std::numeric_limits<int>::max())
        throw Tr::tr("\"%1\" is no whole number, or out of range").arg(jsonText(name));
    return static_cast<int>(number);
}

int memberId(const dom::object& members, const char* name)
{
    dom::element value;
    if (members[name].get(value) != SUCCESS)
        throw Tr::tr("there is no \"%1\"").arg(QLatin1String(name));
    return idOf(value, name);
}

QVector<int> readIds(const dom::element& value, std::string_view name)
{
    dom::array list;
    if (value.get(list) != SUCCESS)
        throw Tr::tr("\"%1\" is not a list").arg(jsonText(name));
    QVector<int> ids;
    for (const dom::element& id : list)
        ids.append(idOf(id, name));
    return ids;
}

JournalTrack readTrack(const dom::object& members)
{
    JournalTrack track;
    for (const dom::key_value_pair& member : members) {
        if (member.key == "track")
            track.id = idOf(member.value, member.key);
        else if (member.key == "parent")
            track.parentId = idOf(member.value, member.key);
        else if (member.key == "row")
            track.row = idOf(member.value, member.key);
        else if (member.key == "name")
            track.name = vtlTextOf(member.value, member.key);
        else if (member.key == "color")
            track.color = vtlColor(member.value);
    }
    return track;
}

ItemPiece readPiece(const dom::element& value)
{
    const QVector<int> numbers = readIds(value, "piece");
    if (numbers.size() != 3)
        throw Tr::tr("\"piece\" has not three numbers");
    return {numbers[0], numbers[1], numbers[2]};
}

JournalItem readItem(const dom::object& members)
{
    JournalItem item{memberId(members, "item"), memberId(members, "on")};
    item.content.duration = DocumentItem::openEnded;
    for (const dom::key_value_pair& member : members) {
        if (member.key == "at")
            item.position = idOf(member.value, member.key);
        else if (member.key == "piece")
            item.piece = readPiece(member.value);
        else if (member.key != "item" && member.key != "on")
            setVtlMember(item.content, member.key, member.value);
    }
    if (item.content.duration > DocumentItem::longestBar)
        throw Tr::tr("\"%1\" is no whole number, or out of range").arg(QStringLiteral("duration"));
    return item;
}

} // namespace

QByteArray journalLine(const QByteArray& json)
{
    return checksum(json) + ' ' + json + '\n';
}

QByteArray readJournalLine(QIODevice& device)
{
    constexpr qint64 longest = 256 * 1024 * 1024;
    // Room is made for as much as is asked for.
    constexpr qint64 usual = 16 * 1024;
    QByteArray line = device.readLine(usual);
    while (!line.isEmpty() && line.back() != '\n' && line.size() < longest && !device.atEnd())
        line += device.readLine(usual);
    return line;
}

std::optional<QByteArray> checkedJson(const QByteArray& line)
{
    if (line.size() < checksumLength + 2 || line.back() != '\n' || line.at(checksumLength) != ' ')
        return std::nullopt;
    QByteArray json = line.mid(checksumLength + 1);
    json.chop(1);
    if (line.first(checksumLength) != checksum(json))
        return std::nullopt;
    return json;
}

QByteArray trackRecord(const JournalTrack& track)
{
    QByteArray record = "{\"track\":" + QByteArray::number(track.id);
    if (track.parentId >= 0)
        record += ",\"parent\":" + QByteArray::number(track.parentId) + ",\"row\":" + QByteArray::number(track.row);
    record += ",\"name\":";
    appendVtlText(record, track.name);
    if (track.color.isValid()) {
        record += ",\"color\":";
        appendVtlText(record, vtlColorText(track.color));
    }
    return record + '}';
}

QByteArray itemRecord(const JournalItem& item)
{
    QByteArray record =
        "{\"item\":" + QByteArray::number(item.id) + ",\"on\":" + QByteArray::number(item.trackId) + ',';
    if (item.position >= 0)
        record += "\"at\":" + QByteArray::number(item.position) + ',';
    if (item.piece.isPiece())
        record += "\"piece\":" + idList({item.piece.whole, item.piece.number, item.piece.count}) + ',';
    appendVtlMembers(record, item.content);
    return record + '}';
}

QByteArray copiesRecord(const JournalCopies& copies)
{
    return "{\"copies\":" + QByteArray::number(copies.trackId) + ",\"ids\":" + idList(copies.itemIds) + '}';
}

QByteArray headerLine(const JournalHeader& header)
{
    QByteArray json = QByteArray("{\"journal\":\"") + journalMark +
                      "\",\"version\":" + QByteArray::number(journalVersion) + ",\"base\":";
    appendVtlText(json, header.base);
    return journalLine(json + ",\"files\":" + textList(header.fileNames) + '}');
}

QByteArray commitLine(qint64 time)
{
    return journalLine("{\"commit\":" + QByteArray::number(time) + '}');
}

QByteArray savedLine()
{
    return journalLine("{\"saved\":true}");
}

QByteArray endLine()
{
    return journalLine("{\"end\":true}");
}

QByteArray deltaLines(const JournalDelta& delta)
{
    QByteArray lines;
    if (!delta.removedTracks.isEmpty())
        lines += journalLine("{\"removedTracks\":" + idList(delta.removedTracks) + '}');
    if (!delta.removedItems.isEmpty())
        lines += journalLine("{\"removedItems\":" + idList(delta.removedItems) + '}');
    for (const JournalTrack& track : delta.tracks)
        lines += journalLine(trackRecord(track));
    for (const JournalItem& item : delta.items)
        lines += journalLine(itemRecord(item));
    for (const JournalCopies& copies : delta.copies)
        lines += journalLine(copiesRecord(copies));
    return lines;
}

JournalMark readRecord(const dom::element& json, JournalDelta& delta, qint64& time)
{
    dom::object members;
    if (json.get(members) != SUCCESS || members.size() == 0)
        throw Tr::tr("it is no object");
    const dom::key_value_pair first = *members.begin();
    if (first.key == "item")
        delta.items.push_back(readItem(members));
    else if (first.key == "track")
        delta.tracks.push_back(readTrack(members));
    else if (first.key == "copies")
        delta.copies.push_back({memberId(members, "copies"), readIds(members["ids"], "ids")});
    else if (first.key == "removedItems")
        delta.removedItems += readIds(first.value, first.key);
    else if (first.key == "removedTracks")
        delta.removedTracks += readIds(first.value, first.key);
    else if (first.key == "saved")
        return JournalMark::Saved;
    else if (first.key == "end")
        return JournalMark::End;
    else if (first.key == "commit") {
        time = vtlWholeNumber(first.value, first.key);
        return JournalMark::Commit;
    } else {
        throw Tr::tr("it is of no known kind");
    }
    return JournalMark::None;
}

std::optional<JournalHeader> readHeader(const dom::element& json)
{
    std::string_view mark;
    std::int64_t version = 0;
    std::string_view base;
    dom::array files;
    if (json["journal"].get(mark) != SUCCESS || mark != journalMark || json["version"].get(version) != SUCCESS ||
        version > journalVersion || json["base"].get(base) != SUCCESS || json["files"].get(files) != SUCCESS)
        return std::nullopt;
    JournalHeader header{{}, jsonText(base)};
    for (const dom::element& file : files) {
        std::string_view name;
        if (file.get(name) == SUCCESS)
            header.fileNames.append(jsonText(name));
    }
    return header;
}

} // namespace VeskTimeline::Kit
