#include "csv_column_choices.h"

#include <algorithm>

namespace Workbench {

using namespace VeskTimeline::Kit;

void CsvColumnChoices::reset(const Columns& said)
{
    m_said = said;
    m_attributes.clear();
}

void CsvColumnChoices::choose(const QString& column, std::optional<CsvColumnUse> use)
{
    takeOut(column);
    if (!use)
        return;
    if (!use->field) {
        m_attributes.insert(column);
        return;
    }
    QStringList& names = m_said[*use->field];
    // As they stand in the file, whatever the order of choosing: levels from the top, the date before the time.
    const auto place = std::find_if(names.begin(), names.end(), [this, &column](const QString& name) {
        return m_header.indexOf(name) > m_header.indexOf(column);
    });
    names.insert(place, column);
}

void CsvColumnChoices::takeOut(const QString& column)
{
    m_attributes.remove(column);
    for (auto names = m_said.begin(); names != m_said.end();) {
        const bool wasThere = names->removeAll(column) > 0;
        names = wasThere && names->isEmpty() ? m_said.erase(names) : std::next(names);
    }
}

void CsvColumnChoices::setPreview(const QStringList& header, const Columns& asked, const Columns& answered)
{
    if (header != m_header)
        m_detected.clear();
    m_header = header;
    // What was asked for keeps what was detected before: it says what there is to come back to.
    for (auto names = m_detected.begin(); names != m_detected.end();)
        names = asked.contains(names.key()) ? std::next(names) : m_detected.erase(names);
    for (auto names = answered.begin(); names != answered.end(); ++names) {
        if (!asked.contains(names.key()))
            m_detected.insert(names.key(), names.value());
    }
}

CsvColumnChoices::Columns CsvColumnChoices::columns() const
{
    Columns columns;
    for (auto said = m_said.begin(); said != m_said.end(); ++said) {
        QStringList names = said.value();
        names.removeIf([this](const QString& name) { return !isKnown(name); });
        // An empty list from the start says that there is no such column; one that came out empty says nothing.
        if (!names.isEmpty() || said->isEmpty())
            columns.insert(said.key(), names);
    }
    for (auto detected = m_detected.begin(); detected != m_detected.end(); ++detected) {
        QStringList names = detected.value();
        const auto removed = names.removeIf([this](const QString& name) { return m_attributes.contains(name); });
        if (removed > 0 && !columns.contains(detected.key()))
            columns.insert(detected.key(), names);
    }
    return columns;
}

std::optional<CsvColumnUse> CsvColumnChoices::said(const QString& column) const
{
    if (m_attributes.contains(column))
        return CsvColumnUse{};
    for (auto names = m_said.begin(); names != m_said.end(); ++names) {
        if (names->contains(column))
            return CsvColumnUse{names.key()};
    }
    return {};
}

} // namespace Workbench
