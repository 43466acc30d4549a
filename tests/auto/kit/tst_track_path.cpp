#include <VeskTimelineKit/track_path.h>

#include <QRandomGenerator>
#include <QTest>

using namespace VeskTimeline::Kit;

class TestTrackPath : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void textsComeApartAtSlashes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("names");

        QTest::newRow("one name") << "Ship" << QStringList{"Ship"};
        QTest::newRow("path") << "Ship/Deck/Gun" << QStringList{"Ship", "Deck", "Gun"};
        QTest::newRow("blanks around names") << " Ship / Deck 1 " << QStringList{"Ship", "Deck 1"};
        QTest::newRow("empty") << "" << QStringList{""};
        QTest::newRow("empty names") << "/a//" << QStringList{"", "a", "", ""};
        QTest::newRow("slash in a name") << R"(km\/h/max)" << QStringList{"km/h", "max"};
        QTest::newRow("backslash elsewhere") << R"(C:\dir\x)" << QStringList{R"(C:\dir\x)"};
        QTest::newRow("backslash at the end of a name") << R"(a\\/b)" << QStringList{R"(a\)", "b"};
        QTest::newRow("backslash and slash in a name") << R"(a\\\/b)" << QStringList{R"(a\/b)"};
        QTest::newRow("backslashes at the end") << R"(a/b\\)" << QStringList{"a", R"(b\\)"};
    }
    void textsComeApartAtSlashes()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, names);
        QCOMPARE(splitTrackPath(text), names);
    }

    void joinedNamesComeApartAgain_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QString>("text");

        QTest::newRow("plain") << QStringList{"a", "b"} << "a/b";
        QTest::newRow("slash") << QStringList{"a/b", "c"} << R"(a\/b/c)";
        QTest::newRow("backslash before slash") << QStringList{R"(a\/b)"} << R"(a\\\/b)";
        QTest::newRow("backslash at the end of a name") << QStringList{R"(a\)", "b"} << R"(a\\/b)";
        QTest::newRow("backslash at the end") << QStringList{R"(a\)"} << R"(a\)";
    }
    void joinedNamesComeApartAgain()
    {
        QFETCH(QStringList, names);
        QFETCH(QString, text);
        QCOMPARE(joinTrackPath(names), text);
        QCOMPARE(splitTrackPath(text), names);
    }

    void anyNamesSurviveJoiningAndSplitting()
    {
        QRandomGenerator random(17);
        const QString alphabet = QStringLiteral("a/\\");
        for (int round = 0; round < 2000; ++round) {
            QStringList names;
            for (int i = random.bounded(1, 4); i > 0; --i) {
                QString name;
                for (int j = random.bounded(1, 7); j > 0; --j)
                    name += alphabet.at(random.bounded(3));
                names.append(name);
            }
            QCOMPARE(splitTrackPath(joinTrackPath(names)), names);
        }
    }
};

QTEST_APPLESS_MAIN(TestTrackPath)
#include "tst_track_path.moc"
