#include <VeskTimelineKit/csv_preview.h>

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QMutex>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSettings>
#include <QSignalSpy>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <QTimer>
#include <QWaitCondition>

#include <workbench/csv_column_header.h>
#include <workbench/csv_forget_imports.h>
#include <workbench/csv_import_assistant.h>
#include <workbench/csv_import_dialog.h>
#include <workbench/csv_options_form.h>
#include <workbench/csv_preview_model.h>

using namespace VeskTimeline::Kit;
using Workbench::CsvColumnHeader;
using Workbench::CsvImportAssistant;
using Workbench::CsvImportDialog;
using Workbench::CsvImportMemory;
using Workbench::CsvOptionsForm;
using Workbench::CsvPreviewModel;

namespace {

const QStringList header{"Day", "Time", "Room", "Floor", "Text"};

/// Stands for the kit: notes what it is asked for, and answers as it is told to, when it is let.
class FakePreview
{
public:
    Workbench::CsvPreviewFunction function()
    {
        return [state = m_state](const QString&, const CsvOptions& options) { return answer(*state, options); };
    }

    CsvPreview& preview() { return m_state->preview; }
    void refuse(const FileError& error) { m_state->error = error; }
    void hold() { m_state->isHeld = true; }
    void release()
    {
        const QMutexLocker locker(&m_state->mutex);
        m_state->isHeld = false;
        m_state->released.wakeAll();
    }
    QList<CsvOptions> asked() const
    {
        const QMutexLocker locker(&m_state->mutex);
        return m_state->asked;
    }

private:
    struct State
    {
        mutable QMutex mutex;
        QWaitCondition released;
        bool isHeld = false;
        QList<CsvOptions> asked;
        CsvPreview preview;
        std::optional<FileError> error;
    };

    static Result<CsvPreview> answer(State& state, const CsvOptions& options)
    {
        const QMutexLocker locker(&state.mutex);
        state.asked.append(options);
        while (state.isHeld)
            state.released.wait(&state.mutex);
        if (state.error)
            return *state.error;
        CsvPreview preview = state.preview;
        if (options.delimiter == u'#')
            preview.header = QStringList{"all in one"};
        for (auto names = options.columns.begin(); names != options.columns.end(); ++names) {
            preview.options.columns.insert(names.key(), names.value());
            for (const QString& name : names.value()) {
                if (!preview.header.contains(name))
                    preview.problem = QStringLiteral("there is no column ") + name;
            }
        }
        return preview;
    }

    std::shared_ptr<State> m_state = std::make_shared<State>();
};

CsvPreview goodPreview()
{
    CsvPreview preview;
    preview.header = header;
    preview.options.columns = {{CsvField::Start, {"Day", "Time"}}, {CsvField::Label, {"Text"}}};
    preview.options.delimiter = u';';
    preview.options.decimalPoint = u',';
    preview.options.encoding = CsvEncoding::Windows1252;
    preview.options.timeUnit = CsvTimeUnit::Seconds;
    preview.options.dateFormat = "dd.MM.yyyy";
    preview.options.timeZone = "UTC";
    preview.guesses = QStringList{"dates are read as dd.MM.yyyy", "the delimiter is ;"};
    DocumentItem item;
    item.label = "Talk";
    item.start = 0;
    item.duration = 90000;
    preview.records.append({2, {"1.1.1970", "0:00", "Hall", "2", "Talk"}, item, {"2", "Hall"}, {}});
    preview.records.append({3, {"31.2.1970", "0:00", "Hall", "2", "<b>no</b>"}, {}, {}, "no such day"});
    item.duration = DocumentItem::openEnded;
    preview.records.append({4, {"1.1.1970", "0:00", "Hall", "2", "two\nlines"}, item, {"Hall"}, {}});
    return preview;
}

template <typename Widget>
Widget* child(const QWidget& parent, const char* name)
{
    auto* const found = parent.findChild<Widget*>(name);
    if (!found)
        qFatal("no %s", name);
    return found;
}

bool isReady(const QWidget& dialog)
{
    return child<QPushButton>(dialog, "csvImport")->isEnabled();
}

// As with the keyboard: the box opened, the entry gone to and taken.
void choose(QComboBox* box, const QString& text)
{
    const int index = box->findText(text);
    QVERIFY2(index >= 0, qPrintable(text));
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Home);
    for (int i = 0; i < index; ++i)
        QTest::keyClick(box, Qt::Key_Down);
    QCOMPARE(box->currentIndex(), index);
}

void type(QComboBox* box, const QString& text)
{
    box->setFocus();
    box->lineEdit()->selectAll();
    QTest::keyClicks(box->lineEdit(), text);
}

} // namespace

class TestCsvImportDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QCoreApplication::setOrganizationName("tst");
        QCoreApplication::setApplicationName("tst_csv_import_dialog");
        QSettings::setDefaultFormat(QSettings::IniFormat);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_dir.path());
    }
    void init()
    {
        m_fake = FakePreview();
        m_fake.preview() = goodPreview();
        QSettings().clear();
    }

    void eachBoxBeginsWithWhatIsDetected()
    {
        const auto dialog = open();
        QTRY_VERIFY(isReady(*dialog));
        QCOMPARE(child<QComboBox>(*dialog, "delimiter")->currentText(), "Detected: Semicolon");
        QCOMPARE(child<QComboBox>(*dialog, "decimalPoint")->currentText(), "Detected: Comma: 1,5");
        QCOMPARE(child<QComboBox>(*dialog, "encoding")->currentText(), "Detected: Windows-1252");
        QCOMPARE(child<QComboBox>(*dialog, "timeUnit")->currentText(), "Detected: Seconds");
        QCOMPARE(child<QComboBox>(*dialog, "dateFormat")->lineEdit()->placeholderText(), "Detected: dd.MM.yyyy");
        QCOMPARE(child<QComboBox>(*dialog, "timeZone")->lineEdit()->placeholderText(), "Detected: UTC");
        QCOMPARE(useText(*dialog, 0), "Detected: Start 1 of 2");
        QCOMPARE(useText(*dialog, 1), "Detected: Start 2 of 2");
        QCOMPARE(useText(*dialog, 2), "Detected: Attribute");
        QCOMPARE(useText(*dialog, 4), "Detected: Label");
        QVERIFY(dialog->options() == CsvOptions());
        QCOMPARE(m_fake.asked().size(), 1);
    }

    void whatWasSaidIsShownAndAskedFor()
    {
        CsvOptions said;
        said.columns = {{CsvField::Track, {"Floor", "Room"}}};
        said.delimiter = u'~';
        said.decimalPoint = u'.';
        said.encoding = CsvEncoding::Latin1;
        said.timeUnit = CsvTimeUnit::Nanoseconds;
        said.dateFormat = "yyyy|MM|dd";
        said.timeZone = "Europe/Berlin";
        const auto dialog = open(said);
        QTRY_VERIFY(isReady(*dialog));
        QVERIFY(m_fake.asked().first() == said);
        QVERIFY(dialog->options() == said);
        QCOMPARE(useText(*dialog, 2), "Track 2 of 2");
        QCOMPARE(useText(*dialog, 3), "Track 1 of 2");
        QCOMPARE(child<QLineEdit>(*dialog, "otherDelimiter")->text(), "~");
        QCOMPARE(child<QComboBox>(*dialog, "timeZone")->currentText(), "Europe/Berlin");
    }

    void everyChangeMakesANewPreview()
    {
        const auto dialog = open();
        QTRY_VERIFY(isReady(*dialog));
        choose(child<QComboBox>(*dialog, "delimiter"), "Tab");
        QVERIFY(!isReady(*dialog));
        QTRY_VERIFY(isReady(*dialog));
        QCOMPARE(m_fake.asked().last().delimiter, u'\t');
        choose(child<QComboBox>(*dialog, "encoding"), "UTF-16");
        choose(child<QComboBox>(*dialog, "timeUnit"), "Microseconds");
        choose(child<QComboBox>(*dialog, "decimalPoint"), "Point: 1.5");
        type(child<QComboBox>(*dialog, "dateFormat"), "yyyyMMdd");
        type(child<QComboBox>(*dialog, "timeZone"), "Asia/Tokyo");
        QTRY_VERIFY(isReady(*dialog));
        CsvOptions expected;
        expected.delimiter = u'\t';
        expected.encoding = CsvEncoding::Utf16;
        expected.timeUnit = CsvTimeUnit::Microseconds;
        expected.decimalPoint = u'.';
        expected.dateFormat = "yyyyMMdd";
        expected.timeZone = "Asia/Tokyo";
        QVERIFY(m_fake.asked().last() == expected);
        QVERIFY(dialog->options() == expected);
    }

    void goingBackToDetectedSaysNothing()
    {
        CsvOptions said;
        said.delimiter = u',';
        said.dateFormat = "yyyy";
        said.timeZone = "Asia/Tokyo";
        const auto dialog = open(said);
        QTRY_VERIFY(isReady(*dialog));
        choose(child<QComboBox>(*dialog, "delimiter"), "Detected: Semicolon");
        auto* const zone = child<QComboBox>(*dialog, "timeZone");
        zone->lineEdit()->selectAll();
        QTest::keyClick(zone->lineEdit(), Qt::Key_Delete);
        auto* const pattern = child<QComboBox>(*dialog, "dateFormat");
        pattern->setFocus();
        pattern->setCurrentIndex(1);
        QTest::keyClick(pattern, Qt::Key_Up);
        QCOMPARE(pattern->currentText(), QString());
        QTRY_VERIFY(isReady(*dialog));
        QVERIFY(m_fake.asked().last() == CsvOptions());
    }

    void leavingAFieldThatIsNotChangedDoesNotHoldUp()
    {
        const auto dialog = open();
        QTRY_VERIFY(isReady(*dialog));
        type(child<QComboBox>(*dialog, "dateFormat"), "yyyyMMdd");
        QTRY_VERIFY(isReady(*dialog));
        child<QPushButton>(*dialog, "csvImport")->setFocus();
        QVERIFY(isReady(*dialog));
    }

    void changesInQuickSuccessionAreOne()
    {
        const auto dialog = open();
        QTRY_VERIFY(isReady(*dialog));
        type(child<QComboBox>(*dialog, "dateFormat"), "yyyy-MM-dd HH:mm:ss");
        QTRY_VERIFY(isReady(*dialog));
        QCOMPARE(m_fake.asked().last().dateFormat, "yyyy-MM-dd HH:mm:ss");
        QVERIFY2(m_fake.asked().size() < 6, qPrintable(QString::number(m_fake.asked().size())));
    }

    void columnsAreTakenForWhatIsChosen()
    {
        const auto dialog = open();
        QTRY_VERIFY(isReady(*dialog));
        choose(use(*dialog, 3), "Track");
        choose(use(*dialog, 2), "Track");
        QTRY_VERIFY(isReady(*dialog));
        QCOMPARE(dialog->options().columns, (QMap<CsvField, QStringList>{{CsvField::Track, {"Room", "Floor"}}}));
        QVERIFY(m_fake.asked().last() == dialog->options());
        QCOMPARE(useText(*dialog, 2), "Track 1 of 2");
        QCOMPARE(useText(*dialog, 3), "Track 2 of 2");
        choose(use(*dialog, 2), "Detect");
        QTRY_VERIFY(isReady(*dialog));
        QCOMPARE(dialog->options().columns, (QMap<CsvField, QStringList>{{CsvField::Track, {"Floor"}}}));
    }

    void aDetectedFieldLosesTheColumnThatIsAnAttribute()
    {
        const auto dialog = open();
        QTRY_VERIFY(isReady(*dialog));
        choose(use(*dialog, 1), "Attribute");
        QTRY_VERIFY(isReady(*dialog));
        QCOMPARE(dialog->options().columns, (QMap<CsvField, QStringList>{{CsvField::Start, {"Day"}}}));
        QCOMPARE(useText(*dialog, 0), "Detected: Start");
        choose(use(*dialog, 4), "Attribute");
        QTRY_VERIFY(isReady(*dialog));
        QCOMPARE(dialog->options().columns.value(CsvField::Label, {"x"}), QStringList());
        choose(use(*dialog, 1), "Detect");
        QTRY_VERIFY(isReady(*dialog));
        QVERIFY(!dialog->options().columns.contains(CsvField::Start));
    }

    void whatWasSaidOfColumnsThatAreNotThereAnyMoreDoesNotCount()
    {
        CsvOptions said;
        said.columns = {{CsvField::Track, {"Room"}}};
        const auto dialog = open(said);
        QTRY_VERIFY(isReady(*dialog));
        choose(child<QComboBox>(*dialog, "delimiter"), "Other…");
        QCOMPARE(child<QLabel>(*dialog, "csvReason")->text(), "Type the character that stands between two fields.");
        QTest::keyClicks(child<QLineEdit>(*dialog, "otherDelimiter"), "#");
        QTRY_VERIFY(isReady(*dialog));
        QVERIFY(dialog->options().columns.isEmpty());
        QCOMPARE(child<QTableView>(*dialog, "csvFields")->model()->columnCount(), CsvPreviewModel::ReadColumnCount + 5);
        choose(child<QComboBox>(*dialog, "delimiter"), "Comma");
        QTRY_VERIFY(isReady(*dialog));
        QCOMPARE(dialog->options().columns, said.columns);
    }

    void recordsAreShownWithWhatTheyAreReadAs()
    {
        const auto dialog = open();
        QTRY_VERIFY(isReady(*dialog));
        const auto* const model = child<QTableView>(*dialog, "csvRead")->model();
        const auto text = [model](int row, int column) { return model->index(row, column).data().toString(); };
        QCOMPARE(text(0, CsvPreviewModel::Track), "2 › Hall");
        QCOMPARE(text(0, CsvPreviewModel::Label), "Talk");
        QCOMPARE(text(0, CsvPreviewModel::Start), "1970-01-01T00:00:00Z");
        QCOMPARE(text(0, CsvPreviewModel::End), "1970-01-01T00:01:30Z");
        QCOMPARE(text(2, CsvPreviewModel::End), "open-ended");
        QCOMPARE(text(2, CsvPreviewModel::ReadColumnCount + 4), "two⏎lines");
        QCOMPARE(model->headerData(0, Qt::Vertical).toInt(), 2);
        QCOMPARE(child<QPlainTextEdit>(*dialog, "csvGuesses")->toPlainText(),
                 "dates are read as dd.MM.yyyy\nthe delimiter is ;");
    }

    void problemsAreMarkedWithIconColourAndText()
    {
        const auto dialog = open();
        QTRY_VERIFY(isReady(*dialog));
        const auto* const model = child<QTableView>(*dialog, "csvRead")->model();
        const QModelIndex bad = model->index(1, 0);
        QCOMPARE(bad.data().toString(), "no such day");
        QVERIFY(!bad.data(Qt::DecorationRole).value<QIcon>().isNull());
        QVERIFY(bad.data(Qt::BackgroundRole).isValid());
        QCOMPARE(bad.data(Qt::ToolTipRole).toString(), "<span>Line 3 is not imported: no such day</span>");
        QVERIFY(!model->headerData(1, Qt::Vertical, Qt::DecorationRole).value<QIcon>().isNull());
        QVERIFY(!model->index(0, 0).data(Qt::DecorationRole).isValid());
        QVERIFY(!model->index(0, 0).data(Qt::BackgroundRole).isValid());
        QCOMPARE(child<QLabel>(*dialog, "csvCount")->text(), "The first 3 records of the file. 1 is not imported.");
    }

    void aFileThatCannotBeReadLikeThisIsNotImported()
    {
        m_fake.preview().problem = "there is no column for the start";
        m_fake.preview().records = {{2, {"a", "b"}, {}, {}, {}}};
        const auto dialog = open();
        auto* const reason = child<QLabel>(*dialog, "csvReason");
        QTRY_COMPARE(reason->text(), "there is no column for the start");
        QVERIFY(child<QLabel>(*dialog, "csvReasonIcon")->isVisible());
        QVERIFY(!isReady(*dialog));
        QTest::keyClick(dialog.get(), Qt::Key_Return);
        QVERIFY(dialog->isVisible());
        QCOMPARE(child<QLabel>(*dialog, "csvCount")->text(), "The first record of the file.");
        const QModelIndex first = child<QTableView>(*dialog, "csvRead")->model()->index(0, 0);
        QCOMPARE(first.data().toString(), QString());

        m_fake.preview() = goodPreview();
        choose(use(*dialog, 0), "Start");
        QTRY_VERIFY(isReady(*dialog));
        QCOMPARE(reason->text(), QString());
        QVERIFY(child<QLabel>(*dialog, "csvReasonIcon")->isHidden());
    }

    void aZoneThatDoesNotExistIsNotAskedFor()
    {
        const auto dialog = open();
        QTRY_VERIFY(isReady(*dialog));
        type(child<QComboBox>(*dialog, "timeZone"), "Mars/Port");
        QCOMPARE(child<QLabel>(*dialog, "csvReason")->text(), "There is no time zone “Mars/Port”.");
        QVERIFY(dialog->options() == CsvOptions());
        QVERIFY(!isReady(*dialog));
        QCOMPARE(m_fake.asked().size(), 1);
        type(child<QComboBox>(*dialog, "timeZone"), "UTC");
        QTRY_VERIFY(isReady(*dialog));
        QCOMPARE(dialog->options().timeZone, "UTC");
    }

    void closingWhileAFieldHasSomethingToSayDoesNoHarm()
    {
        auto dialog = open();
        QTRY_VERIFY(isReady(*dialog));
        type(child<QComboBox>(*dialog, "dateFormat"), "yyyyMMdd");
        dialog.reset();
    }

    void aSlowDiskDoesNotHoldUpAndTheNewestQuestionWins()
    {
        m_fake.hold();
        const auto dialog = open();
        QTRY_COMPARE(m_fake.asked().size(), 1);
        for (const char* const pattern : {"yyyy", "MM", "dd"}) {
            type(child<QComboBox>(*dialog, "dateFormat"), pattern);
            const auto* const delay = dialog->findChild<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
            QTRY_VERIFY(!delay->isActive());
        }
        QVERIFY(!isReady(*dialog));
        QCOMPARE(m_fake.asked().size(), 1);
        m_fake.release();
        QTRY_VERIFY(isReady(*dialog));
        QCOMPARE(m_fake.asked().size(), 2);
        QCOMPARE(m_fake.asked().last().dateFormat, "dd");
    }

    void closingWhileTheDiskIsSlowDoesNoHarm()
    {
        m_fake.hold();
        auto dialog = open();
        QTRY_COMPARE(m_fake.asked().size(), 1);
        dialog.reset();
        m_fake.release();
        QTRY_COMPARE(QThreadPool::globalInstance()->activeThreadCount(), 0);
    }

    void detectAllTakesEverythingBack()
    {
        CsvOptions said;
        said.columns = {{CsvField::Track, {"Room"}}};
        said.dateFormat = "yyyy";
        said.encoding = CsvEncoding::Latin1;
        const auto dialog = open(said);
        QTRY_VERIFY(isReady(*dialog));
        QTest::mouseClick(child<QPushButton>(*dialog, "csvDetectAll"), Qt::LeftButton);
        QTRY_VERIFY(isReady(*dialog));
        QVERIFY(dialog->options() == CsvOptions());
        QCOMPARE(useText(*dialog, 2), "Detected: Attribute");
    }

    void escapeCancelsAndReturnImports()
    {
        auto dialog = open();
        QSignalSpy rejected(dialog.get(), &QDialog::rejected);
        QTRY_VERIFY(isReady(*dialog));
        QTest::keyClick(dialog.get(), Qt::Key_Escape);
        QCOMPARE(rejected.size(), 1);
        dialog = open();
        QSignalSpy accepted(dialog.get(), &QDialog::accepted);
        QTRY_VERIFY(isReady(*dialog));
        QTest::keyClick(dialog.get(), Qt::Key_Return);
        QCOMPARE(accepted.size(), 1);
    }

    void theSizeIsRemembered()
    {
        auto dialog = open();
        dialog->resize(1234, 777);
        dialog->reject();
        dialog = open();
        QCOMPARE(dialog->size(), QSize(1234, 777));
    }

    void everythingCanBeReachedWithTheTabKey()
    {
        const auto dialog = open();
        QTRY_VERIFY(isReady(*dialog));
        const QStringList expected{"delimiter",    "decimalPoint", "encoding",   "timeUnit",   "dateFormat",
                                   "timeZone",     "columnUse0",   "columnUse1", "columnUse2", "columnUse3",
                                   "columnUse4",   "csvFields",    "csvRead",    "csvGuesses", "csvSilent",
                                   "csvDetectAll", "csvImport",    "csvCancel"};
        child<QComboBox>(*dialog, "delimiter")->setFocus();
        QStringList seen;
        for (int i = 0; i < expected.size(); ++i) {
            seen.append(dialog->focusWidget()->objectName());
            QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(seen, expected);
    }

    void everyControlHasANameForThoseWhoDoNotSeeIt()
    {
        const auto dialog = open();
        QTRY_VERIFY(isReady(*dialog));
        for (const QComboBox* const box : dialog->findChildren<QComboBox*>()) {
            QVERIFY(!box->objectName().isEmpty());
            QVERIFY2(!box->accessibleName().isEmpty(), qPrintable(box->objectName()));
        }
        QCOMPARE(use(*dialog, 2)->accessibleName(), "Use of column Room");
    }

    void boxesStayAboveTheirColumnsWhenScrolled()
    {
        const auto dialog = open();
        dialog->resize(600, 500);
        QTRY_VERIFY(isReady(*dialog));
        use(*dialog, 4)->setFocus();
        auto* const table = child<QTableView>(*dialog, "csvFields");
        QTRY_VERIFY(table->horizontalScrollBar()->value() > 0);
        const auto* const columns = child<CsvColumnHeader>(*dialog, "csvColumnHeader");
        for (int i = 0; i < header.size(); ++i) {
            const int left = columns->sectionViewportPosition(i + CsvPreviewModel::ReadColumnCount);
            QVERIFY(qAbs(use(*dialog, i)->x() - left) < 5);
        }
        QVERIFY(table->viewport()->rect().contains(use(*dialog, 4)->x(), 5));
    }

    void bothTablesScrollTogether()
    {
        for (int i = 0; i < 60; ++i)
            m_fake.preview().records.append(m_fake.preview().records.first());
        const auto dialog = open();
        QTRY_VERIFY(isReady(*dialog));
        auto* const left = child<QTableView>(*dialog, "csvFields");
        auto* const right = child<QTableView>(*dialog, "csvRead");
        left->verticalScrollBar()->setValue(20);
        QCOMPARE(right->verticalScrollBar()->value(), 20);
        right->verticalScrollBar()->setValue(5);
        QCOMPARE(left->verticalScrollBar()->value(), 5);
        left->selectRow(7);
        QVERIFY(right->selectionModel()->isRowSelected(7));
        QCOMPARE(left->rowViewportPosition(7), right->rowViewportPosition(7));
    }

    void columnsOfOneNameHaveOneBox()
    {
        m_fake.preview().header = QStringList{"a", "a", "b"};
        const auto dialog = open();
        QTRY_VERIFY(isReady(*dialog));
        QVERIFY(use(*dialog, 0));
        QVERIFY(!dialog->findChild<QComboBox*>("columnUse1"));
        QVERIFY(use(*dialog, 2));
    }

    void theAssistantAsksWhenSomethingWasGuessed()
    {
        QWidget window;
        auto* const assistant = makeAssistant(window);
        int answers = 0;
        std::optional<CsvOptions> answer;
        assistant->ask("f.csv", {}, [&](const auto& options) { ++answers, answer = options; });
        CsvImportDialog* const dialog = shownDialog(window);
        QVERIFY(dialog);
        QCOMPARE(dialog->windowTitle(), "Import f.csv");
        QVERIFY(dialog->isModal());
        choose(use(*dialog, 2), "Track");
        QTRY_VERIFY(isReady(*dialog));
        QCOMPARE(answers, 0);
        QTest::mouseClick(child<QPushButton>(*dialog, "csvImport"), Qt::LeftButton);
        QTRY_COMPARE(answers, 1);
        QVERIFY(answer);
        QCOMPARE(answer->columns.value(CsvField::Track), QStringList{"Room"});
        QTRY_VERIFY(!window.findChild<CsvImportDialog*>());
        QVERIFY(assistant->memory().find(header)->options == *answer);
    }

    void theAssistantDoesNotAskAboutAFileInTheKitsOwnWay()
    {
        m_fake.preview().guesses.clear();
        CsvOptions start;
        start.dateFormat = "yyyy";
        QVERIFY(answerWithoutDialog(start) == start);
    }

    void theAssistantAsksWhenTheFileCannotBeReadAtAllLikeThis()
    {
        m_fake.preview().guesses.clear();
        m_fake.preview().problem = "no start";
        QWidget window;
        makeAssistant(window)->ask("f.csv", {}, [](const auto&) {});
        QVERIFY(shownDialog(window));
    }

    void theAssistantLeavesAFileWithoutAPreviewToTheReader()
    {
        m_fake.refuse({"f.csv", 0, "no such file"});
        CsvOptions start;
        start.dateFormat = "yyyy";
        QVERIFY(answerWithoutDialog(start) == start);
    }

    void cancellingAnswersWithNothingAndRemembersNothing()
    {
        QWidget window;
        auto* const assistant = makeAssistant(window);
        int answers = 0;
        assistant->ask("f.csv", {}, [&](const auto& options) { answers += options ? 100 : 1; });
        QTest::keyClick(shownDialog(window), Qt::Key_Escape);
        QTRY_COMPARE(answers, 1);
        QCOMPARE(assistant->memory().count(), 0);
    }

    void whatWasChosenIsTheStartForTheNextFileWithThatHeader()
    {
        CsvOptions chosen;
        chosen.dateFormat = "yyyy";
        chosen.encoding = CsvEncoding::Latin1;
        QWidget window;
        auto* const assistant = makeAssistant(window);
        assistant->memory().remember(header, {chosen, false});
        CsvOptions start;
        start.dateFormat = "MM";
        assistant->ask("f.csv", start, [](const auto&) {});
        CsvImportDialog* const dialog = shownDialog(window);
        QVERIFY(dialog);
        QCOMPARE(dialog->options().encoding, CsvEncoding::Latin1);
        QCOMPARE(dialog->options().dateFormat, "MM");
        QVERIFY(!child<QCheckBox>(*dialog, "csvSilent")->isChecked());
    }

    void whoDoesNotWantToBeAskedAgainIsNot()
    {
        QWidget window;
        auto* const assistant = makeAssistant(window);
        assistant->ask("f.csv", {}, [](const auto&) {});
        CsvImportDialog* const dialog = shownDialog(window);
        QVERIFY(dialog);
        choose(child<QComboBox>(*dialog, "encoding"), "UTF-16");
        QTest::mouseClick(child<QCheckBox>(*dialog, "csvSilent"), Qt::LeftButton, {}, QPoint(8, 8));
        QTRY_VERIFY(isReady(*dialog));
        QTest::mouseClick(child<QPushButton>(*dialog, "csvImport"), Qt::LeftButton);
        QTRY_VERIFY(!window.findChild<CsvImportDialog*>());
        CsvOptions expected;
        expected.encoding = CsvEncoding::Utf16;
        expected.dateFormat = "yyyy";
        CsvOptions start;
        start.dateFormat = "yyyy";
        QVERIFY(answerWithoutDialog(start) == expected);
    }

    void forgettingBringsBackWhatIsDetected()
    {
        CsvOptions chosen;
        chosen.encoding = CsvEncoding::Latin1;
        QWidget window;
        auto* const assistant = makeAssistant(window);
        assistant->memory().remember(header, {chosen, false});
        assistant->ask("f.csv", {}, [](const auto&) {});
        CsvImportDialog* const dialog = shownDialog(window);
        QVERIFY(dialog);
        auto* const forget = child<QPushButton>(*dialog, "csvForget");
        QVERIFY(forget->isEnabled());
        QTest::mouseClick(forget, Qt::LeftButton);
        QVERIFY(dialog->options() == CsvOptions());
        QVERIFY(!forget->isEnabled());
        QVERIFY(!assistant->memory().find(header));
    }

    void severalFilesAreAskedAboutOneAfterAnother()
    {
        QWidget window;
        auto* const assistant = makeAssistant(window);
        QStringList answered;
        for (const char* const name : {"one.csv", "two.csv"})
            assistant->ask(name, {}, [&answered, name](const auto&) { answered.append(name); });
        CsvImportDialog* dialog = shownDialog(window);
        QVERIFY(dialog);
        QCOMPARE(dialog->windowTitle(), "Import one.csv");
        QCOMPARE(window.findChildren<CsvImportDialog*>().size(), 1);
        dialog->reject();
        QTRY_COMPARE(answered, QStringList{"one.csv"});
        QTRY_VERIFY(window.findChild<CsvImportDialog*>() &&
                    window.findChild<CsvImportDialog*>()->windowTitle() == "Import two.csv");
        window.findChild<CsvImportDialog*>()->reject();
        QTRY_COMPARE(answered, QStringList({"one.csv", "two.csv"}));
    }

    void theWindowMayGoWithTheAnswer()
    {
        auto* const window = new QWidget;
        bool isAnswered = false;
        makeAssistant(*window)->ask("f.csv", {}, [&](const auto&) {
            isAnswered = true;
            delete window;
        });
        CsvImportDialog* const dialog = shownDialog(*window);
        QVERIFY(dialog);
        QTest::keyClick(dialog, Qt::Key_Escape);
        QTRY_VERIFY(isAnswered);
    }

    void aRealFileIsPreviewedByTheKit()
    {
        QFile file(m_dir.filePath("real.csv"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("Datum;von;bis;Raum;Titel\n24.12.2026;18:30;20:00;Saal;Feier\n31.02.2026;10:00;11:00;Saal;nie\n");
        file.close();
        CsvImportDialog dialog(file.fileName(), {});
        dialog.open();
        QTRY_VERIFY(isReady(dialog));
        QCOMPARE(child<QComboBox>(dialog, "delimiter")->currentText(), "Detected: Semicolon");
        choose(use(dialog, 3), "Track");
        type(child<QComboBox>(dialog, "timeZone"), "Europe/Berlin");
        QTRY_VERIFY(isReady(dialog));
        const auto* const model = child<QTableView>(dialog, "csvRead")->model();
        QCOMPARE(model->index(0, CsvPreviewModel::Track).data().toString(), "Saal");
        QCOMPARE(model->index(0, CsvPreviewModel::Start).data().toString(), "2026-12-24T17:30:00Z");
        QCOMPARE(model->index(0, CsvPreviewModel::End).data().toString(), "2026-12-24T19:00:00Z");
        QVERIFY(model->index(1, 0).data(Qt::BackgroundRole).isValid());
    }

    void whatIsNoFieldForTheUserIsNoneForTheKit()
    {
        CsvImportDialog dialog(write("track,label,start,end\nHall,Talk,1,2\n"), {});
        dialog.open();
        QTRY_VERIFY(isReady(dialog));
        const auto* const model = child<QTableView>(dialog, "csvRead")->model();
        const auto text = [model](int column) { return model->index(0, column).data().toString(); };
        QCOMPARE(text(CsvPreviewModel::End), "1970-01-01T00:00:00.002Z");
        choose(use(dialog, 3), "Attribute");
        QTRY_COMPARE(text(CsvPreviewModel::End), "1970-01-01T00:00:00.001Z");
        choose(use(dialog, 1), "Attribute");
        QTRY_COMPARE(text(CsvPreviewModel::Label), QString());
        choose(use(dialog, 0), "Attribute");
        QTRY_COMPARE(text(CsvPreviewModel::Track), "real");
        QTRY_VERIFY(isReady(dialog));
        QCOMPARE(child<QPlainTextEdit>(dialog, "csvGuesses")->toPlainText(), "Nothing.");
        choose(use(dialog, 2), "Attribute");
        QTRY_VERIFY(child<QLabel>(dialog, "csvReason")->text().startsWith("column \"start\" is missing"));
        QVERIFY(!isReady(dialog));
        for (int column = 0; column < 4; ++column)
            choose(use(dialog, column), "Detect");
        QTRY_VERIFY(isReady(dialog));
        QVERIFY(dialog.options() == CsvOptions());
        QCOMPARE(text(CsvPreviewModel::Track), "Hall");
    }

    void columnsThatAreTooManyToShowAreCounted()
    {
        CsvImportDialog few(write("start,end" + QByteArray(",x").repeated(198) + "\n1,2\n"), {});
        few.open();
        QTRY_VERIFY(isReady(few));
        QCOMPARE(child<QLabel>(few, "csvCount")->text(), "The first record of the file.");
        CsvImportDialog many(write("start,end" + QByteArray(",x").repeated(210) + "\n1,2\n"), {});
        many.open();
        QTRY_VERIFY(isReady(many));
        QCOMPARE(child<QLabel>(many, "csvCount")->text(),
                 "The first record of the file. Columns that are not shown here because there are too many, but "
                 "imported: 12.");
    }

    void allImportsAreForgottenWhenTheUserSaysSoTwice()
    {
        QMainWindow window;
        auto* const assistant = makeAssistant(window);
        QMenu* const menu = window.menuBar()->addMenu("File");
        QAction* const action = Workbench::addForgetImportsAction(menu, assistant);
        QVERIFY(menu->actions().contains(action));
        QVERIFY(!action->isEnabled());
        assistant->memory().remember(header, {});
        assistant->memory().remember({"a", "b"}, {});
        Q_EMIT menu->aboutToShow();
        QVERIFY(action->isEnabled());

        action->trigger();
        auto* box = child<QMessageBox>(window, "forgetImports");
        QVERIFY(box->isModal());
        QCOMPARE(box->text(), "Forget how CSV files with 2 kinds of headers are imported?");
        QTest::keyClick(box, Qt::Key_Escape);
        QTRY_VERIFY(!window.findChild<QMessageBox*>());
        QCOMPARE(assistant->memory().count(), 2);

        // Return is for who did not read it.
        action->trigger();
        QTest::keyClick(child<QMessageBox>(window, "forgetImports"), Qt::Key_Return);
        QTRY_VERIFY(!window.findChild<QMessageBox*>());
        QCOMPARE(assistant->memory().count(), 2);

        action->trigger();
        box = child<QMessageBox>(window, "forgetImports");
        QTest::mouseClick(child<QPushButton>(*box, "forget"), Qt::LeftButton);
        QTRY_VERIFY(!window.findChild<QMessageBox*>());
        QCOMPARE(assistant->memory().count(), 0);
        Q_EMIT menu->aboutToShow();
        QVERIFY(!action->isEnabled());
    }

    void theActionThatForgetsGoesWithTheAssistant()
    {
        QMainWindow window;
        auto* const assistant = makeAssistant(window);
        QMenu* const menu = window.menuBar()->addMenu("File");
        Workbench::addForgetImportsAction(menu, assistant);
        delete assistant;
        QVERIFY(menu->isEmpty());
        Q_EMIT menu->aboutToShow();
    }

private:
    QString write(const QByteArray& text)
    {
        QFile file(m_dir.filePath("real.csv"));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("cannot write %s", qPrintable(file.fileName()));
        return file.fileName();
    }

    std::unique_ptr<CsvImportDialog> open(const CsvOptions& start = {})
    {
        auto dialog = std::make_unique<CsvImportDialog>("f.csv", start, m_fake.function());
        dialog->open();
        return dialog;
    }

    static QComboBox* use(const QWidget& dialog, int column)
    {
        return child<QComboBox>(dialog, qPrintable(QStringLiteral("columnUse%1").arg(column)));
    }
    static QString useText(const QWidget& dialog, int column) { return use(dialog, column)->currentText(); }

    CsvImportAssistant* makeAssistant(QWidget& window)
    {
        window.show();
        m_settings = std::make_unique<QSettings>();
        return new CsvImportAssistant(&window, *m_settings, m_fake.function());
    }

    // Waits until there is one that can be imported from or says why not.
    static CsvImportDialog* shownDialog(const QWidget& window)
    {
        CsvImportDialog* dialog = nullptr;
        const auto isShown = [&] {
            dialog = window.findChild<CsvImportDialog*>();
            return dialog && dialog->isVisible() &&
                   (isReady(*dialog) || !child<QLabel>(*dialog, "csvReason")->text().isEmpty());
        };
        return QTest::qWaitFor(isShown) ? dialog : nullptr;
    }

    std::optional<CsvOptions> answerWithoutDialog(const CsvOptions& start)
    {
        QWidget window;
        int answers = 0;
        std::optional<CsvOptions> answer;
        makeAssistant(window)->ask("f.csv", start, [&](const auto& options) { ++answers, answer = options; });
        const bool isAnswered = QTest::qWaitFor([&] { return answers == 1; });
        return isAnswered && !window.findChild<CsvImportDialog*>() ? answer : std::nullopt;
    }

    QTemporaryDir m_dir;
    FakePreview m_fake;
    std::unique_ptr<QSettings> m_settings;
};

QTEST_MAIN(TestCsvImportDialog)
#include "tst_csv_import_dialog.moc"
