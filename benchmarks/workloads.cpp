#include "workloads.h"

#include "bench.h"

#include <VeskTimeline/item_delegate.h>

#include <QApplication>
#include <QMouseEvent>
#include <QRandomGenerator>

using namespace VeskTimeline;

namespace Workload {

namespace {

class OwnPaintItem : public Item
{
public:
    using Item::Item;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index,
               bool isSelected) const override
    {
        Item::paint(painter, option, index, isSelected);
    }
};

constexpr int itemsPerRow = 100;

int trackCountOf(const Description& description)
{
    constexpr int wide = 200;
    switch (description.shape) {
    case Shape::Deep:
        return 1;
    case Shape::Rows:
    case Shape::Nested:
        return description.itemCount / itemsPerRow;
    case Shape::Wide:
    case Shape::Outside:
        break;
    }
    return wide;
}

/// When the item of a number starts.
qint64 startOf(const Description& description, int number)
{
    constexpr int visible = 1'000;
    constexpr int halfHour = 1'800'000;
    if (description.shape != Shape::Outside)
        return origin + static_cast<qint64>(number) * day / description.itemCount;
    const qint64 noon = origin + day / 2;
    if (number < visible)
        return noon + static_cast<qint64>(number) * halfHour / visible;
    // From three to nine hours before and after.
    const qint64 distance = day / 8 + static_cast<qint64>(number) * (day / 4) / description.itemCount;
    return number % 2 == 0 ? noon - distance : noon + distance;
}

} // namespace

std::string nameOf(const Description& description)
{
    const char* const shapes[] = {"wide", "deep", "rows", "nested", "outside"};
    const char* const kinds[] = {"plain", "own_paint"};
    return std::string(shapes[static_cast<int>(description.shape)]) + "/" + kinds[static_cast<int>(description.kind)] +
           "/N:" + std::to_string(description.itemCount);
}

std::string nameOf(Zoom::Factor zoom)
{
    switch (zoom) {
    case Zoom::FifteenSeconds:
        return "window:15s";
    case Zoom::ThirtyMinutes:
        return "window:30min";
    case Zoom::OneDay:
        return "window:1day";
    default:
        return "window:" + std::to_string(zoom) + "ms";
    }
}

Model::Model(int trackCount, bool isNested)
{
    makeTracks(trackCount, isNested);
}

Model::Model(const Description& description) : Model(trackCountOf(description), description.shape == Shape::Nested)
{
    QRandomGenerator random(static_cast<quint32>(description.itemCount));
    for (int i = 0; i < description.itemCount; ++i) {
        const int duration = 20'000 + random.bounded(20'000);
        const QColor color = QColor::fromHsv(random.bounded(360), 160, 220);
        const qint64 start = startOf(description, i);
        std::unique_ptr<Item> item = description.kind == Kind::Plain
                                         ? std::make_unique<Item>(start, duration, color, true)
                                         : std::make_unique<OwnPaintItem>(start, duration, color, true);
        addItem(m_trackIds[static_cast<std::size_t>(i) % m_trackIds.size()], std::move(item), false);
    }
}

void Model::makeTracks(int count, bool isNested)
{
    constexpr int family = 10;
    constexpr int clan = family * family;
    int grandparent = 0;
    int parent = 0;
    for (int i = 0; i < count; ++i) {
        int parentId = 0;
        if (isNested && i % clan != 0)
            parentId = i % family == 0 ? grandparent : parent;
        const QString name = QStringLiteral("Track %1").arg(i);
        const int id = insertTrack(parentId, -1, std::make_unique<Track>(name))->id();
        m_trackIds.push_back(id);
        if (i % clan == 0)
            grandparent = id;
        if (i % family == 0)
            parent = id;
    }
}

Scene::Scene(const Description& wanted) : model(wanted), description(wanted)
{
    view.setModel(&model);
    view.setItemDelegate(new ItemDelegate(&view));
    view.resize(1920, 1080);
    view.setRange(origin, origin + day);
    view.expandAll();
    view.show();
    settle();
}

std::unique_ptr<Scene>& Scene::kept()
{
    static std::unique_ptr<Scene> scene;
    static const bool isToBeForgotten = [] {
        Bench::atEnd(forget);
        return true;
    }();
    Q_UNUSED(isToBeForgotten)
    return scene;
}

Scene& Scene::of(const Description& description)
{
    std::unique_ptr<Scene>& scene = kept();
    if (!scene || !(scene->description == description)) {
        // The old one goes first: two of them at once may be more than there is memory for.
        scene.reset();
        scene = std::make_unique<Scene>(description);
    }
    if (scene->view.hasSelectedItems())
        scene->view.clearSelectedItems();
    scene->setWindow(Zoom::ThirtyMinutes);
    return *scene;
}

void Scene::forget()
{
    kept().reset();
}

void Scene::setWindow(Zoom::Factor zoom)
{
    view.setZoomFactor(zoom);
    view.setCurrentTime(zoom == Zoom::OneDay ? origin : origin + day / 2);
    settle();
}

void Scene::selectFirst(int count)
{
    view.selectItems(model.itemIds().mid(0, count), true);
    settle();
}

void Scene::moveMouse(const QPoint& pos)
{
    QMouseEvent event(QEvent::MouseMove, pos, view.viewport()->mapToGlobal(pos), Qt::NoButton, Qt::NoButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(view.viewport(), &event);
}

void Scene::settle()
{
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents();
    }
}

} // namespace Workload
