#include <hoxtools/dtg.h>

#include <QDateTime>
#include <QLatin1Char>
#include <QTimeZone>

#include <atomic>

namespace {

constexpr qint64 s_secondsPerHour = 3600;

std::atomic<char> s_timezone = 'Z';

bool isBetween(char zone, char first, char last)
{
    return first <= zone && zone <= last;
}

} // namespace

namespace DTG {

char timezone()
{
    return s_timezone.load();
}

bool setTimezone(char zone)
{
    bool ok = false;
    timezone2Hours(zone, &ok);
    if (ok)
        s_timezone.store(zone);
    return ok;
}

int timezone2Hours(char zone, bool* ok)
{
    const bool isZone = isBetween(zone, 'A', 'Z') && zone != 'J';
    if (ok)
        *ok = isZone;
    if (!isZone || zone == 'Z')
        return 0;
    if (isBetween(zone, 'A', 'I'))
        return zone - 'A' + 1;
    if (isBetween(zone, 'K', 'M'))
        return zone - 'K' + 10;
    return 'N' - zone - 1;
}

QString toStringMSec(qint64 msecs, DisplayFormat format)
{
    // Read once, so that the letter and the offset belong together when another thread sets the zone.
    const char zone = timezone();
    const QDateTime utc = QDateTime::fromMSecsSinceEpoch(msecs, QTimeZone::utc());
    const QDateTime shifted = utc.addSecs(timezone2Hours(zone) * s_secondsPerHour);
    if (!shifted.isValid())
        return {};

    QString dayTimeZone = shifted.toString(QStringLiteral("ddhhmmss")) + QLatin1Char(zone);
    if (format == Short)
        return dayTimeZone;
    return dayTimeZone + shifted.toString(QStringLiteral(" MMM yy")).toUpper();
}

} // namespace DTG
