#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/// Starts the program as the entry in a desktop's menu does, without a terminal, and reads what it says on the screen.
class TestX11Refusals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(m_dir.isValid()); }

    void refusedFilesAreSaidInADialogToo()
    {
        QProcess program;
        program.start(QStringLiteral(PROGRAM_FILE), {"--show-refusals", write("good.csv", good), path("missing.csv")});
        const QString window = windowOf(program);
        QVERIFY(!window.isEmpty());
        QVERIFY(press(window, "Return"));
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 1);
        QCOMPARE(program.readAllStandardError(), (path("missing.csv") + ": No such file or directory\n").toUtf8());
    }

    void withoutTheOptionTheProgramJustEnds()
    {
        QProcess program;
        program.start(QStringLiteral(PROGRAM_FILE), {path("missing.csv")});
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitCode(), 1);
    }

    void whatIsNotRefusedIsShown()
    {
        QProcess program;
        program.start(QStringLiteral(PROGRAM_FILE), {"--show-refusals", write("good.csv", good)});
        const QString window = windowOf(program);
        QVERIFY(!window.isEmpty());
        QVERIFY(press(window, "ctrl+q"));
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitCode(), 0);
    }

private:
    static constexpr const char* good = "track,label,start,end\nA,x,1,2\n";

    QString path(const QString& name) const { return m_dir.filePath(name); }

    QString write(const QString& name, const QByteArray& text) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("cannot write %s", qPrintable(file.fileName()));
        return file.fileName();
    }

    // Empty when none comes.
    static QString windowOf(QProcess& program)
    {
        QString window;
        const auto isThere = [&] {
            QProcess search;
            search.start("xdotool", {"search", "--onlyvisible", "--pid", QString::number(program.processId()), "--name",
                                     "VeskTimeline Workbench"});
            search.waitForFinished();
            window = QString::fromLatin1(search.readAllStandardOutput()).section('\n', 0, 0);
            return !window.isEmpty();
        };
        return program.waitForStarted() && QTest::qWaitFor(isThere, 20'000) ? window : QString();
    }

    static bool press(const QString& window, const QString& key)
    {
        return QProcess::execute("xdotool", {"windowfocus", "--sync", window, "key", key}) == 0;
    }

    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestX11Refusals)
#include "tst_x11_refusals.moc"
