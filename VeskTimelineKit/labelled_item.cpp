#include "kit_tr_p.h"

#include <VeskTimelineKit/labelled_item.h>
#include <VeskTimelineKit/time_text.h>

namespace VeskTimeline::Kit {

namespace {

QString cut(const QString& text, qsizetype longest)
{
    return text.size() <= longest ? text : text.first(longest) + QChar(0x2026);
}

// "3 d 04:05:06.007", without what is zero at the front and behind the seconds.
QString durationText(qint64 duration)
{
    constexpr qint64 second = 1000;
    constexpr qint64 day = 24 * 3600 * second;
    const qint64 days = duration / day;
    const qint64 seconds = duration % day / second;
    const qint64 milliseconds = duration % second;
    const auto twoDigits = [](qint64 number) { return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0')); };
    QString text = QStringLiteral("%1:%2:%3")
                       .arg(twoDigits(seconds / 3600), twoDigits(seconds / 60 % 60), twoDigits(seconds % 60));
    if (days > 0)
        text.prepend(Tr::tr("%1 d ").arg(days));
    if (milliseconds > 0)
        text.append(QStringLiteral(".%1").arg(milliseconds, 3, 10, QLatin1Char('0')));
    return text;
}

QString toolTipRow(const QString& name, const QString& value)
{
    return QStringLiteral("<tr><td>%1</td><td style=\"padding-left:8px\">%2</td></tr>")
        .arg(name, value.toHtmlEscaped());
}

} // namespace

LabelledItem::LabelledItem(const QString& label, qint64 startTime, int duration, const QColor& color, bool isEditable)
    : Item(startTime, duration, color, isEditable), m_label(label)
{
    setCulling(Culling::Covered);
}

void LabelledItem::setIds(int id, int parentTrackId)
{
    m_id = id;
    m_parentTrackId = parentTrackId;
}

QString LabelledItem::label() const
{
    return m_label + pieceText();
}

QString LabelledItem::pieceText() const
{
    return m_piece.isPiece() ? QStringLiteral(" (%1/%2)").arg(m_piece.number).arg(m_piece.count) : QString();
}

QString LabelledItem::toolTip(const QString& trackName, const TimeFormatter& formatter,
                              const std::optional<TimeSpan>& whole) const
{
    const TimeSpan times = whole.value_or(TimeSpan{startTime(), startTime() + duration()});
    const TimeFormatter format = formatter ? formatter : formatTime;
    constexpr qsizetype longestName = 200;
    constexpr qsizetype longestDescription = 1000;
    const bool hasEnd = duration() >= 0;
    QString text = QStringLiteral("<qt><b>%1</b><table>").arg(cut(label().simplified(), longestName).toHtmlEscaped());
    text += toolTipRow(Tr::tr("Start"), format(times.start));
    text += toolTipRow(Tr::tr("End"), hasEnd ? format(times.end) : Tr::tr("open"));
    if (hasEnd)
        text += toolTipRow(Tr::tr("Duration"), durationText(times.end - times.start));
    text += toolTipRow(Tr::tr("Track"), cut(trackName.simplified(), longestName));
    text += QStringLiteral("</table>");
    if (!m_description.isEmpty())
        text += QStringLiteral("<p style=\"white-space:pre-wrap\">%1</p>")
                    .arg(cut(m_description, longestDescription).toHtmlEscaped());
    return text + QStringLiteral("</qt>");
}

} // namespace VeskTimeline::Kit
