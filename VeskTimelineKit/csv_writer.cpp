#include "csv_names_p.h"
#include "csv_record_reader_p.h"
#include "gzip_writer_p.h"
#include "kit_tr_p.h"
#include "time_limits_p.h"
#include "write_file_p.h"

#include <VeskTimelineKit/csv_writer.h>
#include <VeskTimelineKit/time_text.h>
#include <VeskTimelineKit/track_path.h>

#include <QBuffer>
#include <QMap>
#include <QSet>

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

/// Writes a document and counts what cannot be said.
class CsvDocumentWriter
{
public:
    CsvDocumentWriter(const Document& document, QIODevice& device, const WriteOptions& options)
        : m_document(document), m_device(device), m_progress(options, document)
    {
    }

    QStringList write()
    {
        collectColumns();
        writeHeader();
        const std::vector<DocumentTrack>& tracks = m_document.tracks();
        for (std::size_t i = 0; i < tracks.size(); ++i)
            writeTrack(tracks[i], i + 1 < tracks.size() ? &tracks[i + 1] : nullptr);
        return warnings();
    }

private:
    void collectColumns()
    {
        QSet<QString> names;
        for (const DocumentTrack& track : m_document.tracks()) {
            for (const DocumentItem& item : track.items) {
                m_hasDescriptions = m_hasDescriptions || !item.description.isEmpty();
                for (auto attribute = item.attributes.cbegin(); attribute != item.attributes.cend(); ++attribute) {
                    if (!attribute->isEmpty())
                        names.insert(attribute.key());
                }
            }
        }
        m_attributes = QStringList(names.cbegin(), names.cend());
        m_attributes.sort();
    }

    // What a reader would take for something else gets a backslash in front.
    static QString columnName(const QString& attribute)
    {
        const bool isField = std::any_of(csvFields().begin(), csvFields().end(), [&attribute](CsvField field) {
            return attribute.simplified().compare(csvFieldName(field), Qt::CaseInsensitive) == 0;
        });
        return isField || attribute.isEmpty() || attribute.startsWith(u'\\') ? u'\\' + attribute : attribute;
    }

    void writeHeader()
    {
        QStringList names;
        for (const CsvField field :
             {CsvField::Track, CsvField::Label, CsvField::Start, CsvField::End, CsvField::Color, CsvField::Editable})
            names.append(csvFieldName(field));
        if (m_hasDescriptions)
            names.append(csvFieldName(CsvField::Description));
        m_ownCount = names.size();
        for (const QString& attribute : m_attributes)
            names.append(columnName(attribute));
        writeLine(names);
    }

    void writeTrack(const DocumentTrack& track, const DocumentTrack* next)
    {
        m_trackColors += track.color.isValid() ? 1 : 0;
        const QString path = joinTrackPath(writablePath(track.path));
        // A track right above the next one is there anyway.
        const bool isImplied = next && next->path.size() == track.path.size() + 1 &&
                               std::equal(track.path.begin(), track.path.end(), next->path.begin());
        if (track.items.empty() && !isImplied) {
            QStringList fields(m_ownCount + m_attributes.size());
            fields[0] = path;
            writeLine(fields);
        }
        for (const DocumentItem& item : track.items) {
            writeItem(path, item);
            m_progress.itemIsDone();
        }
    }

    // Names are without blanks around them and never empty, and there is an end to how deep they go.
    QStringList writablePath(const QStringList& path)
    {
        constexpr qsizetype deepest = 100;
        QStringList names;
        for (const QString& name : path.first(std::min(path.size(), deepest))) {
            const QString trimmed = name.trimmed();
            names.append(trimmed.isEmpty() ? Tr::tr("(no name)") : trimmed);
        }
        m_changedNames += names == path ? 0 : 1;
        return names;
    }

    void writeItem(const QString& path, const DocumentItem& item)
    {
        const bool hasEnd = item.duration != DocumentItem::openEnded;
        m_farItems += isWithinTimeLimits(item.start) && isWithinTimeLimits(item.end()) ? 0 : 1;
        const QString color = colorText(item.color);
        m_roundedColors += item.color.isValid() && QColor::fromString(color) != item.color.toRgb() ? 1 : 0;
        QStringList fields{path,
                           item.label,
                           formatTime(item.start),
                           hasEnd ? formatTime(item.end()) : QString(),
                           color,
                           item.isEditable ? QStringLiteral("true") : QStringLiteral("false")};
        if (m_hasDescriptions)
            fields.append(item.description);
        for (const QString& attribute : m_attributes)
            fields.append(item.attributes.value(attribute));
        m_emptyAttributes += static_cast<int>(std::count_if(item.attributes.cbegin(), item.attributes.cend(),
                                                            [](const QString& v) { return v.isEmpty(); }));
        writeLine(fields);
    }

    // What is no text that can be read back.
    QString writable(const QString& text)
    {
        const bool isCut = text.size() > csvLongestField;
        if (!isCut && text.isValidUtf16() && !text.contains(QChar::Null))
            return text;
        QString changed = text.left(csvLongestField);
        for (qsizetype i = 0; i < changed.size(); ++i) {
            const QChar c = changed.at(i);
            const bool isPair = c.isHighSurrogate() && i + 1 < changed.size() && changed.at(i + 1).isLowSurrogate();
            if (c.isNull() || (c.isSurrogate() && !isPair))
                changed[i] = QChar::ReplacementCharacter;
            i += isPair ? 1 : 0;
        }
        m_changedTexts += 1;
        return changed;
    }

    void writeLine(const QStringList& fields)
    {
        QByteArray line;
        for (const QString& field : fields) {
            line += csvField(writable(field));
            line += ',';
        }
        line.back() = '\n';
        m_device.write(line);
    }

    QStringList warnings() const
    {
        QStringList texts;
        const auto add = [&texts](const QString& text, int count) {
            if (count > 0)
                texts.append(text.arg(count));
        };
        add(Tr::tr("CSV has no place for the colors of tracks; left out: %1"), m_trackColors);
        add(Tr::tr("CSV has 8 bits for a part of a color; colors rounded: %1"), m_roundedColors);
        add(Tr::tr("CSV has no place for attributes without a value; left out: %1"), m_emptyAttributes);
        add(Tr::tr("names of tracks that CSV cannot say, changed: %1"), m_changedNames);
        add(Tr::tr("texts that are too long or hold characters that are none, changed: %1"), m_changedTexts);
        add(Tr::tr("items outside the years 1 to 9999, which will be left out when the file is read: %1"), m_farItems);
        return texts;
    }

    const Document& m_document;
    QIODevice& m_device;
    WriteProgress m_progress;
    QStringList m_attributes;
    qsizetype m_ownCount = 0;
    bool m_hasDescriptions = false;
    int m_trackColors = 0;
    int m_roundedColors = 0;
    int m_emptyAttributes = 0;
    int m_changedNames = 0;
    int m_changedTexts = 0;
    int m_farItems = 0;
};

} // namespace

QByteArray csvText(const Document& document)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    CsvDocumentWriter(document, buffer, {}).write();
    return buffer.data();
}

WriteResult writeCsv(const Document& document, const QString& fileName, const WriteOptions& options)
{
    const bool isPacked = fileName.endsWith(QStringLiteral(".gz"), Qt::CaseInsensitive);
    return writeFile(fileName, [&](QIODevice& device) {
        if (!isPacked)
            return CsvDocumentWriter(document, device, options).write();
        GzipWriter packed(device);
        const QStringList warnings = CsvDocumentWriter(document, packed, options).write();
        packed.finish();
        return warnings;
    });
}

} // namespace VeskTimeline::Kit
