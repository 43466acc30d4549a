#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/warnings.h>

#include <QTest>

using namespace VeskTimeline::Kit;

class TestWarnings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void withoutAnyNothingIsSaid()
    {
        const WarningList warnings("f");
        QCOMPARE(warnings.count(), 0);
        QCOMPARE(warnings.texts(), QStringList());
    }

    void aWarningNamesFileAndLine()
    {
        WarningList warnings("f.x");
        warnings.add(3, "odd");
        warnings.add(0, "general");
        QCOMPARE(warnings.count(), 2);
        QCOMPARE(warnings.texts(), (QStringList{"f.x:3: odd", "f.x: general"}));
    }

    void theFirstHundredAreKeptAndTheRestIsCounted()
    {
        WarningList warnings("f");
        for (int i = 1; i <= 100; ++i)
            warnings.add(i, "w");
        QCOMPARE(warnings.texts().size(), 100);
        QCOMPARE(warnings.texts().last(), "f:100: w");
        for (int i = 101; i <= 1234; ++i)
            warnings.add(i, "w");
        QCOMPARE(warnings.count(), 1234);
        QCOMPARE(warnings.texts().size(), 101);
        QCOMPARE(warnings.texts().at(99), "f:100: w");
        QCOMPARE(warnings.texts().last(), "f: further warnings: 1134");
    }

    void aDocumentGetsThemAfterItsOwn()
    {
        Document document;
        document.addWarning("first");
        WarningList warnings("f");
        warnings.add(1, "second");
        warnings.addTo(document);
        QCOMPARE(document.warnings(), (QStringList{"first", "f:1: second"}));
    }
};

QTEST_APPLESS_MAIN(TestWarnings)
#include "tst_warnings.moc"
