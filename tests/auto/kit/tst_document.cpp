#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/result.h>

#include <QTest>

using namespace VeskTimeline::Kit;

namespace {

DocumentItem item(const QString& label, qint64 start, qint64 duration)
{
    return {label, start, duration, {}, true};
}

QStringList paths(const Document& document)
{
    QStringList texts;
    for (const DocumentTrack& track : document.tracks())
        texts.append(track.path.join('>'));
    return texts;
}

} // namespace

class TestDocument : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void anEmptyDocumentHasNoSpan()
    {
        Document document;
        QVERIFY(!document.span());
        QCOMPARE(document.itemCount(), 0);
        document.track({"A"});
        QVERIFY(!document.span());
    }

    void aTrackComesWithItsParentsBeforeIt()
    {
        Document document;
        document.track({"A", "B", "C"});
        document.track({"D"});
        document.track({"A", "E"});
        QCOMPARE(paths(document), (QStringList{"A", "A>B", "A>B>C", "D", "A>E"}));
    }

    void aPathIsThereOnce()
    {
        Document document;
        document.track({"A", "B"}).items.push_back(item("1", 0, 1));
        document.track({"A", "B"}).items.push_back(item("2", 0, 1));
        QCOMPARE(paths(document), (QStringList{"A", "A>B"}));
        QCOMPARE(document.track({"A", "B"}).items.size(), std::size_t(2));
    }

    void namesAreTheSameOnlyBelowTheSameTrack()
    {
        Document document;
        document.track({"A", "B", "A"});
        document.track({"B", "A"});
        document.track({"A", "B", "A"});
        QCOMPARE(paths(document), (QStringList{"A", "A>B", "A>B>A", "B", "B>A"}));
        QVERIFY(document.hasTrack({"B", "A"}));
        QVERIFY(!document.hasTrack({"B", "B"}));
        QVERIFY(!document.hasTrack({"A", "B", "A", "A"}));
        QCOMPARE(&document.trackAt(4), &document.track({"B", "A"}));
    }

    void namesAreHeldOnceHoweverDeepTheTreeIs()
    {
        Document document;
        QStringList path;
        for (int depth = 0; depth < 100; ++depth) {
            path.append(QString("level %1").arg(depth));
            QStringList ownText;
            for (const QString& name : path)
                ownText.append(QString(name.constData(), name.size()));
            document.track(ownText);
        }
        const auto& tracks = document.tracks();
        QCOMPARE(tracks.size(), std::size_t(100));
        for (std::size_t i = 1; i < tracks.size(); ++i) {
            QCOMPARE(tracks[i].path.size(), static_cast<qsizetype>(i + 1));
            QCOMPARE(tracks[i].path.first().constData(), tracks[0].path.first().constData());
        }
    }

    void noMoreTracksAreMadeThanTheLimitAllows()
    {
        Document document;
        for (std::size_t i = 0; i + 2 < Document::mostTracks; ++i)
            QVERIFY(document.trackWithinLimit({QString::number(i)}));
        QVERIFY(!document.trackWithinLimit({"A", "B", "C"}));
        QVERIFY(!document.hasTrack({"A"}));
        QVERIFY(document.trackWithinLimit({"A", "B"}));
        QCOMPARE(document.tracks().size(), Document::mostTracks);
        QVERIFY(!document.trackWithinLimit({"A", "C"}));
        QCOMPARE(document.trackWithinLimit({"A", "B"}), &document.trackAt(Document::mostTracks - 1));
    }

    void theSpanGoesFromTheEarliestStartToTheLatestEnd()
    {
        Document document;
        document.track({"A"}).items = {item("1", 100, 50), item("2", -20, 5)};
        document.track({"B"}).items = {item("3", 90, 200), item("4", 200, 10)};
        QCOMPARE(document.span()->start, -20);
        QCOMPARE(document.span()->end, 290);
        QCOMPARE(document.itemCount(), 4);
    }

    void ofAnOpenEndedItemTheSpanKnowsTheStart()
    {
        Document document;
        document.track({"A"}).items = {item("1", 100, DocumentItem::openEnded)};
        QCOMPARE(document.span()->start, 100);
        QCOMPARE(document.span()->end, 100);
    }

    void mergingJoinsTracksOfTheSamePath()
    {
        Document first;
        first.track({"A", "B"}).items = {item("1", 0, 1)};
        first.addWarning("w1");
        Document second;
        second.track({"C"}).items = {item("2", 0, 1)};
        second.track({"A", "B"}).items = {item("3", 0, 1)};
        second.addWarning("w2");

        first.merge(second);
        QCOMPARE(paths(first), (QStringList{"A", "A>B", "C"}));
        const auto& items = first.track({"A", "B"}).items;
        QCOMPARE(items.size(), std::size_t(2));
        QCOMPARE(items[0].label, "1");
        QCOMPARE(items[1].label, "3");
        QCOMPARE(first.warnings(), (QStringList{"w1", "w2"}));
        QCOMPARE(paths(second), (QStringList{"C", "A", "A>B"}));
    }

    void longItemsAreNamedUpToAHundredAndThenCounted()
    {
        constexpr qint64 longest = DocumentItem::longestBar;
        Document document;
        document.track({"A"}).items = {item("short", 0, longest), item("open", 0, -1), item("long", 0, longest + 1)};
        QCOMPARE(document.longItemWarnings(), QStringList{"\"long\" is longer than 24 days and is shown in pieces"});

        for (int i = 0; i < 101; ++i)
            document.track({"B"}).items.push_back(item("more", 0, 2 * longest));
        const QStringList texts = document.longItemWarnings();
        QCOMPARE(texts.size(), 101);
        QCOMPARE(texts.at(99), "\"more\" is longer than 24 days and is shown in pieces");
        QCOMPARE(texts.last(), "further items that are shown in pieces: 2");
    }

    void ofALongLabelAWarningShowsTheBeginningOnOneLine()
    {
        Document document;
        const QString label = "two\nlines " + QString(1'000'000, 'x');
        document.track({"A"}).items = {item(label, 0, DocumentItem::longestBar + 1)};
        QCOMPARE(document.longItemWarnings(),
                 QStringList{"\"two lines " + QString(30, 'x') + "…\" is longer than 24 days and is shown in pieces"});
    }

    void anErrorNamesFileLineAndReason()
    {
        QCOMPARE((FileError{"a.csv", 3, "bad"}).text(), "a.csv:3: bad");
        QCOMPARE((FileError{"a.csv", 0, "bad"}).text(), "a.csv: bad");
        QCOMPARE((FileError{"a%1.csv", 3, "%2 bad"}).text(), "a%1.csv:3: %2 bad");
    }

    void anErrorIsOneLineWhateverTheFileIsCalled()
    {
        QCOMPARE((FileError{"a b\nc\x1b[1m é.csv", 3, "bad"}).text(), "a b\uFFFDc\uFFFD[1m é.csv:3: bad");
    }
};

QTEST_APPLESS_MAIN(TestDocument)
#include "tst_document.moc"
