#include <VeskTimelineKit/read_options.h>

#include <QApplication>
#include <QFile>
#include <QProgressDialog>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <workbench/start_up_load.h>

using namespace VeskTimeline::Kit;
using Workbench::StartUpLoad;

namespace {

// The offscreen platform remarks on every window that limits its size.
const QRegularExpression unexpectedWarning("^(?!This plugin does not support propagateSizeHints)");

QProgressDialog* shownProgress()
{
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        auto* const dialog = qobject_cast<QProgressDialog*>(widget);
        if (dialog && dialog->isVisible())
            return dialog;
    }
    return nullptr;
}

} // namespace

class TestStartUpLoad : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(unexpectedWarning);
        QVERIFY(m_dir.isValid());
    }

    void whatIsReadIsTaken()
    {
        StartUpLoad load({write(3)}, nullptr, {});
        const ReadDocuments read = load.take();
        QVERIFY(read.refusals.isEmpty());
        QCOMPARE(read.document.itemCount(), 3);
        QVERIFY(!load.isCancelled());
    }

    void progressGoesByItselfAndLetsTheProgramGoOn()
    {
        StartUpLoad load({write(50'000)}, nullptr, {});
        QTimer looking;
        QString text;
        connect(&looking, &QTimer::timeout, this, [&text] {
            if (const QProgressDialog* const dialog = shownProgress())
                text = dialog->labelText();
        });
        looking.start(0);
        const QSignalSpy quits(qApp, &QCoreApplication::aboutToQuit);
        load.showProgress();
        QVERIFY(load.isDoneWithin(std::chrono::milliseconds(0)));
        QCOMPARE(text, "Reading a.csv…");
        QVERIFY(!shownProgress());
        QVERIFY(QApplication::quitOnLastWindowClosed());
        QCOMPARE(load.take().document.itemCount(), 50'000);
        // A loop of its own would end at once if the program had been told to.
        QEventLoop loop;
        QTimer::singleShot(0, &loop, [&loop] { loop.exit(7); });
        QCOMPARE(loop.exec(), 7);
        QVERIFY(quits.isEmpty());
    }

    void theUserCancelsIt()
    {
        const QString file = write(600'000);
        StartUpLoad load({file}, nullptr, {});
        QTimer pressing;
        connect(&pressing, &QTimer::timeout, this, [] {
            if (QProgressDialog* const dialog = shownProgress())
                QTest::keyClick(dialog, Qt::Key_Escape);
        });
        pressing.start(0);
        load.showProgress();
        QVERIFY(load.isCancelled());
        const ReadDocuments read = load.take();
        QCOMPARE(read.refusals.size(), 1);
        QCOMPARE(read.refusals.first().text(), file + ": " + cancelledReason());
        QCOMPARE(read.document.itemCount(), 0);
    }

    void whatIsNotWantedAnyMoreIsCancelled()
    {
        const QString file = write(600'000);
        QElapsedTimer clock;
        clock.start();
        StartUpLoad(QStringList{file}, nullptr, {}).take();
        const qint64 whole = clock.restart();
        {
            const StartUpLoad load({file}, nullptr, {});
        }
        QVERIFY2(clock.elapsed() < whole / 2, qPrintable(QString::number(clock.elapsed())));
    }

private:
    QString write(int items) const
    {
        QByteArray text = "track,label,start,end\n";
        for (int i = 0; i < items; ++i)
            text += "A,x," + QByteArray::number(i) + ',' + QByteArray::number(i + 1) + '\n';
        QFile file(m_dir.filePath("a.csv"));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("cannot write %s", qPrintable(file.fileName()));
        return file.fileName();
    }

    QTemporaryDir m_dir;
};

QTEST_MAIN(TestStartUpLoad)
#include "tst_start_up_load.moc"
