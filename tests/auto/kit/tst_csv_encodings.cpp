#include "support/gzip.h"

#include <VeskTimelineKit/csv_reader.h>

#include <QBuffer>
#include <QStringEncoder>
#include <QTest>

using namespace VeskTimeline::Kit;

namespace {

Result<Document> read(QByteArray text, std::optional<CsvEncoding> encoding = {})
{
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    ReadOptions options;
    options.csv.encoding = encoding;
    return readCsv(buffer, "f.csv", options);
}

QString label(const Result<Document>& result)
{
    return result ? result.value().tracks().front().items.back().label : result.error().text();
}

QStringList guesses(const Result<Document>& result)
{
    return result ? result.value().warnings().filter("the text is taken") : QStringList{"refused"};
}

QByteArray encoded(QStringConverter::Encoding encoding, const QString& text)
{
    QStringEncoder encoder(encoding);
    return encoder.encode(text);
}

const QString text = QString::fromUtf8("begin,finish,title\n1,2,Größe – 日本 𝄞\n");
const QString textLabel = QString::fromUtf8("Größe – 日本 𝄞");

} // namespace

class TestCsvEncodings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void unicodeIsReadWithAndWithoutMark_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("isGuessed");
        using C = QStringConverter;
        QTest::newRow("UTF-8") << text.toUtf8() << false;
        QTest::newRow("UTF-8, mark") << "\xEF\xBB\xBF" + text.toUtf8() << false;
        QTest::newRow("UTF-16 LE, mark") << "\xFF\xFE" + encoded(C::Utf16LE, text) << false;
        QTest::newRow("UTF-16 BE, mark") << "\xFE\xFF" + encoded(C::Utf16BE, text) << false;
        QTest::newRow("UTF-16 LE") << encoded(C::Utf16LE, text) << true;
        QTest::newRow("UTF-16 BE") << encoded(C::Utf16BE, text) << true;
    }
    void unicodeIsReadWithAndWithoutMark()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, isGuessed);
        const auto result = read(bytes);
        QCOMPARE(label(result), textLabel);
        QCOMPARE(guesses(result), isGuessed ? QStringList{"f.csv: the text is taken for UTF-16"} : QStringList());
    }

    void charactersOnTheEdgesOfBlocksAreWhole()
    {
        // Four bytes each, in all positions to the ends of the blocks.
        const QString clef = QString::fromUtf8("𝄞");
        for (int shift = 0; shift < 4; ++shift) {
            QString big = "begin,finish,title\n" + QString(shift, u'1') + "1,2,x\n";
            for (int i = 0; i < 2000; ++i)
                big += "9999,9999," + clef.repeated(100) + "\n";
            for (const auto encoding : {QStringConverter::Utf16LE, QStringConverter::Utf16BE, QStringConverter::Utf8})
                QCOMPARE(label(read(encoded(encoding, QChar(QChar::ByteOrderMark) + big))), clef.repeated(100));
        }
    }

    void windows1252IsFound()
    {
        const QByteArray bytes = "begin,finish,title\n1,2,\x80 caf\xE9 \x93x\x94 \x96\n";
        const auto result = read(bytes);
        QCOMPARE(label(result), QString::fromUtf8("€ café “x” –"));
        QCOMPARE(guesses(result), QStringList{"f.csv: the text is taken for Windows-1252"});
        QCOMPARE(label(read(bytes, CsvEncoding::Windows1252)), QString::fromUtf8("€ café “x” –"));
        QCOMPARE(guesses(read(bytes, CsvEncoding::Windows1252)), QStringList());
        QCOMPARE(label(read(bytes, CsvEncoding::Latin1)).at(0), QChar(0x80));
    }

    void allOfWindows1252IsRead()
    {
        QByteArray bytes = "begin,finish,title\n1,2,\"";
        for (int c = 0x80; c < 0x100; ++c)
            bytes += static_cast<char>(c);
        const QString characters = label(read(bytes + "\"\n", CsvEncoding::Windows1252));
        QCOMPARE(characters.size(), 128);
        QCOMPARE(characters.left(32), QString::fromUtf16(u"\u20AC\u0081\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030"
                                                         u"\u0160\u2039\u0152\u008D\u017D\u008F\u0090\u2018\u2019\u201C"
                                                         u"\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\u009D"
                                                         u"\u017E\u0178"));
        for (int c = 0xA0; c < 0x100; ++c)
            QCOMPARE(characters.at(c - 0x80).unicode(), c);
    }

    void latin1IsFoundByWhatWindows1252DoesNotHave()
    {
        const auto result = read("begin,finish,title\n1,2,\x81 caf\xE9\n");
        QCOMPARE(label(result), QString::fromUtf8("\u0081 café"));
        QCOMPARE(guesses(result), QStringList{"f.csv: the text is taken for Latin-1"});
    }

    void whatIsNotUtf8OnlyFarBehindIsFoundToo()
    {
        const QByteArray bytes =
            "begin,finish,title\n" + QByteArray("1,2,xxxxxxxxxxxxxx\n").repeated(50'000) + "1,2,caf\xE9\n";
        const auto result = read(bytes);
        QCOMPARE(label(result), QString::fromUtf8("café"));
        QCOMPARE(result.value().itemCount(), 50'001);
        QCOMPARE(guesses(result), QStringList{"f.csv: the text is taken for Windows-1252"});
        QCOMPARE(label(read(bytes, CsvEncoding::Utf8)), "f.csv:50002: not UTF-8 text");
        QCOMPARE(label(read("\xEF\xBB\xBF" + bytes)), "f.csv:50002: not UTF-8 text");
    }

    void brokenUtf16IsToldWithItsLine()
    {
        QByteArray bytes = encoded(QStringConverter::Utf16LE, "begin,finish,title\n1,2,x\n1,2,");
        QCOMPARE(label(read(bytes + QByteArray("\x00\xD8y\0\n\0", 6))), "f.csv:3: not UTF-16 text");
        QCOMPARE(label(read(bytes + QByteArray("\x00\xDC\n\0", 4))), "f.csv:3: not UTF-16 text");
        QCOMPARE(label(read(bytes + 'y')), "f.csv:3: not UTF-16 text");
        QCOMPARE(label(read(bytes + QByteArray("\x00\xD8", 2))), "f.csv:3: not UTF-16 text");
    }

    void packedFilesAreRead()
    {
        QCOMPARE(label(read(gzipped(text.toUtf8()))), textLabel);
        QCOMPARE(label(read(gzipped(encoded(QStringConverter::Utf16BE, text)))), textLabel);
        QCOMPARE(label(read(gzipped(text.toUtf8()) + gzipped("3,4,more\n"))), "more");
    }

    void brokenPackedFilesAreRefused()
    {
        QCOMPARE(label(read(gzipped(text.toUtf8()).chopped(12))), "f.csv: the packed data ends before its end");
        QByteArray broken = gzipped(QByteArray("begin,finish,title\n1,2,abcdefghijklmnopqrstuvwxyz\n"));
        broken[12] = static_cast<char>(broken[12] ^ 0x55);
        broken[20] = static_cast<char>(broken[20] ^ 0x55);
        QVERIFY(!read(broken));
        QCOMPARE(label(read("\x1f\x8bnonsense")), "f.csv: the packed data is broken");
    }

    void aPackedFileThatSwellsIsRefused()
    {
        const QByteArray bomb = gzipped("begin,finish,title\n1,2," + QByteArray(900'000, 'x') + "\n" +
                                        QByteArray("1,2," + QByteArray(900'000, 'x') + "\n").repeated(60));
        QVERIFY2(label(read(bomb)).endsWith("the packed data swells to more than 100 times its size"),
                 qPrintable(label(read(bomb)).left(200)));
    }
};

QTEST_APPLESS_MAIN(TestCsvEncodings)
#include "tst_csv_encodings.moc"
