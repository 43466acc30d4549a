#include "csv_import_memory.h"

#include "csv_options_json.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QSettings>

#include <algorithm>
#include <vector>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

const QString group = QStringLiteral("csvImports/");

QString normalised(const QString& name)
{
    return name.simplified().toCaseFolded();
}

QString keyOf(const QStringList& header)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const QString& name : header) {
        hash.addData(normalised(name).toUtf8());
        // What no name can contain, so that no two headers run together to the same bytes.
        hash.addData(QByteArrayView("\xff", 1));
    }
    return group + QString::fromLatin1(hash.result().toHex());
}

// The entry as an object; empty when it is damaged.
QJsonObject read(const QSettings& settings, const QString& key)
{
    return QJsonDocument::fromJson(settings.value(key).toString().toUtf8()).object();
}

void write(QSettings& settings, const QString& key, const QJsonObject& object)
{
    settings.setValue(key, QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
}

// Counts up with each use. A clock would do worse: it can be set back, and two uses can fall on one of its ticks.
// Numbers that no counting gets to are damage, and as old as can be.
double useOf(const QJsonObject& object)
{
    constexpr double farthest = 1e15;
    const double use = object.value(QStringLiteral("use")).toDouble();
    return use < farthest ? use : 0;
}

QStringList allKeys(QSettings& settings)
{
    settings.beginGroup(group.chopped(1));
    QStringList keys = settings.childKeys();
    settings.endGroup();
    for (QString& key : keys)
        key.prepend(group);
    return keys;
}

double nextUse(QSettings& settings)
{
    double last = 0;
    for (const QString& key : allKeys(settings))
        last = std::max(last, useOf(read(settings, key)));
    return last + 1;
}

// The columns as the header at hand writes them; nothing when it lacks one.
std::optional<QStringList> spelledAs(const QStringList& header, const QStringList& names)
{
    QStringList spelled;
    for (const QString& name : names) {
        const auto found = std::find_if(header.begin(), header.end(), [&name](const QString& column) {
            return normalised(column) == normalised(name);
        });
        if (found == header.end())
            return {};
        spelled.append(header.contains(name) ? name : *found);
    }
    return spelled;
}

} // namespace

std::optional<CsvImportMemory::Entry> CsvImportMemory::find(const QStringList& header) const
{
    const QJsonObject object = read(*m_settings, keyOf(header));
    const QJsonValue optionsValue = object.value(QStringLiteral("options"));
    const auto options = csvOptionsFromJson(optionsValue.toObject());
    if (!optionsValue.isObject() || !options)
        return {};
    Entry entry{*options, object.value(QStringLiteral("silent")).toBool()};
    for (QStringList& names : entry.options.columns) {
        const auto spelled = spelledAs(header, names);
        // The user may have split the line in another way than it is split at first, so that the names differ.
        names = spelled.value_or(names);
    }
    return entry;
}

void CsvImportMemory::remember(const QStringList& header, const Entry& entry)
{
    write(*m_settings, keyOf(header),
          {{QStringLiteral("options"), toJson(entry.options)},
           {QStringLiteral("silent"), entry.isSilent},
           {QStringLiteral("use"), nextUse(*m_settings)}});
    dropOldest();
}

void CsvImportMemory::touch(const QStringList& header)
{
    QJsonObject object = read(*m_settings, keyOf(header));
    if (object.isEmpty())
        return;
    object.insert(QStringLiteral("use"), nextUse(*m_settings));
    write(*m_settings, keyOf(header), object);
}

void CsvImportMemory::forget(const QStringList& header)
{
    m_settings->remove(keyOf(header));
}

void CsvImportMemory::forgetAll()
{
    m_settings->remove(group.chopped(1));
}

int CsvImportMemory::count() const
{
    return static_cast<int>(allKeys(*m_settings).size());
}

void CsvImportMemory::dropOldest()
{
    const QStringList keys = allKeys(*m_settings);
    if (keys.size() <= mostKept)
        return;
    std::vector<std::pair<double, QString>> uses;
    for (const QString& key : keys)
        uses.emplace_back(useOf(read(*m_settings, key)), key);
    std::sort(uses.begin(), uses.end());
    uses.resize(uses.size() - mostKept);
    for (const auto& [use, key] : uses)
        m_settings->remove(key);
}

} // namespace Workbench
