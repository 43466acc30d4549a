#include "auto/view/picture.h"
#include "auto/view/recording_handlers.h"
#include "reference/painting.h"
#include "support/input.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

using namespace VeskTimeline;

namespace {

/// Paints the rows as the tree view leaves them to the delegate: names only.
class BareDelegate : public ItemDelegate
{
public:
    using ItemDelegate::ItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        if (index.column() == 0)
            QStyledItemDelegate::paint(painter, option, index);
    }
    void paintDragItems(QPainter* /*painter*/) const override {}
};

class PressedTrackHandler : public TimelineViewTrackHandler
{
public:
    using TimelineViewTrackHandler::TimelineViewTrackHandler;
    void pressInsert(const QModelIndex& index) { m_pressedInsertButtonIndex = index; }
    void pressRemove(const QModelIndex& index) { m_pressedRemoveButtonIndex = index; }
};

/// Everything that the painting depends on, at random.
class RandomScene
{
public:
    RandomScene(quint32 seed, Zoom::Factor zoom) : m_random(seed), m_zoom(zoom)
    {
        f.view.setTrackHandler(&pressed);
        f.view.setRange(ViewFixture::origin, ViewFixture::origin + Zoom::OneDay);
        f.view.setZoomFactor(zoom);
        f.view.setCurrentTime(ViewFixture::origin + Zoom::OneDay / 3);
        f.view.setCurrentTime(ViewFixture::origin + m_random.bounded(Zoom::OneDay - zoom + 1));
        addTracks();
        for (int i = 0; i < 120; ++i)
            addItem();
        addCopies();
        selectAndDrag();
        addOverlays();
    }

    ViewFixture f;
    RecordingHandlers handlers{f.view};
    PressedTrackHandler pressed{&f.view};
    Reference::Gestures gestures;

    /// The rows with their names, without all that comes over them.
    QImage background(qreal devicePixelRatio)
    {
        TimelineHeaderView* const header = f.view.header();
        ItemDelegate* const delegate = f.view.itemDelegate();
        const bool isIndicatorVisible = header->isIndicatorVisible();
        const bool isLiveVisible = header->isLiveIndicatorVisible();
        const bool isBand = std::exchange(handlers.select.rubberBandActive, false);
        BareDelegate bare(&f.view);
        f.view.setItemDelegate(&bare);
        header->setIndicatorVisible(false);
        header->setLiveIndicatorVisible(false);
        header->setHoverVisible(false);
        const QImage image = Picture::of(f.view, devicePixelRatio);
        header->setIndicatorVisible(isIndicatorVisible);
        header->setLiveIndicatorVisible(isLiveVisible);
        header->setHoverVisible(true);
        f.view.setItemDelegate(delegate);
        handlers.select.rubberBandActive = isBand;
        return image;
    }

private:
    qint64 timeAround() { return f.view.currentTime() + m_random.bounded(-m_zoom / 2, m_zoom + m_zoom / 4); }
    bool oneIn(int count) { return m_random.bounded(count) == 0; }
    int anyTrack() { return m_tracks.at(m_random.bounded(static_cast<int>(m_tracks.size()))); }

    void addTracks()
    {
        m_tracks = {f.trackA, f.trackB, f.model.newTrack(QStringLiteral("C"))};
        for (int i = 0; i < 5; ++i)
            m_tracks.append(f.model.newTrack(QStringLiteral("child %1").arg(i), anyTrack()));
        for (const int id : std::as_const(m_tracks)) {
            f.model.track(id)->setInsertButton(oneIn(2));
            f.model.track(id)->setRemoveButton(oneIn(2));
        }
        f.view.expandAll();
        f.view.setExpanded(f.view.indexOfTrackRow(m_tracks.first(), 0), oneIn(2));
        gestures.pressedInsertButton = f.view.indexOfTrackRow(anyTrack(), 0);
        gestures.pressedRemoveButton = f.view.indexOfTrackRow(anyTrack(), 0);
        pressed.pressInsert(gestures.pressedInsertButton);
        pressed.pressRemove(gestures.pressedRemoveButton);
        f.model.setEditable(!oneIn(3));
        QCoreApplication::processEvents();
    }

    void addItem()
    {
        const QColor color =
            QColor::fromRgb(m_random.bounded(256), m_random.bounded(256), m_random.bounded(256), oneIn(4) ? 120 : 255);
        const qint64 start = oneIn(30) ? m_random.bounded(2'000'000'000) * qint64(1500) : timeAround();
        int duration = m_random.bounded(m_zoom / 10);
        if (oneIn(10))
            duration = oneIn(2) ? 0 : -1;
        else if (oneIn(10))
            duration = m_zoom * 3 / 2;
        m_items.append(f.model.newItem(anyTrack(), start, duration, color));
    }

    void addCopies()
    {
        for (const int id : std::as_const(m_items)) {
            if (oneIn(6))
                f.model.track(anyTrack())->addCopyItemId(id);
        }
    }

    void selectAndDrag()
    {
        for (const int id : std::as_const(m_items)) {
            if (oneIn(5))
                f.view.selectItem(id, false);
            const bool isShown =
                f.view.visualRect(f.view.indexOfTrackRow(f.model.item(id)->parentTrackId(), 1)).isValid();
            if (isShown && oneIn(6))
                gestures.dragItemIds.append(id);
        }
        gestures.dragDelta = QPoint(m_random.bounded(-300, 300), m_random.bounded(-120, 120));
        handlers.drag.setDragItemIds(gestures.dragItemIds);
        handlers.drag.delta = gestures.dragDelta;
    }

    void addOverlays()
    {
        TimelineHeaderView* const header = f.view.header();
        header->setIndicatorVisible(!oneIn(4));
        header->setIndicatorTime(timeAround());
        header->setLiveIndicatorTime(timeAround());
        header->setLiveIndicatorVisible(!oneIn(4));
        header->setLiveIndicatorColor(Qt::darkGreen);
        gestures.isRubberBandActive = !oneIn(3);
        gestures.rubberBand = QRect(QPoint(1000, 150), QSize(m_random.bounded(-600, 600), m_random.bounded(-140, 140)));
        handlers.select.rubberBandActive = gestures.isRubberBandActive;
        handlers.select.setRubberBand(gestures.rubberBand);
        if (!oneIn(3))
            gestures.cursorText = QStringLiteral("text beside the mouse");
        f.view.setCursorText(gestures.cursorText);
        f.view.setCursorTextVisible(!oneIn(4));
        gestures.mouse = QPoint(m_random.bounded(50, 1900), m_random.bounded(10, 300));
        Input::move(&f.view, gestures.mouse);
    }

    QRandomGenerator m_random;
    const int m_zoom;
    QList<int> m_tracks;
    QList<int> m_items;
};

} // namespace

class TestViewPainting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void viewPaintsWhatTheReferencePaints_data();
    void viewPaintsWhatTheReferencePaints();
};

void TestViewPainting::viewPaintsWhatTheReferencePaints_data()
{
    QTest::addColumn<int>("zoom");
    QTest::addColumn<quint32>("seed");
    QTest::addColumn<qreal>("devicePixelRatio");
    quint32 seed = 0;
    for (const Zoom::Factor zoom : {Zoom::FifteenSeconds, Zoom::TenMinutes, Zoom::ThirtyMinutes, Zoom::OneDay}) {
        for (const qreal ratio : {1.0, 1.0, 2.0, 2.0}) {
            ++seed;
            QTest::addRow("zoom %d s, ratio %g, seed %u", zoom / 1000, ratio, seed)
                << static_cast<int>(zoom) << seed << ratio;
        }
    }
}

void TestViewPainting::viewPaintsWhatTheReferencePaints()
{
    QFETCH(int, zoom);
    QFETCH(quint32, seed);
    QFETCH(qreal, devicePixelRatio);
    RandomScene scene(seed, static_cast<Zoom::Factor>(zoom));
    const QImage background = scene.background(devicePixelRatio);
    QImage expected = background;
    {
        QPainter painter(&expected);
        Reference::Painting(scene.f.view, scene.f.model, scene.gestures).paint(painter);
    }
    const QImage actual = Picture::of(scene.f.view, devicePixelRatio);
    QVERIFY(actual != background);
    COMPARE_PICTURES(actual, expected);
}

QTEST_MAIN(TestViewPainting)
#include "tst_view_painting.moc"
