#pragma once

#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>

#include <memory>
#include <string>
#include <vector>

/// The models that are measured, and a view over them. Items last about 30 s and are spread over the 24 hours from
/// `origin`, if nothing else is said.
namespace Workload {

constexpr qint64 origin = 1'600'000'000'000;
constexpr int day = 86'400'000;

enum class Shape {
    Wide,    ///< over 200 tracks
    Deep,    ///< all on one track
    Rows,    ///< 100 on each track
    Nested,  ///< 100 on each track; tracks are parents of nine others, and every tenth of these parents of nine more
    Outside, ///< over 200 tracks; 1,000 in the half hour at noon, all others three hours or more away from it
};

enum class Kind {
    Plain,
    OwnPaint, ///< of a class of its own, which paints what the plain ones do
};

struct Description
{
    Shape shape = Shape::Wide;
    int itemCount = 0;
    Kind kind = Kind::Plain;

    bool operator==(const Description& other) const
    {
        return shape == other.shape && itemCount == other.itemCount && kind == other.kind;
    }
};

/// "wide/plain/N:1000"
std::string nameOf(const Description& description);
std::string nameOf(VeskTimeline::Zoom::Factor zoom);

class Model : public VeskTimeline::TimelineModel
{
public:
    /// Without items.
    explicit Model(int trackCount, bool isNested = false);
    explicit Model(const Description& description);

    const std::vector<int>& trackIds() const { return m_trackIds; }

    using TimelineModel::addItem;

private:
    void makeTracks(int count, bool isNested);

    std::vector<int> m_trackIds;
};

/// A view of 1920 by 1080 pixels over a model, on screen, the window in the middle of the day. Twenty rows are in it.
class Scene
{
public:
    explicit Scene(const Description& description);

    /// The scene of that description. It is kept until another one is asked for, because some take long to make; the
    /// rows are expanded, the selection is empty and the window's length 30 minutes.
    static Scene& of(const Description& description);
    /// Destroys what is kept, for measurements that shall not be disturbed.
    static void forget();

    void setWindow(VeskTimeline::Zoom::Factor zoom);
    void selectFirst(int count);
    /// Moves the mouse as the platform does, without a button.
    void moveMouse(const QPoint& pos);
    /// Paints the rows and what else is to be painted of the window, now.
    void paint() { view.viewport()->repaint(); }
    /// Does all that has been put off, painting included.
    static void settle();

    Model model;
    VeskTimeline::TimelineView view;
    Description description;

private:
    static std::unique_ptr<Scene>& kept();
};

} // namespace Workload
