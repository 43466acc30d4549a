#include "probe_select_handler.h"

#include <QRegularExpression>
#include <QTest>

#include <memory>

class TestSelectionKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void escapeClears();
    void deleteRemovesInSelectionOrder();
    void deleteWithoutSelectionDoesNothing();
    void failingRemovalDoesNotStopTheOthers_data();
    void failingRemovalDoesNotStopTheOthers();
    void controlASelectsAll();
    void controlCCopiesAndKeepsTheSelection();
    void controlXCutsAndClearsTheSelection();
    void controlVPastesAtTheCurrentTime_data();
    void controlVPastesAtTheCurrentTime();
    void controlVPastesAtTheVisibleIndicator();
    void controlVOnAnEmptyClipboardDoesNothing();
    void copyAndCutWithoutSelectionDoNothing();
    void failingClipboardIsLogged_data();
    void failingClipboardIsLogged();
    void keysWithoutControlAreIgnored();
    void arrowsAreNotIgnored();
    void otherControlKeysDoNothing();

private:
    SelectFixture& fixture() { return *m_fixture; }
    /// Whether the key was left to others.
    bool isLeft(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QKeyEvent event = keyPress(key, modifiers);
        fixture().handler.keyPressEvent(&event);
        return !event.isAccepted();
    }
    void control(int key) { isLeft(key, Qt::ControlModifier); }
    QList<int> selected() { return fixture().view.selectedItemIds(); }

    std::unique_ptr<SelectFixture> m_fixture;
};

void TestSelectionKeys::init()
{
    QTest::failOnWarning(QRegularExpression(".?"));
    m_fixture = std::make_unique<SelectFixture>();
}

void TestSelectionKeys::cleanup()
{
    m_fixture.reset();
}

void TestSelectionKeys::escapeClears()
{
    SelectFixture& f = fixture();
    f.select({4, 5});
    f.handler.m_selectedItemId = 4;
    isLeft(Qt::Key_Escape);
    QCOMPARE(f.handler.m_selectedItemId, -1);
    QVERIFY(selected().isEmpty());
    QCOMPARE(f.selections.size(), 1);
    isLeft(Qt::Key_Escape, Qt::ControlModifier);
    QCOMPARE(f.selections.size(), 2);
}

void TestSelectionKeys::deleteRemovesInSelectionOrder()
{
    SelectFixture& f = fixture();
    for (const int start : {100, 200, 300})
        f.addSeconds(f.trackA, start, 60);
    f.select({2, 0});
    f.handler.m_selectedItemId = 2;
    isLeft(Qt::Key_Delete);
    QCOMPARE(f.model.journal, (QStringList{"remove(2)", "remove(0)"}));
    QCOMPARE(f.model.itemIds(), QVector<int>{1});
    QVERIFY(selected().isEmpty());
    QCOMPARE(f.selections.size(), 1);
    QCOMPARE(f.handler.m_selectedItemId, -1);
    QVERIFY(f.logLines().isEmpty());
}

void TestSelectionKeys::deleteWithoutSelectionDoesNothing()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.handler.m_selectedItemId = 0;
    isLeft(Qt::Key_Delete);
    QVERIFY(f.model.journal.isEmpty());
    QVERIFY(f.selections.isEmpty());
    QCOMPARE(f.handler.m_selectedItemId, 0);
}

void TestSelectionKeys::failingRemovalDoesNotStopTheOthers_data()
{
    addFailureRows();
}

void TestSelectionKeys::failingRemovalDoesNotStopTheOthers()
{
    QFETCH(Failure, failure);
    SelectFixture& f = fixture();
    for (const int start : {100, 200, 300})
        f.addSeconds(f.trackA, start, 60);
    f.select({0, 7, 1, 2});
    f.model.failAt("remove(0)", failure);
    QVERIFY(keepsExceptions([&] { isLeft(Qt::Key_Delete); }));
    QCOMPARE(f.model.journal, (QStringList{"remove(0)", "remove(7)", "remove(1)", "remove(2)"}));
    QCOMPARE(f.model.itemIds(), QVector<int>{0});
    QCOMPARE(f.logLines(), (QStringList{failureLine(selectSignature("keyPressEvent(QKeyEvent*)"), failure),
                                        "Error: " + selectSignature("keyPressEvent(QKeyEvent*)") +
                                            " Model: item with id 7 not found in cache"}));
    QVERIFY(selected().isEmpty());
    QCOMPARE(f.selections.size(), 1);
}

void TestSelectionKeys::controlASelectsAll()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackB, 100, 60);
    f.addSeconds(f.trackA, 100, 60);
    f.handler.m_selectedItemId = 0;
    control(Qt::Key_A);
    QCOMPARE(selected(), (QList<int>{0, 1}));
    QCOMPARE(f.selections.size(), 1);
    QCOMPARE(f.handler.m_selectedItemId, -1);
}

void TestSelectionKeys::controlCCopiesAndKeepsTheSelection()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 100, 60);
    f.select({1, 0});
    control(Qt::Key_C);
    QCOMPARE(f.model.journal, QStringList{"copy(1, 0)"});
    QVERIFY(!f.model.isClipboardEmpty());
    QCOMPARE(selected(), (QList<int>{1, 0}));
    QVERIFY(f.selections.isEmpty());
}

void TestSelectionKeys::controlXCutsAndClearsTheSelection()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 100, 60);
    f.select({1, 0});
    control(Qt::Key_X);
    QCOMPARE(f.model.journal, (QStringList{"cut(1, 0)", "copy(1, 0)", "remove(1)", "remove(0)"}));
    QVERIFY(f.model.itemIds().isEmpty());
    QVERIFY(selected().isEmpty());
    QCOMPARE(f.selections.size(), 1);
}

void TestSelectionKeys::controlVPastesAtTheCurrentTime_data()
{
    QTest::addColumn<bool>("isIndicatorVisible");
    QTest::addColumn<bool>("hasIndicatorTime");
    QTest::newRow("hidden") << false << true;
    QTest::newRow("without a time") << true << false;
    QTest::newRow("neither") << false << false;
}

void TestSelectionKeys::controlVPastesAtTheCurrentTime()
{
    QFETCH(bool, isIndicatorVisible);
    QFETCH(bool, hasIndicatorTime);
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.view.setCurrentTime(f.at(300));
    f.view.header()->setIndicatorTime(hasIndicatorTime ? f.at(500) : -1);
    f.view.header()->setIndicatorVisible(isIndicatorVisible);
    f.select({0});
    control(Qt::Key_C);
    control(Qt::Key_V);
    QCOMPARE(f.model.journal, (QStringList{"copy(0)", "paste(300000)"}));
    QCOMPARE(f.model.times(f.trackA).size(), 2);
    QCOMPARE(selected(), QList<int>{0});
    QVERIFY(f.selections.isEmpty());
}

void TestSelectionKeys::controlVPastesAtTheVisibleIndicator()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.view.header()->setIndicatorTime(f.at(500));
    f.view.header()->setIndicatorVisible(true);
    f.select({0});
    control(Qt::Key_C);
    control(Qt::Key_V);
    QCOMPARE(f.model.journal.last(), QString("paste(500000)"));
    QCOMPARE(f.model.item(1)->startTime(), f.at(500));
}

void TestSelectionKeys::controlVOnAnEmptyClipboardDoesNothing()
{
    fixture().addSeconds(fixture().trackA, 100, 60);
    fixture().select({0});
    control(Qt::Key_V);
    QVERIFY(fixture().model.journal.isEmpty());
}

void TestSelectionKeys::copyAndCutWithoutSelectionDoNothing()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    control(Qt::Key_C);
    control(Qt::Key_X);
    QVERIFY(f.model.journal.isEmpty());
    QVERIFY(f.selections.isEmpty());
}

void TestSelectionKeys::failingClipboardIsLogged_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<int>("key");
    QTest::addColumn<Failure>("failure");
    const QList<QPair<QString, int>> operations{{"copy", Qt::Key_C}, {"cut", Qt::Key_X}, {"paste", Qt::Key_V}};
    for (const auto& [call, key] : operations) {
        QTest::newRow(qPrintable(call + " QString")) << call << key << Failure::Text;
        QTest::newRow(qPrintable(call + " C string")) << call << key << Failure::CString;
        QTest::newRow(qPrintable(call + " standard exception")) << call << key << Failure::Standard;
    }
}

void TestSelectionKeys::failingClipboardIsLogged()
{
    QFETCH(QString, call);
    QFETCH(int, key);
    QFETCH(Failure, failure);
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.select({0});
    f.model.TestModel::copyToClipboard({0});
    f.model.failAt(call, failure);
    QVERIFY(keepsExceptions([&] { control(key); }));
    QCOMPARE(f.logLines(), QStringList{failureLine(selectSignature("keyPressEvent(QKeyEvent*)"), failure)});
    QCOMPARE(selected(), QList<int>{0});
    QCOMPARE(f.model.itemIds(), QVector<int>{0});
}

void TestSelectionKeys::keysWithoutControlAreIgnored()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.select({0});
    f.model.TestModel::copyToClipboard({0});
    f.handler.m_selectedItemId = 0;
    for (const int key : {Qt::Key_A, Qt::Key_C, Qt::Key_X, Qt::Key_V, Qt::Key_Tab, Qt::Key_Up}) {
        QVERIFY(isLeft(key));
        QVERIFY(isLeft(key, Qt::ShiftModifier));
        QVERIFY(isLeft(key, Qt::AltModifier));
    }
    QVERIFY(f.model.journal.isEmpty());
    QVERIFY(f.selections.isEmpty());
    QCOMPARE(f.handler.m_selectedItemId, 0);
}

void TestSelectionKeys::arrowsAreNotIgnored()
{
    // They have moved items: a widget around the view must not scroll with them.
    for (const int key : {Qt::Key_Left, Qt::Key_Right}) {
        QVERIFY(!isLeft(key));
        QVERIFY(!isLeft(key, Qt::ControlModifier));
    }
}

void TestSelectionKeys::otherControlKeysDoNothing()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.select({0});
    f.handler.m_selectedItemId = 0;
    control(Qt::Key_B);
    control(Qt::Key_Insert);
    QVERIFY(f.model.journal.isEmpty());
    QVERIFY(f.selections.isEmpty());
    QCOMPARE(f.handler.m_selectedItemId, 0);
}

QTEST_MAIN(TestSelectionKeys)
#include "tst_selection_keys.moc"
