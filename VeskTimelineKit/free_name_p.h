#pragma once

// Internal to the kit; not installed.

#include <QSet>
#include <QString>

namespace VeskTimeline::Kit {

/// The name, or with "(2)" and so on behind it the first that is not taken.
inline QString freeName(const QString& name, const QSet<QString>& taken)
{
    QString free = name;
    for (int number = 2; taken.contains(free); ++number)
        free = QStringLiteral("%1 (%2)").arg(name).arg(number);
    return free;
}

} // namespace VeskTimeline::Kit
