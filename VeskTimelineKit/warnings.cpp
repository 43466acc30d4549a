#include "kit_tr_p.h"

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/result.h>
#include <VeskTimelineKit/warnings.h>

namespace VeskTimeline::Kit {

void WarningList::add(int line, const QString& text)
{
    ++m_count;
    if (m_texts.size() < mostKept)
        m_texts.append(FileError{m_fileName, line, text}.text());
}

QStringList WarningList::texts() const
{
    QStringList texts = m_texts;
    const int left = m_count - static_cast<int>(m_texts.size());
    if (left > 0)
        texts.append(FileError{m_fileName, 0, Tr::tr("further warnings: %1").arg(left)}.text());
    return texts;
}

void WarningList::addTo(Document& document) const
{
    for (const QString& text : texts())
        document.addWarning(text);
}

} // namespace VeskTimeline::Kit
