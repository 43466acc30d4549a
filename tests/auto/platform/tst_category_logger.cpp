#include "message_capture.h"

#include <HoxLogger/ihox_logger.h>
#include <HoxLogger/log_stream_helper.h>

#include <QLoggingCategory>
#include <QRegularExpression>
#include <QTest>

#include <atomic>
#include <thread>
#include <vector>

Q_DECLARE_METATYPE(Hox::LogLevel)

namespace {

IHoxLogger& rootLogger()
{
    return Hox::HoxLoggerBootstrap::getHoxRootLogger();
}

IHoxLogger& testLogger()
{
    return rootLogger().logger("Timeline.Test");
}

class SilentLogger : public IHoxLogger
{
public:
    QString name() const override { return "silent"; }
    IHoxLogger& logger(const QString&) override { return *this; }
    bool isEnabled(Hox::LogLevel) const override { return false; }
    void write(Hox::LogLevel, const char*, int, const char*, const QString&) override {}
};

} // namespace

class TestCategoryLogger : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void levelsHaveTheirNumbers_data();
    void levelsHaveTheirNumbers();

    void rootHasAnEmptyName();
    void childCarriesItsFullName();
    void sameNameGivesTheSameObject();
    void differentNamesGiveDifferentObjects();
    void everyLoggerFindsTheOthersByFullName();
    void emptyNameStandsForTheRoot();
    void loggersMadeInSeveralThreadsAreTheSame();

    void infoAndAboveAreOn_data();
    void infoAndAboveAreOn();
    void rulesTurnLevelsOnAndOff();
    void ruleForOneLoggerLeavesOthersAlone();

    void levelsGoOutAsMessageTypes_data();
    void levelsGoOutAsMessageTypes();
    void messageGoesOutAsItIs_data();
    void messageGoesOutAsItIs();
    void messageCarriesItsOrigin();
    void originMayBeUnknown();
    void disabledLevelIsDropped();
    void rootWritesToTheDefaultCategory();
    void debugOfTheRootIsOffByDefault();
    void signatureStartsTheMessage();

    void ownRootReplacesTheDefault();
    void nullRestoresTheDefault();
    void loggersOfTheFormerRootKeepWorking();
};

void TestCategoryLogger::init()
{
    QTest::failOnWarning(QRegularExpression(".?"));
}

void TestCategoryLogger::cleanup()
{
    Hox::HoxLoggerBootstrap::setHoxRootLogger(nullptr);
    QLoggingCategory::setFilterRules(QString());
}

void TestCategoryLogger::levelsHaveTheirNumbers_data()
{
    QTest::addColumn<Hox::LogLevel>("level");
    QTest::addColumn<int>("number");
    QTest::newRow("undefined") << Hox::Undefined << 0;
    QTest::newRow("trace") << Hox::Trace << 64;
    QTest::newRow("debug") << Hox::Debug << 96;
    QTest::newRow("info") << Hox::Info << 128;
    QTest::newRow("warning") << Hox::Warning << 150;
    QTest::newRow("error") << Hox::Error << 182;
    QTest::newRow("fatal") << Hox::Fatal << 214;
}

void TestCategoryLogger::levelsHaveTheirNumbers()
{
    QFETCH(Hox::LogLevel, level);
    QTEST(static_cast<int>(level), "number");
}

void TestCategoryLogger::rootHasAnEmptyName()
{
    QCOMPARE(rootLogger().name(), QString());
}

void TestCategoryLogger::childCarriesItsFullName()
{
    QCOMPARE(rootLogger().logger("Timeline.TimelineView").name(), QString("Timeline.TimelineView"));
}

void TestCategoryLogger::sameNameGivesTheSameObject()
{
    QCOMPARE(&rootLogger().logger("Timeline.Same"), &rootLogger().logger("Timeline.Same"));
}

void TestCategoryLogger::differentNamesGiveDifferentObjects()
{
    QVERIFY(&rootLogger().logger("Timeline.One") != &rootLogger().logger("Timeline.Two"));
    QVERIFY(&rootLogger().logger("Timeline") != &rootLogger().logger("Timeline.One"));
}

void TestCategoryLogger::everyLoggerFindsTheOthersByFullName()
{
    IHoxLogger& parent = rootLogger().logger("Timeline");
    IHoxLogger& child = parent.logger("Timeline.Child");
    QCOMPARE(child.name(), QString("Timeline.Child"));
    QCOMPARE(&child, &rootLogger().logger("Timeline.Child"));
    QCOMPARE(&child.logger("Timeline"), &parent);
}

void TestCategoryLogger::emptyNameStandsForTheRoot()
{
    QCOMPARE(&rootLogger().logger(QString()), &rootLogger());
    QCOMPARE(&testLogger().logger(""), &rootLogger());
}

void TestCategoryLogger::loggersMadeInSeveralThreadsAreTheSame()
{
    constexpr int threadCount = 4;
    constexpr int nameCount = 200;
    std::vector<std::vector<IHoxLogger*>> found(threadCount);
    std::atomic<int> waiting = threadCount;
    std::vector<std::thread> threads;
    for (auto& loggers : found) {
        threads.emplace_back([&loggers, &waiting] {
            --waiting;
            while (waiting > 0)
                std::this_thread::yield();
            for (int i = 0; i < nameCount; ++i)
                loggers.push_back(&rootLogger().logger(QString("Threads.%1").arg(i)));
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    for (int i = 0; i < nameCount; ++i)
        QCOMPARE(found[0][static_cast<size_t>(i)]->name(), QString("Threads.%1").arg(i));
    for (const auto& loggers : found)
        QCOMPARE(loggers, found[0]);
}

void TestCategoryLogger::infoAndAboveAreOn_data()
{
    QTest::addColumn<Hox::LogLevel>("level");
    QTest::addColumn<bool>("isOn");
    QTest::newRow("undefined") << Hox::Undefined << false;
    QTest::newRow("trace") << Hox::Trace << false;
    QTest::newRow("debug") << Hox::Debug << false;
    QTest::newRow("info") << Hox::Info << true;
    QTest::newRow("warning") << Hox::Warning << true;
    QTest::newRow("error") << Hox::Error << true;
    QTest::newRow("fatal") << Hox::Fatal << true;
}

void TestCategoryLogger::infoAndAboveAreOn()
{
    QFETCH(Hox::LogLevel, level);
    QTEST(testLogger().isEnabled(level), "isOn");
}

void TestCategoryLogger::rulesTurnLevelsOnAndOff()
{
    IHoxLogger& early = testLogger();
    QLoggingCategory::setFilterRules("Timeline.*.debug=true\nTimeline.*.info=false\nTimeline.*.critical=false");
    IHoxLogger& late = rootLogger().logger("Timeline.MadeAfterTheRule");
    for (const IHoxLogger* logger : {&early, &late}) {
        QVERIFY(logger->isEnabled(Hox::Trace));
        QVERIFY(logger->isEnabled(Hox::Debug));
        QVERIFY(!logger->isEnabled(Hox::Info));
        QVERIFY(logger->isEnabled(Hox::Warning));
        QVERIFY(!logger->isEnabled(Hox::Error));
        QVERIFY(!logger->isEnabled(Hox::Fatal));
    }
}

void TestCategoryLogger::ruleForOneLoggerLeavesOthersAlone()
{
    IHoxLogger& other = rootLogger().logger("Timeline.Other");
    QLoggingCategory::setFilterRules("Timeline.Test.debug=true");
    QVERIFY(testLogger().isEnabled(Hox::Debug));
    QVERIFY(!other.isEnabled(Hox::Debug));
}

void TestCategoryLogger::levelsGoOutAsMessageTypes_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QtMsgType>("type");
    QTest::newRow("undefined") << int(Hox::Undefined) << QtDebugMsg;
    QTest::newRow("trace") << int(Hox::Trace) << QtDebugMsg;
    QTest::newRow("debug") << int(Hox::Debug) << QtDebugMsg;
    QTest::newRow("just below info") << Hox::Info - 1 << QtDebugMsg;
    QTest::newRow("info") << int(Hox::Info) << QtInfoMsg;
    QTest::newRow("just below warning") << Hox::Warning - 1 << QtInfoMsg;
    QTest::newRow("warning") << int(Hox::Warning) << QtWarningMsg;
    QTest::newRow("just below error") << Hox::Error - 1 << QtWarningMsg;
    QTest::newRow("error") << int(Hox::Error) << QtCriticalMsg;
    QTest::newRow("fatal") << int(Hox::Fatal) << QtCriticalMsg;
}

void TestCategoryLogger::levelsGoOutAsMessageTypes()
{
    QFETCH(int, level);
    QFETCH(QtMsgType, type);
    QLoggingCategory::setFilterRules("Timeline.*.debug=true");
    MessageCapture capture;
    testLogger().write(static_cast<Hox::LogLevel>(level), "file.cpp", 7, "void f()", "text");
    const auto messages = capture.take();
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages[0].type, type);
    QCOMPARE(messages[0].category, QByteArray("Timeline.Test"));
    QCOMPARE(messages[0].text, QString("text"));
}

void TestCategoryLogger::messageGoesOutAsItIs_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << "";
    QTest::newRow("quotes and escapes") << R"(a "quoted" \n name)";
    QTest::newRow("blanks at both ends") << " text ";
    QTest::newRow("place holders") << "%s %d %1 100%";
    QTest::newRow("beyond ASCII") << QString::fromUtf8("Spur \xC3\xA4\xE2\x82\xAC \xF0\x9F\x95\x92");
    QTest::newRow("several lines") << "one\ntwo\n";
}

void TestCategoryLogger::messageGoesOutAsItIs()
{
    QFETCH(QString, text);
    MessageCapture capture;
    testLogger().write(Hox::Info, "file.cpp", 7, "void f()", text);
    const auto messages = capture.take();
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages[0].text, text);
}

void TestCategoryLogger::messageCarriesItsOrigin()
{
    MessageCapture capture;
    testLogger().write(Hox::Error, "some/file.cpp", 4711, "void f(int)", "text");
    const auto messages = capture.take();
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages[0].file, QByteArray("some/file.cpp"));
    QCOMPARE(messages[0].line, 4711);
    QCOMPARE(messages[0].function, QByteArray("void f(int)"));
}

void TestCategoryLogger::originMayBeUnknown()
{
    MessageCapture capture;
    testLogger().write(Hox::Error, nullptr, 0, nullptr, "text");
    const auto messages = capture.take();
    QCOMPARE(messages.size(), 1);
    QVERIFY(messages[0].file.isNull());
    QVERIFY(messages[0].function.isNull());
    QCOMPARE(messages[0].text, QString("text"));
}

void TestCategoryLogger::disabledLevelIsDropped()
{
    MessageCapture capture;
    testLogger().write(Hox::Debug, "file.cpp", 7, "void f()", "text");
    QCOMPARE(capture.take().size(), 0);

    QLoggingCategory::setFilterRules("Timeline.*.critical=false");
    testLogger().write(Hox::Fatal, "file.cpp", 7, "void f()", "text");
    QCOMPARE(capture.take().size(), 0);
}

void TestCategoryLogger::rootWritesToTheDefaultCategory()
{
    MessageCapture capture;
    rootLogger().write(Hox::Warning, "file.cpp", 7, "void f()", "text");
    const auto messages = capture.take();
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages[0].category, QByteArray("default"));
}

void TestCategoryLogger::debugOfTheRootIsOffByDefault()
{
    QVERIFY(!rootLogger().isEnabled(Hox::Debug));
    QLoggingCategory::setFilterRules("default.debug=true");
    QVERIFY(rootLogger().isEnabled(Hox::Debug));
}

void TestCategoryLogger::signatureStartsTheMessage()
{
    MessageCapture capture;
    const int line = __LINE__ + 1;
    Hox::LogStreamHelper(testLogger(), Hox::Warning, __FILE__, __LINE__, Q_FUNC_INFO) << Q_FUNC_INFO << " failed";
    const auto messages = capture.take();
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages[0].text, QString(Q_FUNC_INFO) + " failed");
    QCOMPARE(messages[0].function, QByteArray(Q_FUNC_INFO));
    QCOMPARE(messages[0].file, QByteArray(__FILE__));
    QCOMPARE(messages[0].line, line);
}

void TestCategoryLogger::ownRootReplacesTheDefault()
{
    SilentLogger own;
    Hox::HoxLoggerBootstrap::setHoxRootLogger(&own);
    QCOMPARE(&rootLogger(), &own);
}

void TestCategoryLogger::nullRestoresTheDefault()
{
    IHoxLogger& defaultRoot = rootLogger();
    IHoxLogger& defaultChild = testLogger();
    SilentLogger own;
    Hox::HoxLoggerBootstrap::setHoxRootLogger(&own);
    Hox::HoxLoggerBootstrap::setHoxRootLogger(nullptr);
    QCOMPARE(&rootLogger(), &defaultRoot);
    QCOMPARE(&testLogger(), &defaultChild);
}

void TestCategoryLogger::loggersOfTheFormerRootKeepWorking()
{
    IHoxLogger& former = testLogger();
    SilentLogger own;
    Hox::HoxLoggerBootstrap::setHoxRootLogger(&own);
    MessageCapture capture;
    former.write(Hox::Info, "file.cpp", 7, "void f()", "text");
    QCOMPARE(capture.take().size(), 1);
}

QTEST_GUILESS_MAIN(TestCategoryLogger)
#include "tst_category_logger.moc"
