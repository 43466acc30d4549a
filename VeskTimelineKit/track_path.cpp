#include <VeskTimelineKit/track_path.h>

namespace VeskTimeline::Kit {

namespace {

constexpr QChar slash = u'/';
constexpr QChar backslash = u'\\';

QString backslashes(qsizetype count)
{
    return QString(count, backslash);
}

qsizetype trailingBackslashes(const QString& text)
{
    qsizetype count = 0;
    while (count < text.size() && text.at(text.size() - 1 - count) == backslash)
        ++count;
    return count;
}

QString escapedName(const QString& name)
{
    QString text;
    for (const QChar c : name) {
        if (c == slash)
            text += backslashes(trailingBackslashes(text) + 1);
        text += c;
    }
    return text;
}

} // namespace

QStringList splitTrackPath(const QString& text)
{
    QStringList names;
    QString name;
    for (const QChar c : text) {
        if (c != slash) {
            name += c;
            continue;
        }
        const qsizetype count = trailingBackslashes(name);
        name.chop(count - count / 2);
        if (count % 2 != 0) {
            name += slash;
            continue;
        }
        names.append(name.trimmed());
        name.clear();
    }
    names.append(name.trimmed());
    return names;
}

QString joinTrackPath(const QStringList& names)
{
    QString text;
    for (qsizetype i = 0; i < names.size(); ++i) {
        if (i > 0)
            text += backslashes(trailingBackslashes(text)) + slash;
        text += escapedName(names.at(i));
    }
    return text;
}

} // namespace VeskTimeline::Kit
