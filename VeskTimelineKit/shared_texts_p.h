#pragma once

// Internal to the kit; not installed.

#include <QSet>
#include <QString>

namespace VeskTimeline::Kit {

/// Holds texts that come again and again once: the names of attributes and the few values of most of them would take
/// more memory than all the rest of a large file.
class SharedTexts
{
public:
    /// The text, shared with an equal one that came before if that is still known.
    QString shared(const QString& text)
    {
        // What is rather long, or comes among very many others, is hardly worth the search.
        constexpr qsizetype longest = 200;
        constexpr qsizetype mostKept = 8192;
        if (text.size() > longest)
            return text;
        if (const auto known = m_texts.constFind(text); known != m_texts.cend())
            return *known;
        if (m_texts.size() >= mostKept)
            m_texts.clear();
        return *m_texts.insert(text);
    }

private:
    QSet<QString> m_texts;
};

} // namespace VeskTimeline::Kit
