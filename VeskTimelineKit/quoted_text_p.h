#pragma once

// Internal to the kit; not installed.

#include <QString>

namespace VeskTimeline::Kit {

/// Line ends and other control characters are replaced; blanks are left as they are.
inline QString withoutControls(QString text)
{
    for (QChar& c : text) {
        if (c.category() == QChar::Other_Control)
            c = QChar::ReplacementCharacter;
    }
    return text;
}

/// A text out of a file for a message: in quotes, on one line, without control characters, and no longer than a message
/// should be.
inline QString quotedText(const QString& text)
{
    constexpr qsizetype longest = 40;
    QString shown = text.left(longest + 1).simplified();
    for (QChar& c : shown) {
        if (!c.isPrint())
            c = QChar::ReplacementCharacter;
    }
    if (shown.size() > longest || text.size() > longest + 1)
        shown = shown.left(longest) + u'…';
    return u'"' + shown + u'"';
}

} // namespace VeskTimeline::Kit
