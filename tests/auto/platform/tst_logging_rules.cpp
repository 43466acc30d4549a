#include <HoxLogger/ihox_logger.h>

#include <QCoreApplication>
#include <QTest>

/// What the environment says when the process starts; a program of its own, because Qt reads it only once.
class TestLoggingRules : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void environmentTurnsDebugAndTraceOn();
    void environmentLeavesOtherNamesAlone();
};

void TestLoggingRules::environmentTurnsDebugAndTraceOn()
{
    const IHoxLogger& logger = Hox::HoxLoggerBootstrap::getHoxRootLogger().logger("Timeline.TimelineView");
    QVERIFY(logger.isEnabled(Hox::Trace));
    QVERIFY(logger.isEnabled(Hox::Debug));
    QVERIFY(logger.isEnabled(Hox::Info));
}

void TestLoggingRules::environmentLeavesOtherNamesAlone()
{
    const IHoxLogger& logger = Hox::HoxLoggerBootstrap::getHoxRootLogger().logger("Workbench.Window");
    QVERIFY(!logger.isEnabled(Hox::Trace));
    QVERIFY(!logger.isEnabled(Hox::Debug));
    QVERIFY(logger.isEnabled(Hox::Info));
}

int main(int argc, char* argv[])
{
    qputenv("QT_LOGGING_RULES", "Timeline.*.debug=true");
    const QCoreApplication application(argc, argv);
    TestLoggingRules test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_logging_rules.moc"
