#include <VeskTimeline/timeline_utils.h>

#include <QCoreApplication>
#include <QRegularExpression>
#include <QTest>
#include <QTranslator>

#include <limits>
#include <type_traits>

using namespace VeskTimeline;

namespace {

static_assert(std::is_enum_v<Zoom::Factor> && std::is_convertible_v<Zoom::Factor, int>, "a plain enumeration");
static_assert(std::is_same_v<std::underlying_type_t<Zoom::Factor>, int>);
static_assert(std::is_same_v<decltype(Zoom::availableZoomFactors(Zoom::OneDay, Zoom::OneDay)), QList<Zoom::Factor>>);

struct Row
{
    Zoom::Factor factor;
    int span;
    const char* shortLabel;
    const char* longLabel;
    int major;
    int medium;
    int minor;
};

constexpr Row rows[] = {
    {Zoom::FifteenSeconds, 15000, "15 sec", "15 Seconds", 3000, -1, 1000},
    {Zoom::ThirtySeconds, 30000, "30 sec", "30 Seconds", 5000, -1, 1000},
    {Zoom::SixtySeconds, 60000, "1 min", "1 Minute", 10000, 5000, 1000},
    {Zoom::TwoMinutes, 120000, "2 min", "2 Minutes", 15000, 6000, 3000},
    {Zoom::ThreeMinutes, 180000, "3 min", "3 Minutes", 30000, 10000, 5000},
    {Zoom::FiveMinutes, 300000, "5 min", "5 Minutes", 60000, 15000, 5000},
    {Zoom::TenMinutes, 600000, "10 min", "10 Minutes", 60000, 20000, 10000},
    {Zoom::FifteenMinutes, 900000, "15 min", "15 Minutes", 180000, 60000, 20000},
    {Zoom::ThirtyMinutes, 1800000, "30 min", "30 Minutes", 300000, 100000, 25000},
    {Zoom::SixtyMinutes, 3600000, "1 h", "1 Hour", 600000, 150000, 50000},
    {Zoom::TwoHours, 7200000, "2 h", "2 Hours", 900000, 300000, 60000},
    {Zoom::FourHours, 14400000, "4 h", "4 Hours", 1800000, 600000, 150000},
    {Zoom::EightHours, 28800000, "8 h", "8 Hours", 3600000, 900000, 300000},
    {Zoom::TwelveHours, 43200000, "12 h", "12 Hours", 5400000, 1800000, 600000},
    {Zoom::OneDay, 86400000, "1 d", "1 Day", 7200000, 2400000, 800000},
};
constexpr int rowCount = static_cast<int>(std::size(rows));

constexpr Zoom::Factor factorOf(int value)
{
    return static_cast<Zoom::Factor>(value);
}

constexpr int invalidValues[] = {std::numeric_limits<int>::min(), -1, 0, 1, 12345, 14999, 15001, 90000, 86400001,
                                 std::numeric_limits<int>::max()};

/// Puts every text that is looked up in the context in angle brackets.
class BracketTranslator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* sourceText, const char* disambiguation, int n) const override
    {
        if (qstrcmp(context, "QApplication") != 0 || disambiguation || n != -1)
            return {};
        return QStringLiteral("<%1>").arg(QString::fromUtf8(sourceText));
    }
};

} // namespace

class tst_zoom : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void thereAreFifteenFactors() { QCOMPARE(Zoom::numberOfZoomFactors(), 15); }

    void factorsAreTheirSpans()
    {
        QCOMPARE(rowCount, 15);
        for (const Row& row : rows)
            QCOMPARE(int(row.factor), row.span);
    }

    void incrementAndDecrementStepThroughAllFactors()
    {
        for (int i = 0; i < rowCount; ++i) {
            QCOMPARE(Zoom::increment(rows[i].factor), rows[std::min(i + 1, rowCount - 1)].factor);
            QCOMPARE(Zoom::decrement(rows[i].factor), rows[std::max(i - 1, 0)].factor);
        }
    }

    void invalidFactorsAreNotStepped()
    {
        for (const int value : invalidValues) {
            QCOMPARE(int(Zoom::increment(factorOf(value))), value);
            QCOMPARE(int(Zoom::decrement(factorOf(value))), value);
        }
    }

    void ceilIsTheSmallestFactorThatIsLargeEnough()
    {
        for (int i = 0; i < rowCount; ++i) {
            QCOMPARE(Zoom::ceil(rows[i].span), rows[i].factor);
            QCOMPARE(Zoom::ceil(rows[i].span - 1), rows[i].factor);
            QCOMPARE(Zoom::ceil(rows[i].span + 1), rows[std::min(i + 1, rowCount - 1)].factor);
        }
        for (const int msecs : {0, -5, 1, std::numeric_limits<int>::min()})
            QCOMPARE(Zoom::ceil(msecs), Zoom::FifteenSeconds);
        QCOMPARE(Zoom::ceil(std::numeric_limits<int>::max()), Zoom::OneDay);
    }

    void floorIsTheLargestFactorThatIsSmallEnough()
    {
        for (int i = 0; i < rowCount; ++i) {
            QCOMPARE(Zoom::floor(rows[i].span), rows[i].factor);
            QCOMPARE(Zoom::floor(rows[i].span + 1), rows[i].factor);
            QCOMPARE(Zoom::floor(rows[i].span - 1), rows[std::max(i - 1, 0)].factor);
        }
        for (const int msecs : {0, -5, 14999, std::numeric_limits<int>::min()})
            QCOMPARE(Zoom::floor(msecs), Zoom::FifteenSeconds);
        QCOMPARE(Zoom::floor(std::numeric_limits<int>::max()), Zoom::OneDay);
    }

    void availableFactorsGoFromMinimumToMaximumWithoutOneDay()
    {
        using List = QList<Zoom::Factor>;
        for (int min = 0; min < rowCount; ++min) {
            for (int max = 0; max < rowCount; ++max) {
                List expected;
                for (int i = min; i <= max; ++i) {
                    if (rows[i].factor != Zoom::OneDay || i == min)
                        expected.append(rows[i].factor);
                }
                QCOMPARE(Zoom::availableZoomFactors(rows[min].factor, rows[max].factor), expected);
            }
        }
        QCOMPARE(Zoom::availableZoomFactors(Zoom::FifteenSeconds, Zoom::OneDay).size(), 14);
        QCOMPARE(Zoom::availableZoomFactors(Zoom::TwelveHours, Zoom::OneDay), List{Zoom::TwelveHours});
        QCOMPARE(Zoom::availableZoomFactors(Zoom::OneDay, Zoom::OneDay), List{Zoom::OneDay});
        QCOMPARE(Zoom::availableZoomFactors(Zoom::OneDay, Zoom::FifteenSeconds), List());
    }

    void availableFactorsOfAnInvalidMinimumAreThatAlone()
    {
        QCOMPARE(Zoom::availableZoomFactors(factorOf(12345), Zoom::OneDay), QList<Zoom::Factor>{factorOf(12345)});
        QCOMPARE(Zoom::availableZoomFactors(factorOf(12345), factorOf(12345)), QList<Zoom::Factor>{factorOf(12345)});
        QCOMPARE(Zoom::availableZoomFactors(factorOf(12345), factorOf(12344)), QList<Zoom::Factor>());
    }

    void availableFactorsPassAnInvalidMaximum()
    {
        QCOMPARE(Zoom::availableZoomFactors(Zoom::FourHours, factorOf(14400001)),
                 (QList<Zoom::Factor>{Zoom::FourHours, Zoom::EightHours, Zoom::TwelveHours}));
    }

    void labelsAreThoseOfTheTable()
    {
        for (const Row& row : rows) {
            QCOMPARE(Zoom::toString(row.factor, true), QString::fromLatin1(row.shortLabel));
            QCOMPARE(Zoom::toShortString(row.factor), QString::fromLatin1(row.shortLabel));
            QCOMPARE(Zoom::toString(row.factor, false), QString::fromLatin1(row.longLabel));
        }
    }

    void labelsAreTranslatedInTheContextOfTheApplication()
    {
        BracketTranslator translator;
        QCoreApplication::installTranslator(&translator);
        for (const Row& row : rows) {
            QCOMPARE(Zoom::toShortString(row.factor), QStringLiteral("<%1>").arg(QString::fromLatin1(row.shortLabel)));
            QCOMPARE(Zoom::toString(row.factor, false), QStringLiteral("<%1>").arg(QString::fromLatin1(row.longLabel)));
        }
        QCOMPARE(Zoom::toShortString(factorOf(1)), QStringLiteral("<N/A>"));
        QCOMPARE(Zoom::toString(factorOf(1), false), QStringLiteral("<Unknown>"));
    }

    void intervalsAreThoseOfTheTable()
    {
        for (const Row& row : rows) {
            QCOMPARE(Zoom::majorInterval(row.factor), row.major);
            QCOMPARE(Zoom::mediumInterval(row.factor), row.medium);
            QCOMPARE(Zoom::minorInterval(row.factor), row.minor);
        }
    }

    void invalidFactorsHaveNeitherLabelNorIntervals()
    {
        for (const int value : invalidValues) {
            QCOMPARE(Zoom::toString(factorOf(value), true), QStringLiteral("N/A"));
            QCOMPARE(Zoom::toShortString(factorOf(value)), QStringLiteral("N/A"));
            QCOMPARE(Zoom::toString(factorOf(value), false), QStringLiteral("Unknown"));
            QCOMPARE(Zoom::majorInterval(factorOf(value)), -1);
            QCOMPARE(Zoom::mediumInterval(factorOf(value)), -1);
            QCOMPARE(Zoom::minorInterval(factorOf(value)), -1);
        }
    }
};

QTEST_GUILESS_MAIN(tst_zoom)
#include "tst_zoom.moc"
