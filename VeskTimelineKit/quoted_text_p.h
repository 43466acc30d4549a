#pragma once

// Internal to the kit; not installed.

#include <QString>

namespace VeskTimeline::Kit {

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
