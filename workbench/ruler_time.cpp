#include "ruler_time.h"

#include <hoxtools/dtg.h>

namespace Workbench {

int rulerOffsetHours()
{
    return DTG::timezone2Hours(DTG::timezone());
}

QDateTime rulerDateTime(qint64 time)
{
    constexpr int secondsPerHour = 3600;
    return QDateTime::fromMSecsSinceEpoch(time, Qt::OffsetFromUTC, rulerOffsetHours() * secondsPerHour);
}

QString rulerTimeText(qint64 time)
{
    const QDateTime shown = rulerDateTime(time);
    const QString pattern =
        shown.time().msec() == 0 ? QStringLiteral("yyyy-MM-dd HH:mm:ss") : QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz");
    return shown.toString(pattern) + QLatin1Char(DTG::timezone());
}

} // namespace Workbench
