#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <workbench/csv_import_memory.h>

using namespace VeskTimeline::Kit;
using Workbench::CsvImportMemory;

namespace {

CsvOptions everything()
{
    CsvOptions options;
    options.columns = {{CsvField::Track, {"Room", "Floor"}}, {CsvField::Start, {"Day"}}, {CsvField::End, {}}};
    options.delimiter = u'\t';
    options.decimalPoint = u',';
    options.encoding = CsvEncoding::Windows1252;
    options.timeUnit = CsvTimeUnit::Microseconds;
    options.dateFormat = "dd.MM.yyyy 'Uhr' HH:mm";
    options.timeZone = "Europe/Berlin";
    return options;
}

const QStringList header{"Day", "Room", "Floor"};

} // namespace

class TestCsvImportMemory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_settings = std::make_unique<QSettings>(m_dir.filePath("x.ini"), QSettings::IniFormat); }
    void cleanup() { m_settings->clear(); }

    void nothingIsKnownAtFirst()
    {
        const CsvImportMemory memory(*m_settings);
        QVERIFY(!memory.find(header));
        QVERIFY(!memory.find({}));
        QCOMPARE(memory.count(), 0);
    }

    void everyOptionOutlivesTheProgram()
    {
        CsvImportMemory(*m_settings).remember(header, {everything(), true});
        m_settings->sync();
        m_settings = std::make_unique<QSettings>(m_dir.filePath("x.ini"), QSettings::IniFormat);
        const auto found = CsvImportMemory(*m_settings).find(header);
        QVERIFY(found);
        QVERIFY(found->isSilent);
        QCOMPARE(found->options.columns, everything().columns);
        QVERIFY(found->options == everything());
    }

    void allEncodingsUnitsAndFieldsAreKept()
    {
        CsvImportMemory memory(*m_settings);
        for (int i = 0; i <= static_cast<int>(CsvField::Description); ++i) {
            CsvOptions options;
            options.columns = {{static_cast<CsvField>(i), {"Day"}}};
            options.encoding = static_cast<CsvEncoding>(i % 4);
            options.timeUnit = static_cast<CsvTimeUnit>(i % 4);
            memory.remember(header, {options, false});
            QVERIFY(memory.find(header)->options == options);
            QVERIFY(!memory.find(header)->isSilent);
        }
    }

    void letterCaseAndBlanksOfAHeaderDoNotMatterButOrderDoes()
    {
        CsvImportMemory memory(*m_settings);
        memory.remember(header, {everything(), false});
        QVERIFY(memory.find({" day", "ROOM ", "Floor"}));
        QVERIFY(!memory.find({"Room", "Day", "Floor"}));
        QVERIFY(!memory.find({"Day", "Room"}));
        QVERIFY(!memory.find({"Day", "RoomFloor"}));
        QVERIFY(!memory.find({"Day", "Room", "Floor", ""}));
    }

    void columnsAreNamedAsTheFileAtHandNamesThem()
    {
        CsvImportMemory memory(*m_settings);
        memory.remember(header, {everything(), false});
        const auto found = memory.find({"day", "room", "FLOOR "});
        QVERIFY(found);
        QCOMPARE(found->options.columns.value(CsvField::Track), QStringList({"room", "FLOOR "}));
        QCOMPARE(found->options.columns.value(CsvField::Start), QStringList{"day"});
    }

    void columnsOfAnotherWayToSplitTheLineAreKeptAsTheyAre()
    {
        CsvImportMemory memory(*m_settings);
        memory.remember({"Day;Room;Floor"}, {everything(), false});
        QVERIFY(memory.find({"day;room;floor"})->options == everything());
    }

    void rememberingAgainReplaces()
    {
        CsvImportMemory memory(*m_settings);
        memory.remember(header, {everything(), true});
        memory.remember(header, {{}, false});
        QVERIFY(memory.find(header)->options == CsvOptions());
        QVERIFY(!memory.find(header)->isSilent);
        QCOMPARE(memory.count(), 1);
    }

    void theLeastRecentlyUsedAreForgotten()
    {
        CsvImportMemory memory(*m_settings);
        for (int i = 0; i < CsvImportMemory::mostKept; ++i)
            memory.remember({QString::number(i)}, {});
        QCOMPARE(memory.count(), CsvImportMemory::mostKept);
        memory.touch({"0"});
        memory.remember({"new"}, {});
        QCOMPARE(memory.count(), CsvImportMemory::mostKept);
        QVERIFY(memory.find({"new"}));
        QVERIFY(memory.find({"0"}));
        QVERIFY(!memory.find({"1"}));
        QVERIFY(memory.find({"2"}));
    }

    void touchingAnUnknownHeaderMakesNoEntry()
    {
        CsvImportMemory memory(*m_settings);
        memory.touch(header);
        QCOMPARE(memory.count(), 0);
    }

    void oneHeaderOrAllCanBeForgotten()
    {
        m_settings->setValue("other/key", 7);
        CsvImportMemory memory(*m_settings);
        memory.remember(header, {everything(), true});
        memory.remember({"a"}, {});
        memory.forget(header);
        QVERIFY(!memory.find(header));
        QVERIFY(memory.find({"a"}));
        memory.forgetAll();
        QCOMPARE(memory.count(), 0);
        QCOMPARE(m_settings->value("other/key").toInt(), 7);
    }

    void damagedEntriesCountAsNotThere_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("nothing") << QVariant(QString());
        QTest::newRow("no JSON") << QVariant(QStringLiteral("{\"options\": {"));
        QTest::newRow("a number") << QVariant(17);
        QTest::newRow("bytes") << QVariant(QByteArray("\xff\x00\xfe", 3));
        QTest::newRow("a list") << QVariant(QStringLiteral("[1, 2]"));
        QTest::newRow("no options") << QVariant(QStringLiteral("{\"silent\": true}"));
        QTest::newRow("options of a wrong kind") << QVariant(QStringLiteral("{\"options\": [1]}"));
        const auto add = [](const char* name, const char* option) {
            QTest::newRow(name) << QVariant(
                QStringLiteral("{\"silent\": true, \"options\": {%1}}").arg(QLatin1String(option)));
        };
        add("an unknown encoding", "\"encoding\": \"EBCDIC\"");
        add("an unknown unit", "\"timeUnit\": \"weeks\"");
        add("a long delimiter", "\"delimiter\": \"ab\"");
        add("an empty delimiter", "\"delimiter\": \"\"");
        add("a number for a delimiter", "\"delimiter\": 44");
        add("a strange decimal point", "\"decimalPoint\": \"x\"");
        add("an unknown zone", "\"timeZone\": \"Moon/Tranquility\"");
        add("an unknown field", "\"columns\": {\"colour of magic\": [\"a\"]}");
        add("columns that are no list", "\"columns\": {\"start\": \"a\"}");
        add("columns that are no names", "\"columns\": {\"start\": [1]}");
        add("columns that are no object", "\"columns\": 3");
    }
    void damagedEntriesCountAsNotThere()
    {
        QFETCH(QVariant, value);
        CsvImportMemory memory(*m_settings);
        memory.remember(header, {everything(), true});
        const QString key = m_settings->allKeys().value(0);
        m_settings->setValue(key, value);
        QVERIFY(!memory.find(header));
        memory.touch(header);
        QVERIFY(!memory.find(header));
        memory.remember({"another"}, {});
        QVERIFY(memory.find({"another"}));
        memory.remember(header, {everything(), false});
        QVERIFY(memory.find(header)->options == everything());
    }

    void aDamagedCounterDoesNotKeepNewEntriesOut()
    {
        CsvImportMemory memory(*m_settings);
        m_settings->setValue("csvImports/x", "{\"use\": 1e300}");
        for (int i = 0; i < 2 * CsvImportMemory::mostKept; ++i)
            memory.remember({QString::number(i)}, {});
        QVERIFY(memory.count() <= CsvImportMemory::mostKept);
        QVERIFY(memory.find({QString::number(2 * CsvImportMemory::mostKept - 1)}));
    }

private:
    QTemporaryDir m_dir;
    std::unique_ptr<QSettings> m_settings;
};

QTEST_GUILESS_MAIN(TestCsvImportMemory)
#include "tst_csv_import_memory.moc"
