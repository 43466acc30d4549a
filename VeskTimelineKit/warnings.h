#pragma once

#include <VeskTimelineKit/vesktimelinekit_export.h>

#include <QString>
#include <QStringList>

namespace VeskTimeline::Kit {

class Document;

/// What a reader skips or adapts in one file. Everything is counted, the first mostKept texts are kept: a file with a
/// fault in each of a million records must not fill the memory with sentences about it.
class VESKTIMELINEKIT_EXPORT WarningList
{
public:
    static constexpr int mostKept = 100;

    explicit WarningList(const QString& fileName) : m_fileName(fileName) {}

    /// @param line or number of the record, counted from 1; 0 where there is none
    /// @param text without the file's name, translated
    void add(int line, const QString& text);
    /// As above, where the text takes longer to make than there is time for, when there are millions.
    /// @param makeText () to the text; called if it is kept
    template <typename MakeText>
    void addMade(int line, MakeText makeText)
    {
        if (m_texts.size() < mostKept)
            add(line, makeText());
        else
            ++m_count;
    }

    /// Of all that were added, also those that were not kept.
    int count() const { return m_count; }
    /// "FILE:LINE: text" of those kept, in order, and at the end how many more there were, if any.
    QStringList texts() const;
    /// Adds texts() to the document's warnings.
    void addTo(Document& document) const;

private:
    QString m_fileName;
    QStringList m_texts;
    int m_count = 0;
};

} // namespace VeskTimeline::Kit
