#include "auto/view/picture.h"
#include "auto/view/recording_handlers.h"
#include "reference/literal_delegate.h"
#include "support/stderr_capture.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QScreen>
#include <QTest>
#include <QTransform>

using namespace VeskTimeline;

namespace {

/// Says what it is asked to paint, and paints it like any other item.
class TellingItem : public Item
{
public:
    TellingItem(QStringList* calls, qint64 start, int duration, const QColor& color)
        : Item(start, duration, color, true), m_calls(calls)
    {
    }
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index,
               bool isSelected) const override
    {
        const QRect& rect = option.rect;
        m_calls->append(QStringLiteral("%1: %2,%3 %4x%5 in %6 of %7, %8")
                            .arg(id())
                            .arg(rect.x())
                            .arg(rect.y())
                            .arg(rect.width())
                            .arg(rect.height())
                            .arg(index.row())
                            .arg(index.data().toInt())
                            .arg(isSelected));
        Item::paint(painter, option, index, isSelected);
    }

private:
    QStringList* m_calls;
};

/// Paints beyond its bar and not to its whole height, but nothing when its times lie outside the window.
class MarkerItem : public Item
{
public:
    MarkerItem(qint64 start, int duration, const QColor& color) : Item(start, duration, color, true)
    {
        setCulling(Culling::Outside);
    }
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& /*index*/,
               bool isSelected) const override
    {
        ++calls;
        QRect bar = option.rect.adjusted(0, 4, 0, -4);
        if (duration() < 0)
            bar.setRight(std::max(bar.left() - 1, static_cast<int>(painter->clipBoundingRect().right())));
        if (bar.width() < 0)
            return;
        painter->save();
        painter->setPen(isSelected ? Qt::red : Qt::blue);
        painter->setBrush(m_color);
        painter->drawRect(bar);
        painter->setRenderHint(QPainter::Antialiasing);
        painter->drawEllipse(bar.center(), 5, 5);
        painter->restore();
    }

    static int calls;
};
int MarkerItem::calls = 0;

/// An item of another class that looks like any other.
class LikeAnyOtherItem : public Item
{
public:
    LikeAnyOtherItem(qint64 start, int duration, const QColor& color) : Item(start, duration, color, true)
    {
        setCulling(Culling::Bar);
    }
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index,
               bool isSelected) const override
    {
        ++calls;
        Item::paint(painter, option, index, isSelected);
    }

    static int calls;
};
int LikeAnyOtherItem::calls = 0;

/// Leaves space above and below its bar, which is three pixels wide at least and has an outline of its own. Has marks
/// for items that do not last.
class CoveredItem : public Item
{
public:
    CoveredItem(qint64 start, int duration, const QColor& color) : Item(start, duration, color, true)
    {
        setCulling(Culling::Covered);
    }
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& /*index*/,
               bool isSelected) const override
    {
        ++calls;
        QRect bar = option.rect.adjusted(0, 3, 0, -4);
        const bool isOutside = duration() >= 0 && bar.width() < 0;
        if (isOutside)
            return;
        painter->save();
        painter->setBrush(m_color);
        if (duration() > 0) {
            bar.setWidth(std::max(bar.width(), 3));
            painter->setPen(QPen(isSelected ? s_highlightColor : m_color.darker(), isSelected ? 5 : 1, Qt::SolidLine,
                                 Qt::SquareCap, Qt::BevelJoin));
            painter->drawRect(bar.adjusted(0, 0, -1, -1));
        } else {
            painter->setRenderHint(QPainter::Antialiasing);
            painter->drawEllipse(bar.center(), 5, 5);
        }
        painter->restore();
    }

    static int calls;
};
int CoveredItem::calls = 0;

struct Kind
{
    /// Of the items per track.
    int count = 40;
    /// Share of items in percent that are...
    int open = 5;
    int instant = 5;
    int longer = 5;
    int outside = 30;
    int identical = 10;
    int reversed = 0;
    int translucent = 0;
    int selected = 20;
    int dragged = 5;
    int copied = 5;
    int telling = 0;
    int marker = 0;
    int likeAnyOther = 0;
    int covered = 0;
    /// Longest of the others in thousandths of the window.
    int length = 30;
    bool isShuffled = false;
};

/// A view over items at random.
class Scene
{
public:
    Scene(quint32 seed, Zoom::Factor zoom, const Kind& kind) : m_random(seed), m_kind(kind), m_zoom(zoom)
    {
        for (const char* const name : {"C", "D", "E"})
            m_tracks.append(f.model.newTrack(name, *name == 'E' ? f.trackA : 0));
        f.view.expandAll();
        f.view.setRange(ViewFixture::origin, ViewFixture::origin + Zoom::OneDay);
        f.view.setZoomFactor(zoom);
        f.view.setCurrentTime(ViewFixture::origin + m_random.bounded(Zoom::OneDay - zoom + 1));
        f.view.resize(f.view.width() - m_random.bounded(900), 180 + m_random.bounded(150));
        f.model.setEditable(m_random.bounded(4) != 0);
        for (const int track : std::as_const(m_tracks))
            addItems(track);
        selectAndDrag();
        QCoreApplication::processEvents();
    }

    ViewFixture f;
    RecordingHandlers handlers{f.view};
    QStringList calls;

    /// What `picture` returns while the view has another delegate.
    template <typename Picture>
    auto with(ItemDelegate& delegate, const Picture& picture)
    {
        ItemDelegate* const own = f.view.itemDelegate();
        f.view.setItemDelegate(&delegate);
        QCoreApplication::processEvents();
        auto result = picture();
        f.view.setItemDelegate(own);
        QCoreApplication::processEvents();
        return result;
    }

private:
    bool isOneOf(int percent) { return m_random.bounded(100) < percent; }

    qint64 anyTime()
    {
        if (isOneOf(m_kind.outside))
            return f.view.currentTime() + m_random.bounded(-40, 40) * qint64(m_zoom);
        // Close to the window's edges, many items have the same pixels and some just do not.
        if (isOneOf(20))
            return f.view.currentTime() + m_random.bounded(2) * qint64(m_zoom) +
                   m_random.bounded(-m_zoom, m_zoom) / 150;
        return f.view.currentTime() + m_random.bounded(m_zoom);
    }

    int anyDuration()
    {
        if (isOneOf(m_kind.open))
            return -1;
        if (isOneOf(m_kind.instant))
            return 0;
        if (isOneOf(m_kind.reversed))
            return -m_random.bounded(m_zoom / 2);
        if (isOneOf(m_kind.longer))
            return m_random.bounded(m_zoom);
        return m_random.bounded(m_zoom / 1000 * m_kind.length);
    }

    QColor anyColor()
    {
        if (isOneOf(m_kind.translucent))
            return m_random.bounded(3) == 0 ? QColor(Qt::transparent) : QColor(10, 200, 30, m_random.bounded(256));
        switch (m_random.bounded(4)) {
        case 0:
            return QColor::fromHsv(m_random.bounded(360), m_random.bounded(256), m_random.bounded(256));
        case 1:
            return QColor::fromRgba64(QRgba64::fromRgba64(static_cast<quint16>(m_random.bounded(65536)), 30'000,
                                                          static_cast<quint16>(m_random.bounded(65536)), 65'535));
        case 2:
            return {};
        default:
            return QColor::fromRgb(m_random.bounded(256), m_random.bounded(256), m_random.bounded(256));
        }
    }

    void addItems(int track)
    {
        qint64 start = anyTime();
        int duration = anyDuration();
        for (int i = 0; i < m_kind.count; ++i) {
            if (!isOneOf(m_kind.identical)) {
                start = anyTime();
                duration = anyDuration();
            }
            if (isOneOf(m_kind.telling))
                m_items.append(
                    f.model.addItem(track, std::make_unique<TellingItem>(&calls, start, duration, anyColor()), false));
            else if (isOneOf(m_kind.marker))
                m_items.append(
                    f.model.addItem(track, std::make_unique<MarkerItem>(start, duration, anyColor()), false));
            else if (isOneOf(m_kind.likeAnyOther))
                m_items.append(
                    f.model.addItem(track, std::make_unique<LikeAnyOtherItem>(start, duration, anyColor()), false));
            else if (isOneOf(m_kind.covered))
                m_items.append(
                    f.model.addItem(track, std::make_unique<CoveredItem>(start, duration, anyColor()), false));
            else
                m_items.append(f.model.newItem(track, start, duration, anyColor()));
        }
        if (m_kind.isShuffled) {
            for (const ItemPtr& item : std::as_const(*f.model.track(track)).items()) {
                if (isOneOf(30))
                    item->_setStartTime(anyTime());
            }
        }
    }

    void selectAndDrag()
    {
        QList<int> selected;
        QVector<int> dragged;
        for (const int id : std::as_const(m_items)) {
            if (isOneOf(m_kind.selected))
                selected.append(id);
            if (isOneOf(m_kind.dragged))
                dragged.append(id);
            if (isOneOf(m_kind.copied))
                f.model.track(m_tracks.at(m_random.bounded(static_cast<int>(m_tracks.size()))))->addCopyItemId(id);
        }
        f.view.selectItems(selected, true);
        std::shuffle(dragged.begin(), dragged.end(), m_random);
        handlers.drag.setDragItemIds(dragged);
        handlers.drag.delta = {m_random.bounded(-300, 300), m_random.bounded(-60, 60)};
    }

    QRandomGenerator m_random;
    const Kind m_kind;
    const int m_zoom;
    QList<int> m_tracks{f.trackA, f.trackB};
    QList<int> m_items;
};

Kind many()
{
    Kind kind;
    kind.count = 700;
    kind.length = 2;
    kind.longer = 1;
    kind.open = 1;
    return kind;
}

Kind with(Kind kind, int Kind::*share, int value)
{
    kind.*share = value;
    return kind;
}

QList<QPair<const char*, Kind>> kinds()
{
    Kind shuffled;
    shuffled.isShuffled = true;
    Kind manyShuffled = many();
    manyShuffled.isShuffled = true;
    Kind outside = with(many(), &Kind::outside, 97);
    outside.selected = 1;
    Kind manyCovered = with(many(), &Kind::covered, 100);
    manyCovered.instant = 1;
    Kind manyCoveredShuffled = manyCovered;
    manyCoveredShuffled.isShuffled = true;
    return {{"few", {}},
            {"covered", with({}, &Kind::covered, 100)},
            {"covered and others", with(with({}, &Kind::covered, 60), &Kind::marker, 20)},
            {"many covered", manyCovered},
            {"many covered, none selected", with(manyCovered, &Kind::selected, 0)},
            {"many covered, all selected", with(manyCovered, &Kind::selected, 100)},
            {"many covered, few selected", with(manyCovered, &Kind::selected, 1)},
            {"many covered, some translucent", with(manyCovered, &Kind::translucent, 10)},
            {"many covered, dragged", with(manyCovered, &Kind::dragged, 60)},
            {"many covered, out of order", manyCoveredShuffled},
            {"many covered and others", with(with(many(), &Kind::covered, 60), &Kind::marker, 5)},
            {"none selected", with({}, &Kind::selected, 0)},
            {"all selected", with({}, &Kind::selected, 100)},
            {"translucent", with({}, &Kind::translucent, 30)},
            {"reversed", with({}, &Kind::reversed, 20)},
            {"out of order", shuffled},
            {"of another class", with({}, &Kind::telling, 30)},
            {"markers among them", with({}, &Kind::marker, 30)},
            {"markers only", with({}, &Kind::marker, 100)},
            {"many", many()},
            {"many, markers among them", with(many(), &Kind::marker, 10)},
            {"many markers", with(many(), &Kind::marker, 100)},
            {"many like any other", with(many(), &Kind::likeAnyOther, 100)},
            {"many, none selected", with(many(), &Kind::selected, 0)},
            {"many, all selected", with(many(), &Kind::selected, 100)},
            {"many, few selected", with(many(), &Kind::selected, 1)},
            {"many, some translucent", with(many(), &Kind::translucent, 1)},
            {"many, reversed", with(many(), &Kind::reversed, 10)},
            {"many, out of order", manyShuffled},
            {"many, hardly any in sight", outside},
            {"many, very short", with(many(), &Kind::length, 1)},
            {"many, dragged", with(many(), &Kind::dragged, 60)}};
}

} // namespace

/// What the delegate paints, although it leaves out most items, is what comes out when all of them are painted in turn.
class TestRowPainting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void picturesAreThoseOfTheLiteralLoop_data();
    void picturesAreThoseOfTheLiteralLoop();
    void whatIsOnTheScreenIsThatOfTheLiteralLoop_data() { picturesAreThoseOfTheLiteralLoop_data(); }
    void whatIsOnTheScreenIsThatOfTheLiteralLoop();
    void partsArePaintedAsWell();
    void foreignPaintersArePaintedOnAsWell_data();
    void foreignPaintersArePaintedOnAsWell();
    void subclassMayChangeTheHeightOfRows();
    void itemsOfAnotherClassAreCalledAsByTheLiteralLoop_data();
    void itemsOfAnotherClassAreCalledAsByTheLiteralLoop();
    void itemsThatSaySoAreCalledOnlyWhereTheyAreSeen();
    void itemsThatAreCoveredAreNotCalled();
    void whatAnItemSaysLaterCountsAsWell();
    void itemsAroundTheEpochArePaintedAsWell();
};

void TestRowPainting::picturesAreThoseOfTheLiteralLoop_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<int>("zoom");
    QTest::addColumn<quint32>("seed");
    quint32 seed = 0;
    for (const auto& [name, kind] : kinds()) {
        for (const Zoom::Factor zoom : {Zoom::FifteenSeconds, Zoom::ThirtyMinutes, Zoom::OneDay}) {
            ++seed;
            QTest::addRow("%s, %d s, seed %u", name, zoom / 1000, seed) << kind << static_cast<int>(zoom) << seed;
        }
    }
}

void TestRowPainting::picturesAreThoseOfTheLiteralLoop()
{
    QFETCH(Kind, kind);
    QFETCH(int, zoom);
    QFETCH(quint32, seed);
    Scene scene(seed, static_cast<Zoom::Factor>(zoom), kind);
    Reference::LiteralDelegate literal(&scene.f.view);
    for (const qreal ratio : {1.0, 1.25, 1.5, 2.0, 2.75, 1.1}) {
        const auto picture = [&] { return Picture::of(scene.f.view, ratio); };
        COMPARE_PICTURES(picture(), scene.with(literal, picture));
    }
}

void TestRowPainting::whatIsOnTheScreenIsThatOfTheLiteralLoop()
{
    QFETCH(Kind, kind);
    QFETCH(int, zoom);
    QFETCH(quint32, seed);
    Scene scene(seed, static_cast<Zoom::Factor>(zoom), kind);
    TimelineView& view = scene.f.view;
    Reference::LiteralDelegate literal(&view);
    const auto picture = [&] {
        view.viewport()->repaint();
        return view.screen()->grabWindow(view.winId()).toImage();
    };
    const QImage shown = picture();
    QCOMPARE(shown.devicePixelRatio(), view.devicePixelRatio());
    COMPARE_PICTURES(shown, scene.with(literal, picture));
}

void TestRowPainting::partsArePaintedAsWell()
{
    QRandomGenerator random(7);
    for (quint32 seed = 1; seed <= 10; ++seed) {
        Scene scene(seed, Zoom::ThirtyMinutes, seed % 2 ? Kind() : many());
        TimelineView& view = scene.f.view;
        Reference::LiteralDelegate literal(&view);
        QRegion region;
        for (int i = 0; i < 3; ++i)
            region += QRect(random.bounded(view.width()), random.bounded(view.height()), 1 + random.bounded(300),
                            1 + random.bounded(90));
        const auto picture = [&] {
            QImage image(view.viewport()->size(), QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::magenta);
            view.viewport()->render(&image, QPoint(), region);
            return image;
        };
        COMPARE_PICTURES(picture(), scene.with(literal, picture));
    }
}

void TestRowPainting::foreignPaintersArePaintedOnAsWell_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::addColumn<QTransform>("transform");
    QTest::addColumn<bool>("isSmooth");
    QTest::addColumn<qreal>("opacity");
    const QTransform same;
    QTest::newRow("plain") << QImage::Format_RGB32 << same << false << 1.0;
    QTest::newRow("with alpha") << QImage::Format_ARGB32_Premultiplied << same << false << 1.0;
    QTest::newRow("alpha not multiplied") << QImage::Format_ARGB32 << same << false << 1.0;
    QTest::newRow("16 bits") << QImage::Format_RGB16 << same << false << 1.0;
    QTest::newRow("10 bits a colour") << QImage::Format_RGB30 << same << false << 1.0;
    QTest::newRow("64 bits") << QImage::Format_RGBA64_Premultiplied << same << false << 1.0;
    QTest::newRow("anti-aliased") << QImage::Format_RGB32 << same << true << 1.0;
    QTest::newRow("half opaque") << QImage::Format_RGB32 << same << false << 0.5;
    QTest::newRow("moved") << QImage::Format_RGB32 << QTransform::fromTranslate(13, -7) << false << 1.0;
    QTest::newRow("moved by parts") << QImage::Format_RGB32 << QTransform::fromTranslate(0.3, 0.6) << false << 1.0;
    QTest::newRow("moved by a quarter") << QImage::Format_RGB32 << QTransform::fromTranslate(0.25, 0.5) << false << 1.0;
    QTest::newRow("scaled and moved") << QImage::Format_RGB32 << QTransform(2, 0, 0, 2, 0.25, 0.75) << false << 1.0;
    QTest::newRow("small") << QImage::Format_RGB32 << QTransform::fromScale(0.5, 0.5) << false << 1.0;
    QTest::newRow("scaled oddly") << QImage::Format_RGB32 << QTransform::fromScale(1.3, 1.3) << false << 1.0;
    QTest::newRow("scaled unevenly") << QImage::Format_RGB32 << QTransform::fromScale(1, 1.5) << false << 1.0;
    QTest::newRow("mirrored") << QImage::Format_RGB32 << QTransform(-1, 0, 0, 1, 900, 0) << false << 1.0;
    QTest::newRow("turned") << QImage::Format_RGB32 << QTransform().rotate(4) << false << 1.0;
}

void TestRowPainting::foreignPaintersArePaintedOnAsWell()
{
    QFETCH(QImage::Format, format);
    QFETCH(QTransform, transform);
    QFETCH(bool, isSmooth);
    QFETCH(qreal, opacity);
    for (const Kind& kind : {Kind(), many(), with(many(), &Kind::selected, 0)}) {
        Scene scene(3, Zoom::ThirtyMinutes, kind);
        Reference::LiteralDelegate literal(&scene.f.view);
        const auto picture = [&] {
            QImage image(1000, 300, format);
            image.fill(Qt::lightGray);
            QPainter painter(&image);
            painter.setTransform(transform);
            painter.setRenderHint(QPainter::Antialiasing, isSmooth);
            painter.setOpacity(opacity);
            QStyleOptionViewItem option;
            for (const int track : {scene.f.trackA, scene.f.trackB}) {
                const QModelIndex index = scene.f.view.indexOfTrackRow(track, 1);
                option.rect = scene.f.view.visualRect(index);
                scene.f.view.itemDelegate()->paint(&painter, option, index);
            }
            return image.convertToFormat(QImage::Format_ARGB32);
        };
        COMPARE_PICTURES(picture(), scene.with(literal, picture));
    }
}

void TestRowPainting::subclassMayChangeTheHeightOfRows()
{
    class LowLiteralDelegate : public Reference::LiteralDelegate
    {
    public:
        using LiteralDelegate::LiteralDelegate;
        QSize sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& /*index*/) const override
        {
            return {100, height};
        }
        int height = 0;
    };
    class LowDelegate : public ItemDelegate
    {
    public:
        using ItemDelegate::ItemDelegate;
        QSize sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& /*index*/) const override
        {
            return {100, height};
        }
        int height = 0;
    };
    for (const int height : {1, 2, 3, 5, 7, 11, 16, 17, 23}) {
        Scene scene(5, Zoom::ThirtyMinutes, many());
        scene.f.view.setRootIsDecorated(false);
        LowLiteralDelegate literal(&scene.f.view);
        LowDelegate low(&scene.f.view);
        literal.height = low.height = height;
        for (const qreal ratio : {1.0, 1.25, 1.5, 2.0}) {
            const auto picture = [&] {
                scene.f.view.doItemsLayout();
                return Picture::of(scene.f.view, ratio);
            };
            COMPARE_PICTURES(scene.with(low, picture), scene.with(literal, picture));
        }
    }
}

void TestRowPainting::itemsOfAnotherClassAreCalledAsByTheLiteralLoop_data()
{
    QTest::addColumn<int>("share");
    QTest::addColumn<Kind>("kind");
    for (const int share : {4, 20, 100}) {
        QTest::addRow("%d %% of a few", share) << share << Kind();
        QTest::addRow("%d %% of many", share) << share << with(many(), &Kind::outside, 90);
    }
}

void TestRowPainting::itemsOfAnotherClassAreCalledAsByTheLiteralLoop()
{
    QFETCH(int, share);
    QFETCH(Kind, kind);
    for (quint32 seed = 1; seed <= 3; ++seed) {
        Scene scene(seed, Zoom::ThirtyMinutes, with(kind, &Kind::telling, share));
        Reference::LiteralDelegate literal(&scene.f.view);
        const auto calls = [&] {
            scene.calls.clear();
            Picture::of(scene.f.view);
            return scene.calls;
        };
        const QStringList expected = scene.with(literal, calls);
        QVERIFY(!expected.isEmpty());
        QCOMPARE(calls(), expected);
    }
}

void TestRowPainting::itemsThatSaySoAreCalledOnlyWhereTheyAreSeen()
{
    for (const int count : {30, 3000}) {
        ViewFixture f;
        // Twenty of them are in sight.
        for (int i = 0; i < count; ++i) {
            const qint64 start = f.at(i < 20 ? i * 80 + 20 : 2000 + 4 * i);
            f.model.addItem(f.trackA, std::make_unique<MarkerItem>(start, 30'000, Qt::green), false);
            f.model.addItem(f.trackB, std::make_unique<LikeAnyOtherItem>(start, 30'000, Qt::green), false);
        }
        MarkerItem::calls = LikeAnyOtherItem::calls = 0;
        Picture::of(f.view);
        QCOMPARE(MarkerItem::calls, 20);
        QCOMPARE(LikeAnyOtherItem::calls, 0);
    }
}

void TestRowPainting::itemsThatAreCoveredAreNotCalled()
{
    for (const int count : {30, 3000}) {
        ViewFixture f;
        // All in five seconds, which are five pixels wide.
        for (int i = 0; i < count; ++i)
            f.model.addItem(f.trackA, std::make_unique<CoveredItem>(f.at(100) + i * 5000 / count, 500, Qt::green),
                            false);
        CoveredItem::calls = 0;
        Picture::of(f.view);
        QCOMPARE_LE(CoveredItem::calls, 7);
        QCOMPARE_GE(CoveredItem::calls, 5);
        f.view.selectAllItems();
        CoveredItem::calls = 0;
        Picture::of(f.view);
        QVERIFY(CoveredItem::calls < 30);
        // What is behind can be seen through the others.
        for (const ItemPtr& item : f.model.track(f.trackA)->items())
            item->setColor(QColor(0, 255, 0, 254));
        CoveredItem::calls = 0;
        Picture::of(f.view);
        QCOMPARE(CoveredItem::calls, count);
    }
}

void TestRowPainting::whatAnItemSaysLaterCountsAsWell()
{
    class FickleItem : public TellingItem
    {
    public:
        using TellingItem::setCulling;
        using TellingItem::TellingItem;
    };
    ViewFixture f;
    QStringList calls;
    FickleItem* last = nullptr;
    for (int i = 0; i < 200; ++i) {
        auto item = std::make_unique<FickleItem>(&calls, f.at(i), 500, Qt::green);
        item->setCulling(Item::Culling::Bar);
        last = item.get();
        f.model.addItem(f.trackA, std::move(item), false);
    }
    Picture::of(f.view);
    QCOMPARE(calls.size(), 0);
    last->setCulling(Item::Culling::None);
    Picture::of(f.view);
    QCOMPARE(calls.size(), 200);
}

// Times that mean "none" elsewhere have a position of their own.
void TestRowPainting::itemsAroundTheEpochArePaintedAsWell()
{
    for (const qint64 from : {qint64(-900'000), qint64(-1), qint64(0), qint64(1), qint64(-100'000'000)}) {
        ViewFixture f;
        f.view.setRange(-200'000'000, 200'000'000);
        f.view.setCurrentTime(from);
        QCOMPARE(f.view.currentTime(), from);
        for (int i = 0; i < 100; ++i) {
            f.model.newItem(f.trackA, -1, i * 300, Qt::red);
            f.model.newItem(f.trackB, i * 1000 - 50'000, -1, Qt::green);
            f.model.newItem(f.trackB, i * 1000 - 1'000'000, -1 - (i * 1000 - 1'000'000), Qt::blue);
        }
        Reference::LiteralDelegate literal(&f.view);
        const QImage actual = Picture::of(f.view);
        ItemDelegate* const own = f.view.itemDelegate();
        f.view.setItemDelegate(&literal);
        const QImage expected = Picture::of(f.view);
        f.view.setItemDelegate(own);
        COMPARE_PICTURES(actual, expected);
    }
}

QTEST_MAIN(TestRowPainting)
#include "tst_row_painting.moc"
