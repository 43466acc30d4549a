#include <HoxLogger/log_stream_helper.h>

#include <QLatin1String>
#include <QList>
#include <QRect>
#include <QRegularExpression>
#include <QStringView>
#include <QTemporaryFile>
#include <QTest>

#include <cstdio>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <unistd.h>

namespace {

struct Written
{
    Hox::LogLevel level = Hox::Undefined;
    const char* file = nullptr;
    int line = 0;
    const char* function = nullptr;
    QString message;
};

class RecordingLogger : public IHoxLogger
{
public:
    QString name() const override { return "recording"; }
    IHoxLogger& logger(const QString&) override { return *this; }
    bool isEnabled(Hox::LogLevel) const override { return false; }
    void write(Hox::LogLevel level, const char* file, int line, const char* function, const QString& message) override
    {
        written.append({level, file, line, function, message});
    }

    QList<Written> written;
};

class ThrowingLogger : public RecordingLogger
{
public:
    void write(Hox::LogLevel level, const char* file, int line, const char* function, const QString& message) override
    {
        RecordingLogger::write(level, file, line, function, message);
        throw std::runtime_error("disk full");
    }
};

/// A part whose operator leaves the stream with blanks and quotes on.
struct Untidy
{
};

QDebug operator<<(QDebug debug, const Untidy&)
{
    debug.setAutoInsertSpaces(true);
    return debug.quote() << "untidy";
}

struct Unprintable
{
};

QDebug operator<<(QDebug, const Unprintable&)
{
    throw std::runtime_error("unprintable");
}

using Fill = std::function<void(Hox::LogStreamHelper&)>;

QString messageOf(const Fill& fill)
{
    RecordingLogger logger;
    {
        Hox::LogStreamHelper helper(logger, Hox::Info, "file.cpp", 7, "void f()");
        fill(helper);
    }
    return logger.written.size() == 1 ? logger.written[0].message : QString("not written exactly once");
}

template <typename T>
Fill part(const T& value)
{
    return [value](Hox::LogStreamHelper& helper) { helper << value; };
}

QByteArray standardErrorOf(const std::function<void()>& action)
{
    QTemporaryFile file;
    if (!file.open())
        return "no temporary file";
    std::fflush(stderr);
    const int saved = dup(STDERR_FILENO);
    dup2(file.handle(), STDERR_FILENO);
    action();
    std::fflush(stderr);
    dup2(saved, STDERR_FILENO);
    close(saved);
    file.seek(0);
    return file.readAll();
}

} // namespace

Q_DECLARE_METATYPE(Fill)

class TestLogStreamHelper : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void writesOnceWhenDestroyed();
    void writesWhatItWasConstructedWith();
    void writesAlsoWhenTheLevelIsOff();
    void writesAlsoWhenEmpty();
    void acceptsEveryKindOfPart_data();
    void acceptsEveryKindOfPart();
    void partsFollowEachOtherWithoutBlanks();
    void temporaryTakesParts();
    void partsWithTheirOwnSpacingDoNotSpoilTheNext();
    void manipulatorsHoldForThePartsThatFollow();
    void exceptionOfTheLoggerGoesNoFurther();
    void exceptionOfAPartReachesTheCaller();
    void cannotBeCopiedOrMoved();
};

void TestLogStreamHelper::init()
{
    QTest::failOnWarning(QRegularExpression(".?"));
}

void TestLogStreamHelper::writesOnceWhenDestroyed()
{
    RecordingLogger logger;
    {
        Hox::LogStreamHelper helper(logger, Hox::Info, "file.cpp", 7, "void f()");
        helper << "one";
        helper << "two";
        QCOMPARE(logger.written.size(), 0);
    }
    QCOMPARE(logger.written.size(), 1);
    QCOMPARE(logger.written[0].message, QString("onetwo"));
}

void TestLogStreamHelper::writesWhatItWasConstructedWith()
{
    const char* const file = "file.cpp";
    const char* const function = "void f()";
    RecordingLogger logger;
    Hox::LogStreamHelper(logger, Hox::Error, file, 7, function) << "text";
    QCOMPARE(logger.written.size(), 1);
    QCOMPARE(logger.written[0].level, Hox::Error);
    QCOMPARE(logger.written[0].file, file);
    QCOMPARE(logger.written[0].line, 7);
    QCOMPARE(logger.written[0].function, function);
}

void TestLogStreamHelper::writesAlsoWhenTheLevelIsOff()
{
    RecordingLogger logger;
    QVERIFY(!logger.isEnabled(Hox::Trace));
    Hox::LogStreamHelper(logger, Hox::Trace, "file.cpp", 7, "void f()") << "text";
    QCOMPARE(logger.written.size(), 1);
}

void TestLogStreamHelper::writesAlsoWhenEmpty()
{
    QCOMPARE(messageOf([](Hox::LogStreamHelper&) {}), QString(""));
}

void TestLogStreamHelper::acceptsEveryKindOfPart_data()
{
    QTest::addColumn<Fill>("fill");
    QTest::addColumn<QString>("message");
    const QString umlaut = QString::fromUtf8("\xC3\xA4");

    QTest::newRow("QString") << part(QString("a \"b\" \\ ") + umlaut) << "a \"b\" \\ " + umlaut;
    QTest::newRow("null QString") << part(QString()) << "";
    QTest::newRow("QLatin1String") << part(QLatin1String("a\xE4")) << "a" + umlaut;
    QTest::newRow("QStringView") << part(QStringView(u"a\"b")) << "a\"b";
    QTest::newRow("QByteArray") << part(QByteArray("a\"b\xC3\xA4")) << "a\"b" + umlaut;
    QTest::newRow("char text") << part(static_cast<const char*>("a\"b\xC3\xA4")) << "a\"b" + umlaut;
    QTest::newRow("null char text") << part(static_cast<const char*>(nullptr)) << "";
    QTest::newRow("literal") << Fill([](Hox::LogStreamHelper& helper) { helper << "a\"b"; }) << "a\"b";
    QTest::newRow("std::string") << part(std::string("a\xC3\xA4")) << "a" + umlaut;
    QTest::newRow("char") << part('x') << "x";
    QTest::newRow("QChar") << part(QChar(0xE4)) << umlaut;
    QTest::newRow("true") << part(true) << "true";
    QTest::newRow("false") << part(false) << "false";
    QTest::newRow("qint8") << part(qint8(-128)) << "-128";
    QTest::newRow("quint8") << part(quint8(65)) << "65";
    QTest::newRow("short") << part(short(-5)) << "-5";
    QTest::newRow("ushort") << part(ushort(65535)) << "65535";
    QTest::newRow("int") << part(std::numeric_limits<int>::min()) << "-2147483648";
    QTest::newRow("uint") << part(std::numeric_limits<uint>::max()) << "4294967295";
    QTest::newRow("long") << part(-7L) << "-7";
    QTest::newRow("ulong") << part(7UL) << "7";
    QTest::newRow("qint64") << part(std::numeric_limits<qint64>::min()) << "-9223372036854775808";
    QTest::newRow("quint64") << part(std::numeric_limits<quint64>::max()) << "18446744073709551615";
    QTest::newRow("double") << part(1.5) << "1.5";
    QTest::newRow("float") << part(-0.25F) << "-0.25";
    QTest::newRow("QRect") << part(QRect(1, 2, 3, 4)) << "QRect(1,2 3x4)";
    QTest::newRow("list") << part(QList<int>{1, 2}) << "QList(1, 2)";
    QTest::newRow("enumeration") << part(Hox::Warning) << "150";
    QTest::newRow("enumeration with names") << part(Qt::Horizontal) << "Qt::Horizontal";
}

void TestLogStreamHelper::acceptsEveryKindOfPart()
{
    QFETCH(Fill, fill);
    QTEST(messageOf(fill), "message");
}

void TestLogStreamHelper::partsFollowEachOtherWithoutBlanks()
{
    const QString message = messageOf([](Hox::LogStreamHelper& helper) {
        helper << "track " << 5 << ':' << QString("name") << QByteArray("/") << true << 1.5 << ' ';
    });
    QCOMPARE(message, QString("track 5:name/true1.5 "));
}

void TestLogStreamHelper::temporaryTakesParts()
{
    RecordingLogger logger;
    Hox::LogStreamHelper(logger, Hox::Info, "file.cpp", 7, "void f()") << 1 << '+' << 1;
    QCOMPARE(logger.written.size(), 1);
    QCOMPARE(logger.written[0].message, QString("1+1"));
}

void TestLogStreamHelper::partsWithTheirOwnSpacingDoNotSpoilTheNext()
{
    const QString message = messageOf(
        [](Hox::LogStreamHelper& helper) { helper << Untidy() << QString("|") << QRect(0, 0, 1, 1) << QString("|"); });
    QCOMPARE(message, QString("untidy |QRect(0,0 1x1)|"));
}

void TestLogStreamHelper::manipulatorsHoldForThePartsThatFollow()
{
    const QString message =
        messageOf([](Hox::LogStreamHelper& helper) { helper << Qt::hex << 255 << Qt::dec << ' ' << 255; });
    QCOMPARE(message, QString("ff 255"));
}

void TestLogStreamHelper::exceptionOfTheLoggerGoesNoFurther()
{
    ThrowingLogger logger;
    const QByteArray errors =
        standardErrorOf([&logger] { Hox::LogStreamHelper(logger, Hox::Info, "file.cpp", 7, "void f()") << "text"; });
    QCOMPARE(logger.written.size(), 1);
    QCOMPARE(errors, QByteArray("HoxLogger: a message was lost, because its logger threw an exception\n"));
}

void TestLogStreamHelper::exceptionOfAPartReachesTheCaller()
{
    RecordingLogger logger;
    const auto log = [&logger] {
        Hox::LogStreamHelper(logger, Hox::Info, "file.cpp", 7, "void f()") << "before " << Unprintable();
    };
    QVERIFY_EXCEPTION_THROWN(log(), std::runtime_error);
    QCOMPARE(logger.written.size(), 1);
    QCOMPARE(logger.written[0].message, QString("before "));
}

void TestLogStreamHelper::cannotBeCopiedOrMoved()
{
    QVERIFY(!std::is_copy_constructible_v<Hox::LogStreamHelper>);
    QVERIFY(!std::is_copy_assignable_v<Hox::LogStreamHelper>);
    QVERIFY(!std::is_move_constructible_v<Hox::LogStreamHelper>);
    QVERIFY(!std::is_move_assignable_v<Hox::LogStreamHelper>);
}

QTEST_GUILESS_MAIN(TestLogStreamHelper)
#include "tst_log_stream_helper.moc"
