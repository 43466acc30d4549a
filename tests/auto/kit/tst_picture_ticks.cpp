#include <VeskTimelineKit/picture_ticks_p.h>
#include <hoxtools/dtg.h>

#include <QApplication>
#include <QDateTime>
#include <QTest>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

constexpr qint64 hour = 3'600'000;
constexpr qint64 day = 24 * hour;

qint64 at(const char* text)
{
    return QDateTime::fromString(QString::fromLatin1(text) + QStringLiteral("Z"), Qt::ISODate).toMSecsSinceEpoch();
}

QStringList labels(const Ticks& ticks)
{
    QStringList texts;
    for (const Tick& tick : ticks)
        texts.append(tick.label);
    return texts;
}

RulerScale scaleOf(qint64 start, qint64 length, int width, std::optional<DateTime::Format> format = std::nullopt)
{
    return pictureScale({start, start + length}, width, QFontMetrics(QApplication::font()), format);
}

} // namespace

class TestPictureTicks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }
    void cleanup() { ::DTG::setTimezone('Z'); }

    void aRangeAsLongAsAZoomFactorHasItsTicks()
    {
        const RulerScale scale = scaleOf(at("2020-01-01T00:00:00"), Zoom::OneDay, 1400);
        QCOMPARE(scale.majorTicks.size(), 13);
        QCOMPARE(scale.majorTicks.at(1).time, at("2020-01-01T02:00:00"));
        QCOMPARE(scale.majorTicks.at(1).label, QString("0200"));
        QCOMPARE(scale.mediumTicks.size(), 24);
        QCOMPARE(scale.minorTicks.size(), 72);
    }

    void labelsNeverOverlap_data()
    {
        QTest::addColumn<qint64>("length");
        QTest::addColumn<int>("width");
        for (const qint64 length : {qint64(1000), qint64(20'000), 90 * 60'000LL, hour, 5 * hour, day, 3 * day, 20 * day,
                                    100 * day, 3652 * day, 40'000 * day, 3'000'000 * day})
            for (const int width : {230, 700, 1400, 9000})
                QTest::addRow("%lld ms on %d", length, width) << length << width;
    }
    void labelsNeverOverlap()
    {
        QFETCH(const qint64, length);
        QFETCH(const int, width);
        const QFontMetrics metrics(QApplication::font());
        for (const auto format :
             {std::optional<DateTime::Format>(), std::optional(DateTime::DTG), std::optional(DateTime::ISODate)}) {
            const RulerScale scale = scaleOf(at("1972-12-07T05:33:00"), length, width, format);
            double lastEnd = -1e9;
            qint64 lastTime = scale.start - 1;
            for (const Tick& tick : scale.majorTicks) {
                const double middle =
                    static_cast<double>(tick.time - scale.start) * width / static_cast<double>(length);
                const double half = metrics.horizontalAdvance(tick.label) / 2.0;
                QVERIFY2(tick.label.isEmpty() || middle - half >= lastEnd, qPrintable(tick.label));
                QVERIFY(tick.time > lastTime && tick.time <= scale.start + length);
                lastTime = tick.time;
                if (!tick.label.isEmpty())
                    lastEnd = middle + half;
            }
            QVERIFY(scale.majorTicks.size() + scale.mediumTicks.size() + scale.minorTicks.size() <= width);
        }
    }

    void aLabelThatWouldBeCutAtAnEdgeIsLeftOut()
    {
        const RulerScale scale = scaleOf(at("2020-01-01T00:00:00") - 60'000, 10 * day, 1500);
        QCOMPARE(scale.majorTicks.first().time, at("2020-01-01T00:00:00"));
        QCOMPARE(scale.majorTicks.first().label, QString());
        QCOMPARE(scale.majorTicks.at(1).label, QString("2020-01-02"));
    }

    void midnightSaysTheDateInARangeOfDays()
    {
        const RulerScale scale = scaleOf(at("2020-01-01T00:00:00") - hour, 2 * day, 1500);
        QVERIFY(labels(scale.majorTicks).contains("2020-01-02"));
        QVERIFY(labels(scale.majorTicks).contains("1200"));
    }

    void tenYearsHaveYears()
    {
        const RulerScale scale = scaleOf(at("2017-01-05T00:00:00"), 3652 * day, 1400);
        QCOMPARE(labels(scale.majorTicks).mid(0, 3), QStringList({"2018-01-01", "2019-01-01", "2020-01-01"}));
        QCOMPARE(scale.majorTicks.size(), 10);
        QCOMPARE(scale.mediumTicks.size(), 30);
        QCOMPARE(scale.mediumTicks.first().time, at("2017-04-01T00:00:00"));
        QCOMPARE(scale.minorTicks.size(), 80);
    }

    void weeksBeginOnMondays()
    {
        const RulerScale scale = scaleOf(at("2020-01-01T00:00:00"), 60 * day, 1400);
        QCOMPARE(scale.majorTicks.first().time, at("2020-01-06T00:00:00"));
        QCOMPARE(scale.majorTicks.at(1).time, at("2020-01-13T00:00:00"));
        QCOMPARE(scale.minorTicks.first().time, at("2020-01-01T00:00:00"));
    }

    void monthsBeforeTheEpochAreWhole()
    {
        const RulerScale scale = scaleOf(at("1899-11-30T00:00:00"), 400 * day, 1600);
        QCOMPARE(scale.majorTicks.first().time, at("1899-12-01T00:00:00"));
        QCOMPARE(scale.majorTicks.at(1).time, at("1900-01-01T00:00:00"));
    }

    void hoursBeforeTheEpochAreNotShifted()
    {
        const RulerScale scale = scaleOf(-30 * hour, 20 * hour, 1500);
        QCOMPARE(scale.majorTicks.first().time, -30 * hour);
    }

    void daysBeginAtMidnightOfTheZone()
    {
        QVERIFY(::DTG::setTimezone('B'));
        const RulerScale scale = scaleOf(at("2020-01-01T00:00:00"), 10 * day, 1500);
        QCOMPARE(scale.majorTicks.first().time, at("2020-01-01T22:00:00"));
        QCOMPARE(scale.majorTicks.first().label, QString("2020-01-02"));
    }

    void aFormatIsWrittenAsTheRulerWritesIt()
    {
        const RulerScale scale = scaleOf(at("2020-01-01T00:00:00"), 10 * day, 1500, DateTime::DTG);
        QVERIFY(scale.majorTicks.size() > 3);
        for (const Tick& tick : scale.majorTicks.mid(1, 2))
            QCOMPARE(tick.label, DateTime::toString(tick.time, DateTime::DTG));
    }
};

QTEST_MAIN(TestPictureTicks)
#include "tst_picture_ticks.moc"
