#include "auto/view/picture.h"
#include "reference/literal_delegate.h"
#include "support/view_fixture.h"

#include <VeskTimelineKit/labelled_item.h>

#include <QRandomGenerator>
#include <QTest>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

struct Shares
{
    int count = 0;
    /// In percent.
    int instant = 0;
    int open = 0;
    int translucent = 0;
    int selected = 0;
    /// Of the others, in thousandths of the window.
    int longest = 0;
};

/// A view of two rows of items at random, in and around its window.
class Rows
{
public:
    Rows(quint32 seed, Zoom::Factor zoom, const Shares& shares) : m_random(seed), m_shares(shares), m_zoom(zoom)
    {
        f.view.setRange(ViewFixture::origin, ViewFixture::origin + Zoom::OneDay);
        f.view.setZoomFactor(zoom);
        f.view.setCurrentTime(ViewFixture::origin + m_random.bounded(Zoom::OneDay - zoom + 1));
        f.view.resize(500 + m_random.bounded(300), 200);
        QList<int> selected;
        for (const int track : {f.trackA, f.trackB}) {
            for (int i = 0; i < m_shares.count; ++i) {
                const int id = addItem(track);
                if (isOneOf(m_shares.selected))
                    selected.append(id);
            }
        }
        f.view.selectItems(selected, true);
        QCoreApplication::processEvents();
    }

    ViewFixture f;

private:
    bool isOneOf(int percent) { return m_random.bounded(100) < percent; }

    int anyDuration()
    {
        if (isOneOf(m_shares.instant))
            return 0;
        return isOneOf(m_shares.open) ? -1 : 1 + m_random.bounded(m_zoom / 1000 * m_shares.longest);
    }

    int addItem(int track)
    {
        const qint64 start = f.view.currentTime() + m_random.bounded(-m_zoom / 8, m_zoom / 8 * 9);
        const int alpha = isOneOf(m_shares.translucent) ? m_random.bounded(256) : 255;
        const QColor color =
            QColor::fromHsv(m_random.bounded(360), m_random.bounded(256), m_random.bounded(256), alpha);
        const QString label = QStringLiteral("jW").repeated(m_random.bounded(4));
        return f.model.addItem(track, std::make_unique<LabelledItem>(label, start, anyDuration(), color, true), false);
    }

    QRandomGenerator m_random;
    const Shares m_shares;
    const int m_zoom;
};

} // namespace

/// Of items that cover one another only those are painted that are seen; the picture is as if all had been.
class TestLabelledItemRows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void picturesAreThoseOfAllItemsPaintedInTurn_data()
    {
        QTest::addColumn<Shares>("shares");
        QTest::newRow("few") << Shares{40, 10, 5, 10, 20, 60};
        QTest::newRow("few short ones") << Shares{50, 0, 0, 0, 20, 4};
        QTest::newRow("many, none selected") << Shares{1500, 0, 0, 0, 0, 2};
        QTest::newRow("many, some selected") << Shares{1500, 0, 0, 0, 30, 3};
        QTest::newRow("many, one or two selected") << Shares{1500, 0, 0, 0, 1, 3};
        QTest::newRow("many, all selected") << Shares{1500, 0, 0, 0, 100, 3};
        QTest::newRow("many, some markers") << Shares{1500, 2, 0, 0, 10, 3};
        QTest::newRow("many, some open-ended") << Shares{1000, 0, 1, 0, 10, 8};
        QTest::newRow("many, some translucent") << Shares{1000, 0, 0, 5, 10, 8};
        QTest::newRow("many longer ones") << Shares{700, 1, 0, 1, 10, 40};
    }

    void picturesAreThoseOfAllItemsPaintedInTurn()
    {
        QFETCH(Shares, shares);
        quint32 seed = 0;
        for (const Zoom::Factor zoom : {Zoom::FifteenSeconds, Zoom::ThirtyMinutes, Zoom::OneDay}) {
            Rows rows(++seed, zoom, shares);
            TimelineView& view = rows.f.view;
            Reference::LiteralDelegate literal(&view);
            ItemDelegate* const own = view.itemDelegate();
            for (const qreal ratio : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0, 1.1}) {
                const QImage actual = Picture::of(view, ratio);
                view.setItemDelegate(&literal);
                const QImage expected = Picture::of(view, ratio);
                view.setItemDelegate(own);
                COMPARE_PICTURES(actual, expected);
            }
        }
    }
};

QTEST_MAIN(TestLabelledItemRows)
#include "tst_labelled_item_rows.moc"
