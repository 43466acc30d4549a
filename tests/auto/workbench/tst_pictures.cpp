#include "support/text_file.h"

#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskTimelineKit/picture_export.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QProgressDialog>
#include <QPushButton>
#include <QSet>
#include <QSpinBox>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <workbench/main_window.h>
#include <workbench/timeline_pictures.h>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;
using namespace Workbench;

namespace {

constexpr qint64 origin = 1'600'041'600'000;
constexpr qint64 hour = 3'600'000;

Document document()
{
    Document document;
    document.track({"Ship"}).items.push_back({"voyage", origin, 20 * hour, {}});
    document.track({"Ship", "Deck"}).items.push_back({"watch", origin, 4 * hour, {}});
    document.track({"Shore"}).items.push_back({"rest", origin, 40 * hour, {}});
    return document;
}

/// Takes longer than a moment to paint.
Document manyPages()
{
    constexpr int tracks = 1500;
    constexpr int items = 60;
    Document document;
    for (int track = 0; track < tracks; ++track)
        for (int i = 0; i < items; ++i)
            document.track({QString("Track %1").arg(track)})
                .items.push_back({QString::number(i), origin + i * hour, int(hour), {}});
    return document;
}

} // namespace

class TestPictures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support propagateSizeHints)"));
        m_dir.reset(new QTemporaryDir);
        QVERIFY(m_dir->isValid());
        m_window.reset(new MainWindow);
        m_window->showDocument(document(), {"/tmp/ships.csv"});
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }
    void cleanup() { m_window.reset(); }

    void theFileMenuHasTheActions()
    {
        auto* const menu = m_window->findChild<QMenu*>("fileMenu");
        QVERIFY(menu);
        for (const char* const name : {"export_picture", "print", "print_preview"})
            QVERIFY2(menu->actions().contains(m_window->findChild<QAction*>(name)), name);
    }

    void aNameBesideTheDocumentIsProposed()
    {
        auto* const file = open()->findChild<QLineEdit*>("file");
        QCOMPARE(file->text(), "/tmp/ships.png");
        QCOMPARE(file->selectedText(), "ships");
        QCOMPARE(file->toolTip(), "/tmp/ships.png");
        m_window->showDocument(document(), {});
        QCOMPARE(QFileInfo(pictureContext(*m_window).fileName).path(), QDir::homePath());
    }

    void thePrintDialogKnowsTheNameOfTheDocument()
    {
        m_window->findChild<QAction*>("print")->trigger();
        auto* const dialog = m_window->findChild<QPrintDialog*>();
        QVERIFY(dialog);
        QCOMPARE(dialog->printer()->docName(), "ships");
        dialog->reject();
    }

    void thePictureIsWrittenAsTheDialogSays()
    {
        PictureExportDialog* const dialog = open();
        QVERIFY(dialog);
        const QString file = m_dir->filePath("a.svg");
        setText(dialog, "file", file);
        dialog->findChild<QComboBox*>("colours")->setCurrentIndex(1);
        setText(dialog, "title", "My ships");
        press(dialog, "export");
        QTRY_VERIFY(QFile::exists(file));
        QTRY_VERIFY(!m_window->findChild<QProgressDialog*>("pictureProgress"));
        const QByteArray svg = contentOf(file);
        QVERIFY(svg.contains("My ships"));
        QVERIFY(svg.contains(">voyage<"));
        QVERIFY(svg.contains(PictureOptions::darkPalette().color(QPalette::Base).name().toLatin1()));
        QTRY_VERIFY(!m_window->findChild<PictureExportDialog*>());
        QVERIFY(m_window->findChildren<PictureExport*>().isEmpty());
    }

    void theFieldsBecomeOptions()
    {
        m_window->timeline()->view()->selectItem(1, true);
        PictureExportDialog* const dialog = open();
        QCOMPARE(dialog->options().range.has_value(), false);
        QCOMPARE(dialog->options().trackIds, QVector<int>());
        dialog->findChild<QComboBox*>("range")->setCurrentIndex(1);
        const TimelineView& view = *m_window->timeline()->view();
        QCOMPARE(dialog->options().range->start, view.currentTime());
        QCOMPARE(dialog->options().range->end, view.currentTime() + view.zoomFactor());
        dialog->findChild<QComboBox*>("range")->setCurrentIndex(2);
        setText(dialog, "from", "2020-09-14");
        setText(dialog, "to", "2020-09-15T12:00:00Z");
        QCOMPARE(dialog->options().range->start, origin);
        QCOMPARE(dialog->options().range->end, origin + 36 * hour);
        dialog->findChild<QComboBox*>("tracks")->setCurrentIndex(2);
        QCOMPARE(dialog->options().trackIds, QVector<int>{2});
        dialog->findChild<QSpinBox*>("width")->setValue(700);
        QCOMPARE(dialog->options().width, 700);
        QVERIFY(!dialog->options().indicatorTime);
        dialog->findChild<QCheckBox*>("indicator")->setChecked(true);
        QVERIFY(dialog->options().indicatorTime);
        dialog->findChild<QComboBox*>("page")->setCurrentText("A3");
        QCOMPARE(dialog->options().pages.layout.pageSize().id(), QPageSize::A3);
        dialog->reject();
    }

    void collapsedTracksCanBeLeftOut()
    {
        TimelineView* const view = m_window->timeline()->view();
        view->collapse(m_window->model()->index(0, 0));
        PictureExportDialog* const dialog = open();
        dialog->findChild<QComboBox*>("tracks")->setCurrentIndex(1);
        QCOMPARE(dialog->options().trackIds, (QVector<int>{1, 3}));
        dialog->reject();
    }

    void whatCannotBeMadeCannotBeExported()
    {
        PictureExportDialog* const dialog = open();
        auto* const button = dialog->findChild<QPushButton*>("export");
        auto* const message = dialog->findChild<QLabel*>("message");
        QVERIFY(button->isEnabled());
        QCOMPARE(message->text(), QString("1600 × 252 pixels"));
        setText(dialog, "file", "a.gif");
        QVERIFY(!button->isEnabled());
        QCOMPARE(message->text(), QString("the name of a picture ends in .png, .svg or .pdf"));
        setText(dialog, "file", "");
        QCOMPARE(message->text(), QString("Name a file."));
        setText(dialog, "file", "a.pdf");
        QVERIFY(button->isEnabled());
        QCOMPARE(message->text(), QString("Pages: 1"));
        dialog->findChild<QComboBox*>("tracks")->setCurrentIndex(2);
        QVERIFY(!button->isEnabled());
        QCOMPARE(message->text(), QString("No item is selected."));
        dialog->findChild<QComboBox*>("tracks")->setCurrentIndex(0);
        dialog->findChild<QComboBox*>("range")->setCurrentIndex(2);
        setText(dialog, "from", "yesterday");
        QVERIFY(!button->isEnabled());
        QVERIFY(message->text().contains("2024-05-31"));
        dialog->reject();
    }

    void thePreviewFollowsTheFields()
    {
        PictureExportDialog* const dialog = open();
        auto* const preview = dialog->findChild<QLabel*>("preview");
        QTRY_VERIFY(!preview->pixmap(Qt::ReturnByValue).isNull());
        QCOMPARE(preview->pixmap(Qt::ReturnByValue).toImage().pixelColor(1, 1), QColor(Qt::white));
        dialog->findChild<QComboBox*>("colours")->setCurrentIndex(1);
        QTRY_COMPARE(preview->pixmap(Qt::ReturnByValue).toImage().pixelColor(1, 1),
                     PictureOptions::darkPalette().color(QPalette::Base));
        setText(dialog, "file", "");
        QTRY_VERIFY(preview->pixmap(Qt::ReturnByValue).isNull());
        dialog->reject();
    }

    void anExistingFileIsAskedFor()
    {
        const QString file = m_dir->filePath("a.svg");
        QFile old(file);
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.close();
        answer(QMessageBox::Cancel);
        PictureExportDialog* const dialog = open();
        setText(dialog, "file", file);
        press(dialog, "export");
        QTRY_COMPARE(m_question, "“a.svg” is there already. Replace it?");
        QTRY_VERIFY(!dialog->findChild<QMessageBox*>());
        QCOMPARE(contentOf(file), QByteArray());
        // Nothing of what has been set is lost.
        QVERIFY(dialog->isVisible());
        QCOMPARE(dialog->fileName(), file);
        answer(QMessageBox::Save);
        press(dialog, "export");
        QTRY_VERIFY(contentOf(file).contains(">voyage<"));
        QTRY_COMPARE(m_window->statusBar()->currentMessage(), "Exported " + file);
        QTRY_VERIFY(!m_window->findChild<PictureExportDialog*>());
    }

    void aNameAloneGoesToTheFolderThatWasProposed()
    {
        PictureExportDialog* const dialog = open();
        setText(dialog, "file", "alone.png");
        QCOMPARE(dialog->fileName(), QDir(proposedFolder()).filePath("alone.png"));
        setText(dialog, "file", "");
        QCOMPARE(dialog->fileName(), QString());
        dialog->reject();
    }

    void aFailureIsTold()
    {
        answer(QMessageBox::Ok);
        PictureExportDialog* const dialog = open();
        setText(dialog, "file", m_dir->filePath("missing/a.pdf"));
        press(dialog, "export");
        QTRY_COMPARE(m_details, m_dir->filePath("missing/a.pdf") + ": No such file or directory");
        QCOMPARE(m_question, "The picture could not be made.");
    }

    void pagesGoToThePrinter()
    {
        const QString file = m_dir->filePath("printed.pdf");
        {
            QPrinter printer;
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(file);
            preparePrinter(printer);
            QCOMPARE(paintPages(*m_window, printer), QString());
        }
        const QByteArray pdf = contentOf(file);
        QVERIFY(pdf.startsWith("%PDF-"));
        QVERIFY(pdf.contains("/Count 1"));
        QVERIFY(!pdf.contains("/Subtype /Image"));
    }

    void thePreviewOfThePrintOpens()
    {
        m_window->findChild<QAction*>("print_preview")->trigger();
        auto* dialog = m_window->findChild<QPrintPreviewDialog*>();
        QVERIFY(dialog);
        QTRY_VERIFY(dialog->isVisible());
        dialog->close();
        QTRY_VERIFY(!m_window->findChild<QPrintPreviewDialog*>());
    }

    void aLongPreviewOfThePrintShowsItsProgress()
    {
        m_window->showDocument(manyPages(), {});
        QStringList labels;
        QSet<int> values;
        QTimer look;
        connect(&look, &QTimer::timeout, &look, [&] {
            const auto* const progress = m_window->findChild<QProgressDialog*>("pagesProgress");
            if (!progress || !progress->isVisible())
                return;
            labels.append(progress->labelText());
            values.insert(progress->value());
            QVERIFY(progress->isModal());
        });
        look.start(0);
        m_window->findChild<QAction*>("print_preview")->trigger();
        const auto* const dialog = m_window->findChild<QPrintPreviewDialog*>();
        QVERIFY(dialog);
        QTRY_VERIFY(dialog->isVisible());
        const auto* const pages = dialog->findChild<QPrintPreviewWidget*>();
        QTRY_VERIFY_WITH_TIMEOUT(pages->pageCount() > 30, 60'000);
        QVERIFY(!m_window->findChild<QProgressDialog*>("pagesProgress"));
        QVERIFY(!labels.isEmpty());
        QCOMPARE(labels.constFirst(), "Painting the pages…");
        QVERIFY(values.size() > 3);
    }

    void aLongPreviewOfThePrintCanBeCancelled()
    {
        m_window->showDocument(manyPages(), {});
        bool isCancelled = false;
        QTimer look;
        connect(&look, &QTimer::timeout, &look, [&] {
            auto* const progress = m_window->findChild<QProgressDialog*>("pagesProgress");
            if (progress && progress->isVisible() && !std::exchange(isCancelled, true))
                QTest::mouseClick(progress->findChild<QPushButton*>(), Qt::LeftButton);
        });
        look.start(0);
        m_window->findChild<QAction*>("print_preview")->trigger();
        QVERIFY(m_window->findChild<QPrintPreviewDialog*>());
        QTRY_VERIFY(!m_window->findChild<QPrintPreviewDialog*>());
        QVERIFY(isCancelled);
        QVERIFY(!m_window->findChild<QProgressDialog*>("pagesProgress"));
        QVERIFY(!m_window->findChild<QMessageBox*>("noPicture"));
    }

private:
    PictureExportDialog* open()
    {
        m_window->findChild<QAction*>("export_picture")->trigger();
        return m_window->findChild<PictureExportDialog*>("pictureExportDialog");
    }

    QString proposedFolder() const { return QFileInfo(Workbench::pictureContext(*m_window).fileName).path(); }

    static void setText(const QDialog* dialog, const char* name, const QString& text)
    {
        auto* const field = dialog->findChild<QLineEdit*>(name);
        field->selectAll();
        if (text.isEmpty())
            QTest::keyClick(field, Qt::Key_Delete);
        else
            QTest::keyClicks(field, text);
    }

    static void press(const QDialog* dialog, const char* name)
    {
        QTest::mouseClick(dialog->findChild<QPushButton*>(name), Qt::LeftButton);
    }

    // Answers the next message box.
    void answer(QMessageBox::StandardButton button)
    {
        m_question.clear();
        auto* const timer = new QTimer(this);
        connect(timer, &QTimer::timeout, this, [this, timer, button] {
            auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box)
                return;
            timer->stop();
            timer->deleteLater();
            m_question = box->text();
            m_details = box->informativeText();
            QTest::mouseClick(box->button(button), Qt::LeftButton);
        });
        timer->start(5);
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<MainWindow> m_window;
    QString m_question;
    QString m_details;
};

QTEST_MAIN(TestPictures)
#include "tst_pictures.moc"
