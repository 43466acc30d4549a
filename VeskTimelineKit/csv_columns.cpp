#include "csv_columns_p.h"
#include "kit_tr_p.h"

#include <algorithm>
#include <iterator>

namespace VeskTimeline::Kit {

namespace {

constexpr std::array<const char16_t*, CsvColumns::NameCount> names{u"track",    u"label", u"start",   u"end",
                                                                   u"duration", u"color", u"editable"};

std::optional<CsvColumns::Name> nameOf(const QString& field)
{
    const auto* const found = std::find_if(names.begin(), names.end(), [&field](const char16_t* name) {
        return field.compare(QStringView(name), Qt::CaseInsensitive) == 0;
    });
    if (found == names.end())
        return std::nullopt;
    return static_cast<CsvColumns::Name>(std::distance(names.begin(), found));
}

} // namespace

QString CsvColumns::text(Name name)
{
    return QString::fromUtf16(names[name]);
}

QString CsvColumns::setHeader(const QStringList& fields)
{
    m_count = static_cast<int>(fields.size());
    for (qsizetype position = 0; position < fields.size(); ++position) {
        const QString field = fields.at(position).simplified();
        const auto name = nameOf(field);
        if (!name) {
            m_unknownNames.append(field);
            continue;
        }
        if (has(*name))
            return Tr::tr("column \"%1\" is there twice").arg(text(*name));
        m_positions[*name] = position;
    }
    return missingColumns();
}

QString CsvColumns::missingColumns() const
{
    QStringList missing;
    for (const Name name : {Track, Label, Start}) {
        if (!has(name))
            missing.append(Tr::tr("column \"%1\" is missing").arg(text(name)));
    }
    if (!has(End) && !has(Duration))
        missing.append(Tr::tr("column \"%1\" or \"%2\" is missing").arg(text(End), text(Duration)));
    return missing.join(QStringLiteral(", "));
}

std::optional<QString> CsvColumns::field(const QStringList& record, Name name) const
{
    if (!has(name) || *m_positions[name] >= record.size())
        return std::nullopt;
    return record.at(*m_positions[name]);
}

} // namespace VeskTimeline::Kit
