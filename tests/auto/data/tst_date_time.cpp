#include <VeskTimeline/timeline_utils.h>
#include <hoxtools/dtg.h>

#include <QDateTime>
#include <QRegularExpression>
#include <QTest>

#include <ctime>
#include <type_traits>

using namespace VeskTimeline;

namespace {

static_assert(std::is_enum_v<DateTime::Format> && std::is_convertible_v<DateTime::Format, int>, "a plain enumeration");

/// 20 November 2026, 13:45:01.250 UTC.
constexpr qint64 sample = 1'795'182'301'250;

/// A process whose local time is another than UTC, as long as it lives.
class LocalTimeZone
{
public:
    explicit LocalTimeZone(const char* zone) : m_before(qgetenv("TZ"))
    {
        qputenv("TZ", zone);
        tzset();
    }
    Q_DISABLE_COPY_MOVE(LocalTimeZone)
    ~LocalTimeZone()
    {
        qputenv("TZ", m_before);
        tzset();
    }

private:
    QByteArray m_before;
};

} // namespace

class tst_date_time : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".?")));
        QVERIFY(::DTG::setTimezone('Z'));
    }
    void cleanup() { ::DTG::setTimezone('Z'); }

    void thereAreSixFormatsFromZero()
    {
        QCOMPARE(DateTime::numberOfDateTimeFormats(), 6);
        QCOMPARE(int(DateTime::DTG), 0);
        QCOMPARE(int(DateTime::ISODate), 1);
        QCOMPARE(int(DateTime::Standard), 2);
        QCOMPARE(int(DateTime::DTGShort), 3);
        QCOMPARE(int(DateTime::DTGVeryShort), 4);
        QCOMPARE(int(DateTime::TimeOnly), 5);
    }

    void dtgIsTheFullDateTimeGroup()
    {
        for (const char zone : {'Z', 'B', 'N'}) {
            QVERIFY(::DTG::setTimezone(zone));
            QCOMPARE(DateTime::toString(sample, DateTime::DTG), ::DTG::toStringMSec(sample, ::DTG::Full));
        }
        ::DTG::setTimezone('Z');
        QCOMPARE(DateTime::toString(sample, DateTime::DTG), QStringLiteral("20134501Z NOV 26"));
    }

    void isoDateIsInLocalTime()
    {
        const LocalTimeZone zone("AAA-9");
        QCOMPARE(DateTime::toString(sample, DateTime::ISODate), QStringLiteral("2026-11-20T22:45:01"));
        QCOMPARE(DateTime::toString(0, DateTime::ISODate), QStringLiteral("1970-01-01T09:00:00"));
    }

    void standardIsInLocalTime()
    {
        const LocalTimeZone zone("AAA-9");
        QCOMPARE(DateTime::toString(sample, DateTime::Standard), QStringLiteral("20.11.2026 22:45:01"));
        QCOMPARE(DateTime::toString(-1, DateTime::Standard), QStringLiteral("01.01.1970 08:59:59"));
    }

    void shortGroupsAreInTheLetteredZone_data()
    {
        QTest::addColumn<char>("zone");
        QTest::addColumn<QString>("shortText");
        QTest::addColumn<QString>("veryShortText");
        QTest::newRow("UTC") << 'Z' << "134501 Z"
                             << "1345";
        QTest::newRow("east") << 'B' << "154501 B"
                              << "1545";
        QTest::newRow("far east, next day") << 'M' << "014501 M"
                                            << "0145";
        QTest::newRow("west") << 'N' << "124501 N"
                              << "1245";
        QTest::newRow("far west") << 'Y' << "014501 Y"
                                  << "0145";
    }

    void shortGroupsAreInTheLetteredZone()
    {
        QFETCH(const char, zone);
        QFETCH(const QString, shortText);
        QFETCH(const QString, veryShortText);
        QVERIFY(::DTG::setTimezone(zone));
        // The local time has no say.
        const LocalTimeZone local("AAA-9");
        QCOMPARE(DateTime::toString(sample, DateTime::DTGShort), shortText);
        QCOMPARE(DateTime::toString(sample, DateTime::DTGVeryShort), veryShortText);
    }

    void exampleOfTheLetteredZone()
    {
        QVERIFY(::DTG::setTimezone('B'));
        const qint64 utc = QDateTime(QDate(2026, 7, 1), QTime(11, 45, 1), Qt::UTC).toMSecsSinceEpoch();
        QCOMPARE(DateTime::toString(utc, DateTime::DTGShort), QStringLiteral("134501 B"));
    }

    void timeOnlyReadsMillisecondsSinceMidnight()
    {
        const LocalTimeZone local("AAA-9");
        QCOMPARE(DateTime::toString(3'600'000, DateTime::TimeOnly), QStringLiteral("01:00:00"));
        QCOMPARE(DateTime::toString(3'600'000, DateTime::TimeOnly), QTime(1, 0).toString(Qt::TextDate));
        QCOMPARE(DateTime::toString(0, DateTime::TimeOnly), QStringLiteral("00:00:00"));
        QCOMPARE(DateTime::toString(86'399'999, DateTime::TimeOnly), QStringLiteral("23:59:59"));
    }

    void timeOnlyIsNarrowedTo32Bits()
    {
        const qint64 beyond = (qint64(1) << 32) + 3'600'000;
        QCOMPARE(DateTime::toString(beyond, DateTime::TimeOnly), QStringLiteral("01:00:00"));
        QCOMPARE(DateTime::toString(86'400'000, DateTime::TimeOnly), QString());
        QCOMPARE(DateTime::toString(-1, DateTime::TimeOnly), QString());
    }

    void unknownFormatsGiveANullText()
    {
        for (const int format : {6, 7, -1, 1000})
            QVERIFY(DateTime::toString(sample, static_cast<DateTime::Format>(format)).isNull());
    }
};

QTEST_GUILESS_MAIN(tst_date_time)
#include "tst_date_time.moc"
