#pragma once

#include "support/test_model.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>

#include <QImage>
#include <QSet>
#include <QStringList>

/// A model as an application makes it: with the meaning of the row buttons, and with rules of its own.
class DesktopModel : public TestModel
{
public:
    using TestModel::TestModel;

    bool canDropItem(const VeskTimeline::Item& item, int trackId, qint64 start) const override;
    bool canMoveItem(const VeskTimeline::Item& item, qint64 start) const override;
    void onInsertTrack(const QModelIndex& index) override;
    void onRemoveTrack(const QModelIndex& index) override;

    /// Tracks that take no item of another.
    QSet<int> closedTracks;
    /// Items that stay where they are.
    QSet<int> heldItems;
};

/// A window on the screen with four tracks, A to D. The range begins at `origin` and lasts one hour; the window is its
/// first quarter of an hour over 900 pixels, so that a pixel shows one second.
struct DesktopView
{
    static constexpr qint64 origin = 1'600'000'200'000;
    static constexpr int labelWidth = 200;
    static constexpr int secondsVisible = 900;
    static constexpr int rowHeight = 50;

    // The model outlives the view, as an application's does.
    DesktopModel model;
    VeskTimeline::TimelineView view;
    int trackA = model.newTrack(QStringLiteral("A"));
    int trackB = model.newTrack(QStringLiteral("B"));
    int trackC = model.newTrack(QStringLiteral("C"));
    int trackD = model.newTrack(QStringLiteral("D"));

    DesktopView();

    /// Shows the window; returns whether it is there, has the keyboard's focus and the size described above.
    bool show();

    static qint64 at(int second) { return origin + static_cast<qint64>(second) * 1000; }
    /// Adds an item of whole seconds, counted from the start of the range.
    int addSeconds(int trackId, int start, int length, const QColor& color = Qt::red, bool isEditable = true);
    /// Viewport position of a second in a track's row.
    QPoint pos(int second, int trackId) const;
    /// Viewport position beside a track's name, clear of arrow and buttons.
    QPoint namePos(int trackId) const;
    /// Header position of a second, in the lower half, where the indicator is.
    QPoint rulerPos(int second) const;
    /// "track:start+length" of each item, in seconds, in row order; what all edits show in.
    QStringList items() const;

    VeskTimeline::TimelineHeaderView* header() const { return view.header(); }
    QWidget* rows() const { return view.viewport(); }
    QWidget* ruler() const { return view.header()->viewport(); }
    Qt::CursorShape cursor() const { return view.cursor().shape(); }

    /// What the X server shows of the rows and of the ruler.
    QImage rowsOnScreen() const;
    QImage rulerOnScreen() const;
    /// Whether the X server shows what view and ruler would paint now: nothing has missed a repaint.
    bool isScreenUpToDate() const;

private:
    void appendItems(const VeskTimeline::Track& track, QStringList* texts) const;
};

/// What the X server shows where a widget is.
QImage onScreen(const QWidget* widget);
