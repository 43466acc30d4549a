#include "member_layout.h"
#include "paint_counter.h"
#include "support/recording_logger.h"
#include "support/view_fixture.h"

#include <VeskTimeline/timeline_header_view_mouse_handler.h>
#include <VeskTimeline/timeline_view_drag_handler.h>
#include <VeskTimeline/timeline_view_resize_handler.h>
#include <VeskTimeline/timeline_view_selection_handler.h>
#include <VeskTimeline/timeline_view_track_handler.h>

#include <QIdentityProxyModel>
#include <QPointer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace VeskTimeline;

PUBLISH_MEMBER(TimelineView, m_header)
PUBLISH_MEMBER(TimelineView, m_timelineModel)
PUBLISH_MEMBER(TimelineView, m_model)
PUBLISH_MEMBER(TimelineView, m_proxyModel)
PUBLISH_MEMBER(TimelineView, m_delegate)
PUBLISH_MEMBER(TimelineView, m_dragHandler)
PUBLISH_MEMBER(TimelineView, m_resizeHandler)
PUBLISH_MEMBER(TimelineView, m_selectHandler)
PUBLISH_MEMBER(TimelineView, m_trackHandler)
PUBLISH_MEMBER(TimelineView, m_zoomFactor)
PUBLISH_MEMBER(TimelineView, m_upperZoomFactor)
PUBLISH_MEMBER(TimelineView, m_minZoomFactor)
PUBLISH_MEMBER(TimelineView, m_maxZoomFactor)
PUBLISH_MEMBER(TimelineView, m_startTime)
PUBLISH_MEMBER(TimelineView, m_currentTime)
PUBLISH_MEMBER(TimelineView, m_duration)
PUBLISH_MEMBER(TimelineView, m_isCursorTextVisible)
PUBLISH_MEMBER(TimelineView, m_cursorText)
PUBLISH_MEMBER(TimelineView, m_cursorPosition)
PUBLISH_MEMBER(TimelineView, m_selectedItemIds)

namespace {

const QString headerError = QStringLiteral("header view should be of type TimelineHeaderView");

QAbstractItemModel* shownModel(const TimelineView& view)
{
    return static_cast<const QTreeView&>(view).model();
}

/// What a process says before it stops.
struct LastWords
{
    QStringList messages;
    int signal = 0;
    bool hasReturned = false;
};

int messagePipe = -1;

void writeToPipe(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    const QByteArray line = QByteArray::number(type) + ' ' + text.toUtf8() + '\n';
    if (write(messagePipe, line.constData(), static_cast<std::size_t>(line.size())) < 0)
        _exit(3);
}

template <typename Body>
[[noreturn]] void runInChild(int pipeEnd, const Body& body)
{
    const rlimit noCoreFile{0, 0};
    setrlimit(RLIMIT_CORE, &noCoreFile);
    for (const int fatal : {SIGABRT, SIGSEGV, SIGBUS, SIGILL, SIGFPE})
        std::signal(fatal, SIG_DFL);
    messagePipe = pipeEnd;
    qInstallMessageHandler(writeToPipe);
    body();
    _exit(0);
}

/// Runs a body that is expected to stop the process in a process of its own.
template <typename Body>
LastWords lastWordsOf(const Body& body)
{
    int ends[2];
    if (pipe(ends) != 0)
        return {};
    const pid_t child = fork();
    if (child == 0)
        runInChild(ends[1], body);
    close(ends[1]);

    QByteArray text;
    char buffer[1024];
    for (ssize_t count = read(ends[0], buffer, sizeof(buffer)); count > 0;
         count = read(ends[0], buffer, sizeof(buffer)))
        text.append(buffer, count);
    close(ends[0]);

    int status = 0;
    waitpid(child, &status, 0);
    LastWords words;
    words.messages = QString::fromUtf8(text).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    words.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    words.hasReturned = WIFEXITED(status);
    return words;
}

} // namespace

class TestViewWiring : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void membersAreDeclaredInOrder();
    void constructionConfiguresTheTreeView();
    void constructionMakesHeaderAndHandlers();
    void theLoggerIsTheViewsOwn();
    void handlersMayBeReplacedAndTakenAway();

    void modelIsShownDirectly();
    void modelIsShownBehindAProxy();
    void mouseTrackingComesWithTheModel();
    void sameModelAgainChangesNothing();
    void aForeignModelStopsTheProcess_data();
    void aForeignModelStopsTheProcess();
    void proxyModelIsShownAndItsSourceKept();
    void proxyOverAForeignModelIsRefused();

    void anotherModelClearsTheSelection();
    void proxyOverTheSameModelKeepsTheSelection();
    void modelDestroyedBeforeTheViewIsForgotten();
    void proxyDestroyedBeforeTheViewIsForgotten();
    void delegateDestroyedBeforeTheViewIsForgotten();
    void whoIsToldOfALostModelFindsNone();

    void replacedHeaderIsDeleted();
    void replacedHeaderIsDeletedWhereverItHasGone();
    void sameHeaderStays();
    void newHeaderIsConnected();
    void aHeaderThatWasReplacedIsHeardNoMore();
    void plainHeaderLeavesNoHeader();
    void withoutAHeaderThereAreNoPositions();
    void noHeaderIsAnError();
    void aRulerComesBackAfterAPlainHeader();

    void indicatorSignalsRepaintTheRows();
    void hoverLaysTheModelOutAnew();
    void hoverWithoutAModelDoesNothing();

    void delegateIsInstalled();
    void cursorTextIsStoredAndRepainted();

    void durationOfAPixelIsMeasuredFromTheColumn();
    void pixelsOfADurationAreWholeWidths();
    void cursorRangeExcludesItsEdges();
};

void TestViewWiring::membersAreDeclaredInOrder()
{
    const QList<std::ptrdiff_t> offsets{MEMBER_OFFSET(TimelineView, m_header),
                                        MEMBER_OFFSET(TimelineView, m_timelineModel),
                                        MEMBER_OFFSET(TimelineView, m_model),
                                        MEMBER_OFFSET(TimelineView, m_proxyModel),
                                        MEMBER_OFFSET(TimelineView, m_delegate),
                                        MEMBER_OFFSET(TimelineView, m_dragHandler),
                                        MEMBER_OFFSET(TimelineView, m_resizeHandler),
                                        MEMBER_OFFSET(TimelineView, m_selectHandler),
                                        MEMBER_OFFSET(TimelineView, m_trackHandler),
                                        MEMBER_OFFSET(TimelineView, m_zoomFactor),
                                        MEMBER_OFFSET(TimelineView, m_upperZoomFactor),
                                        MEMBER_OFFSET(TimelineView, m_minZoomFactor),
                                        MEMBER_OFFSET(TimelineView, m_maxZoomFactor),
                                        MEMBER_OFFSET(TimelineView, m_startTime),
                                        MEMBER_OFFSET(TimelineView, m_currentTime),
                                        MEMBER_OFFSET(TimelineView, m_duration),
                                        MEMBER_OFFSET(TimelineView, m_isCursorTextVisible),
                                        MEMBER_OFFSET(TimelineView, m_cursorText),
                                        MEMBER_OFFSET(TimelineView, m_cursorPosition),
                                        MEMBER_OFFSET(TimelineView, m_selectedItemIds)};
    // Before the header lies the logger, a reference.
    QCOMPARE(offsets.first(), static_cast<std::ptrdiff_t>(sizeof(QTreeView) + sizeof(void*)));
    for (int i = 1; i < offsets.size(); ++i)
        QVERIFY2(offsets.at(i - 1) < offsets.at(i), QByteArray::number(i).constData());
}

void TestViewWiring::constructionConfiguresTheTreeView()
{
    QWidget parent;
    auto* const view = new TimelineView(&parent);
    QCOMPARE(view->parentWidget(), &parent);
    QVERIFY(view->alternatingRowColors());
    QCOMPARE(view->editTriggers(), QAbstractItemView::NoEditTriggers);
    QCOMPARE(view->selectionBehavior(), QAbstractItemView::SelectItems);
    QCOMPARE(view->selectionMode(), QAbstractItemView::NoSelection);
    QCOMPARE(view->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(view->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
    QVERIFY(view->acceptDrops());
    QVERIFY(!view->hasMouseTracking());
    QVERIFY(!view->isCursorTextVisible());
}

void TestViewWiring::constructionMakesHeaderAndHandlers()
{
    const TimelineView view;
    QVERIFY(view.header() != nullptr);
    QCOMPARE(static_cast<const QHeaderView*>(view.header()), static_cast<const QTreeView&>(view).header());
    QCOMPARE(view.header()->parent(), static_cast<const QObject*>(&view));
    QCOMPARE(view.findChildren<QHeaderView*>().size(), 1);
    QVERIFY(view.dragHandler() != nullptr);
    QVERIFY(view.resizeHandler() != nullptr);
    QVERIFY(view.selectHandler() != nullptr);
    QVERIFY(view.trackHandler() != nullptr);
    QVERIFY(view.model() == nullptr);
    QVERIFY(view.timelineModel() == nullptr);
    QVERIFY(view.proxyModel() == nullptr);
    QVERIFY(view.itemDelegate() == nullptr);
}

void TestViewWiring::theLoggerIsTheViewsOwn()
{
    RecordingLogger logger;
    const TimelineView view;
    QCOMPARE(view.logger().name(), QStringLiteral("Timeline.TimelineView"));
    QCOMPARE(&view.logger(), &logger.logger(QStringLiteral("Timeline.TimelineView")));
    QVERIFY(logger.entries().empty());
}

void TestViewWiring::handlersMayBeReplacedAndTakenAway()
{
    TimelineView view;
    TimelineViewDragHandler drag(&view);
    TimelineViewResizeHandler resize(&view);
    TimelineViewSelectHandler select(&view);
    TimelineViewTrackHandler track(&view);
    view.setDragHandler(&drag);
    view.setResizeHandler(&resize);
    view.setSelectHandler(&select);
    view.setTrackHandler(&track);
    QCOMPARE(view.dragHandler(), &drag);
    QCOMPARE(view.resizeHandler(), &resize);
    QCOMPARE(view.selectHandler(), &select);
    QCOMPARE(view.trackHandler(), &track);
    view.setDragHandler(nullptr);
    view.setResizeHandler(nullptr);
    view.setSelectHandler(nullptr);
    view.setTrackHandler(nullptr);
    QVERIFY(!view.dragHandler() && !view.resizeHandler() && !view.selectHandler() && !view.trackHandler());
}

void TestViewWiring::modelIsShownDirectly()
{
    TestModel model;
    TimelineView view;
    view.setModel(&model);
    QCOMPARE(view.model(), &model);
    QCOMPARE(view.timelineModel(), &model);
    QCOMPARE(shownModel(view), &model);
    QVERIFY(view.proxyModel() == nullptr);
}

void TestViewWiring::modelIsShownBehindAProxy()
{
    TestModel model;
    const int track = model.newTrack(QStringLiteral("A"));
    QIdentityProxyModel proxy;
    proxy.setSourceModel(&model);
    TimelineView view;
    view.setModel(&proxy);
    QCOMPARE(view.model(), &proxy);
    QCOMPARE(view.timelineModel(), &model);
    QCOMPARE(view.proxyModel(), &proxy);
    QCOMPARE(shownModel(view), &proxy);
    QCOMPARE(view.indexOfTrackRow(track, 1).model(), &proxy);
    QVERIFY(view.hasMouseTracking());
}

void TestViewWiring::mouseTrackingComesWithTheModel()
{
    TestModel model;
    TimelineView view;
    view.setModel(&model);
    QVERIFY(view.hasMouseTracking());
    QVERIFY(view.viewport()->hasMouseTracking());
}

void TestViewWiring::sameModelAgainChangesNothing()
{
    ViewFixture f;
    const int id = f.addSeconds(f.trackA, 1, 1);
    f.view.selectItem(id, true);
    QSignalSpy spy(&f.view, &TimelineView::selectedItemsChanged);
    f.view.setModel(&f.model);
    QVERIFY(spy.isEmpty());
    QCOMPARE(f.view.selectedItemIds(), QList<int>({id}));
    QCOMPARE(f.view.timelineModel(), &f.model);
}

void TestViewWiring::aForeignModelStopsTheProcess_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("no model") << 0;
    QTest::newRow("another library's model") << 1;
    QTest::newRow("proxy over another library's model") << 2;
    QTest::newRow("proxy over nothing") << 3;
}

void TestViewWiring::aForeignModelStopsTheProcess()
{
    QFETCH(const int, kind);

    const LastWords words = lastWordsOf([kind] {
        QStandardItemModel foreign(2, 2);
        QIdentityProxyModel proxy;
        if (kind == 2)
            proxy.setSourceModel(&foreign);
        TimelineView view;
        QAbstractItemModel* const models[] = {nullptr, &foreign, &proxy, &proxy};
        view.setModel(models[kind]);
    });
    QVERIFY(!words.hasReturned);
    QCOMPARE(words.signal, SIGABRT);
    QCOMPARE(words.messages.size(), 2);
    QCOMPARE(words.messages.first(),
             QStringLiteral("%1 TimelineSelectHandler:c_tor: model is not a QAbstractItemModel!").arg(QtWarningMsg));
    QVERIFY(
        words.messages.last().startsWith(QStringLiteral("%1 ASSERT: \"m_timelineModel != nullptr\"").arg(QtFatalMsg)));
}

void TestViewWiring::proxyModelIsShownAndItsSourceKept()
{
    TestModel first;
    TestModel second;
    QIdentityProxyModel proxy;
    proxy.setSourceModel(&second);
    TimelineView view;
    view.setProxyModel(&proxy);
    QCOMPARE(view.model(), &second);
    QCOMPARE(view.proxyModel(), &proxy);
    QCOMPARE(shownModel(view), &proxy);
    QVERIFY(view.timelineModel() == nullptr);
    QVERIFY(!view.hasMouseTracking());

    TimelineView used;
    used.setModel(&first);
    used.setProxyModel(&proxy);
    QCOMPARE(used.timelineModel(), &first);
    QCOMPARE(used.model(), &second);
}

void TestViewWiring::proxyOverAForeignModelIsRefused()
{
    TestModel model;
    QStandardItemModel foreign;
    QIdentityProxyModel proxy;
    proxy.setSourceModel(&foreign);
    TimelineView view;
    view.setModel(&model);
    QString thrown;
    try {
        view.setProxyModel(&proxy);
    } catch (const QString& text) {
        thrown = text;
    }
    QCOMPARE(thrown, QStringLiteral("source model cannot be cast to TimelineModel"));
    QCOMPARE(view.model(), &model);
    QCOMPARE(view.timelineModel(), &model);
    QVERIFY(view.proxyModel() == nullptr);
    QCOMPARE(shownModel(view), &model);
}

void TestViewWiring::anotherModelClearsTheSelection()
{
    TestModel other;
    ViewFixture f;
    f.view.selectItem(f.addSeconds(f.trackA, 1, 1), true);
    QSignalSpy spy(&f.view, &TimelineView::selectedItemsChanged);
    f.view.setModel(&other);
    QVERIFY(!f.view.hasSelectedItems());
    QCOMPARE(spy.count(), 1);
    QCOMPARE(f.view.timelineModel(), &other);
    // With nothing selected there is nothing to tell.
    f.view.setModel(&f.model);
    QCOMPARE(spy.count(), 1);

    // Also when a proxy has made the other model known before.
    QIdentityProxyModel proxy;
    proxy.setSourceModel(&other);
    f.view.setProxyModel(&proxy);
    f.view.selectItem(0, true);
    f.view.setModel(&other);
    QVERIFY(!f.view.hasSelectedItems());
}

void TestViewWiring::proxyOverTheSameModelKeepsTheSelection()
{
    QIdentityProxyModel proxy;
    ViewFixture f;
    proxy.setSourceModel(&f.model);
    f.view.selectItem(f.addSeconds(f.trackA, 1, 1), true);
    QSignalSpy spy(&f.view, &TimelineView::selectedItemsChanged);
    f.view.setModel(&proxy);
    QVERIFY(f.view.hasSelectedItems());
    QVERIFY(spy.isEmpty());
    f.view.setModel(&f.model);
    QVERIFY(f.view.hasSelectedItems());
}

void TestViewWiring::modelDestroyedBeforeTheViewIsForgotten()
{
    auto model = std::make_unique<TestModel>();
    TimelineView view;
    view.setModel(model.get());
    view.selectItem(5, true);
    QSignalSpy spy(&view, &TimelineView::selectedItemsChanged);
    model.reset();
    QVERIFY(view.model() == nullptr);
    QVERIFY(view.timelineModel() == nullptr);
    QVERIFY(!view.hasSelectedItems());
    QCOMPARE(spy.count(), 1);
    // And the view goes on.
    view.header()->setHoverPosition(300);
    view.selectAllItems();
    view.header()->setIndicatorTime(5);
    QVERIFY(!view.indexOfTrackRow(0, 0).isValid());
    TestModel next;
    view.setModel(&next);
    QCOMPARE(view.timelineModel(), &next);
}

void TestViewWiring::proxyDestroyedBeforeTheViewIsForgotten()
{
    TestModel model;
    auto proxy = std::make_unique<QIdentityProxyModel>();
    proxy->setSourceModel(&model);
    TimelineView view;
    view.setModel(proxy.get());
    proxy.reset();
    QVERIFY(view.model() == nullptr);
    QVERIFY(view.proxyModel() == nullptr);
    QCOMPARE(view.timelineModel(), &model);
    view.header()->setHoverPosition(300);
    view.selectAllItems();
}

void TestViewWiring::delegateDestroyedBeforeTheViewIsForgotten()
{
    ViewFixture f;
    delete f.view.itemDelegate();
    QVERIFY(f.view.itemDelegate() == nullptr);
    f.view.viewport()->repaint();
}

void TestViewWiring::whoIsToldOfALostModelFindsNone()
{
    auto model = std::make_unique<TestModel>();
    TimelineView view;
    view.setModel(model.get());
    view.selectItem(5, true);
    bool isTold = false;
    connect(&view, &TimelineView::selectedItemsChanged, this, [&] {
        isTold = true;
        QVERIFY(view.timelineModel() == nullptr);
        QVERIFY(view.model() == nullptr);
        QVERIFY(view.selectedItemIds().isEmpty());
    });
    model.reset();
    QVERIFY(isTold);
}

void TestViewWiring::replacedHeaderIsDeleted()
{
    ViewFixture f;
    const QPointer<TimelineHeaderView> first = f.view.header();
    auto* const second = new TimelineHeaderView(&f.view);
    f.view.setHeader(second);
    QVERIFY(first.isNull());
    QCOMPARE(f.view.header(), second);
    QCOMPARE(static_cast<const QTreeView&>(f.view).header(), second);
    QCOMPARE(second->count(), 2);
    f.fitWindow();
    QCOMPARE(f.view.toPixel(ViewFixture::at(100)), ViewFixture::labelWidth + 100);
}

void TestViewWiring::replacedHeaderIsDeletedWhereverItHasGone()
{
    QWidget other;
    TimelineView view;
    const QPointer<TimelineHeaderView> first = view.header();
    first->QWidget::setParent(&other);
    view.setHeader(new TimelineHeaderView(&view));
    QVERIFY(first.isNull());
}

void TestViewWiring::sameHeaderStays()
{
    RecordingLogger logger;
    ViewFixture f;
    const QPointer<TimelineHeaderView> header = f.view.header();
    f.view.setHeader(header);
    QVERIFY(!header.isNull());
    QCOMPARE(f.view.header(), header.data());
    QVERIFY(logger.messages(Hox::Error).isEmpty());
    // It is connected once all the same.
    QSignalSpy spy(&f.model, &QAbstractItemModel::layoutChanged);
    header->setHoverPosition(333);
    QCOMPARE(spy.count(), 1);
}

void TestViewWiring::newHeaderIsConnected()
{
    ViewFixture f;
    f.view.setHeader(new TimelineHeaderView(&f.view));
    f.fitWindow();
    PaintCounter counter(f.view.viewport());
    f.view.header()->setIndicatorTime(ViewFixture::at(5));
    QVERIFY(counter.takeIsPainted());
    QSignalSpy spy(&f.model, &QAbstractItemModel::layoutChanged);
    f.view.header()->setHoverPosition(333);
    QCOMPARE(spy.count(), 1);
    QCoreApplication::processEvents();
    QSignalSpy ticks(f.view.header(), &TimelineHeaderView::ticksChanged);
    f.view.setCurrentTime(ViewFixture::at(60));
    QCOMPARE(ticks.count(), 1);
}

void TestViewWiring::aHeaderThatWasReplacedIsHeardNoMore()
{
    // A header of another view is taken over, and dies with the next change.
    ViewFixture f;
    TimelineView other;
    const QPointer<TimelineHeaderView> foreign = new TimelineHeaderView(&other);
    f.view.setHeader(foreign);
    QCOMPARE(foreign->parentWidget(), static_cast<QWidget*>(&f.view));
    f.view.setHeader(new TimelineHeaderView(&f.view));
    QVERIFY(foreign.isNull());
    other.setCurrentTime(5);
    f.view.setCurrentTime(ViewFixture::at(60));
    QVERIFY(!f.view.header()->majorTicks().isEmpty());
}

void TestViewWiring::plainHeaderLeavesNoHeader()
{
    RecordingLogger logger;
    ViewFixture f;
    const QPointer<TimelineHeaderView> first = f.view.header();
    auto* const plain = new QHeaderView(Qt::Horizontal, &f.view);
    f.view.setHeader(plain);
    QVERIFY(first.isNull());
    QVERIFY(f.view.header() == nullptr);
    QCOMPARE(static_cast<const QTreeView&>(f.view).header(), plain);
    QCOMPARE(logger.messages(Hox::Error), QStringList(headerError));
    QCOMPARE(logger.entries().back().logger, QStringLiteral("Timeline.TimelineView"));
}

void TestViewWiring::withoutAHeaderThereAreNoPositions()
{
    RecordingLogger logger;
    ViewFixture f;
    f.view.setHeader(new QHeaderView(Qt::Horizontal, &f.view));
    QCOMPARE(f.view.toPixel(ViewFixture::at(10)), -1);
    QCOMPARE(f.view.toTime(300), qint64(-1));
    QCOMPARE(f.view.toDuration(300), qint64(-1));
    QCOMPARE(f.view.fromDuration(ViewFixture::at(9000)), -1);
    QVERIFY(!f.view.isCursorWithinRangeX(300));
    QVERIFY(!f.view.isCursorWithinRange({300, 50}));
    QVERIFY(f.view.isCursorWithinRangeY(50));
    // Window and rows do without it.
    f.view.setCurrentTime(ViewFixture::at(10));
    f.view.setZoomFactor(Zoom::FiveMinutes);
    f.view.viewport()->repaint();
    QCOMPARE(f.view.currentTime(), ViewFixture::at(10));
}

void TestViewWiring::noHeaderIsAnError()
{
    RecordingLogger logger;
    ViewFixture f;
    const QPointer<TimelineHeaderView> first = f.view.header();
    f.view.setHeader(nullptr);
    QVERIFY(f.view.header() == nullptr);
    QCOMPARE(logger.messages(Hox::Error), QStringList(headerError));
    QCOMPARE(f.view.toPixel(5), -1);
    // The tree view keeps the one it has until there is another.
    QVERIFY(!first.isNull());
    f.view.setHeader(new TimelineHeaderView(&f.view));
    QVERIFY(first.isNull());
    QCOMPARE(logger.messages(Hox::Error).size(), 1);
}

void TestViewWiring::aRulerComesBackAfterAPlainHeader()
{
    RecordingLogger logger;
    ViewFixture f;
    const QPointer<QHeaderView> plain = new QHeaderView(Qt::Horizontal, &f.view);
    f.view.setHeader(plain);
    f.view.setHeader(new TimelineHeaderView(&f.view));
    QVERIFY(plain.isNull());
    f.fitWindow();
    QCOMPARE(f.view.toPixel(ViewFixture::at(10)), ViewFixture::labelWidth + 10);
}

void TestViewWiring::indicatorSignalsRepaintTheRows()
{
    ViewFixture f;
    PaintCounter counter(f.view.viewport());
    f.view.header()->setIndicatorTime(ViewFixture::at(5));
    QCOMPARE(counter.takeRegion().boundingRect(), f.view.viewport()->rect());
    f.view.header()->setIndicatorVisible(false);
    QVERIFY(counter.takeIsPainted());
    f.view.header()->setHoverVisible(false);
    QVERIFY(counter.takeIsPainted());
}

void TestViewWiring::hoverLaysTheModelOutAnew()
{
    ViewFixture f;
    QSignalSpy before(&f.model, &QAbstractItemModel::layoutAboutToBeChanged);
    QSignalSpy after(&f.model, &QAbstractItemModel::layoutChanged);
    f.view.header()->setHoverPosition(333);
    QCOMPARE(before.count(), 1);
    QCOMPARE(after.count(), 1);
    QVERIFY(after.first().at(0).value<QList<QPersistentModelIndex>>().isEmpty());
    QCOMPARE(after.first().at(1).value<QAbstractItemModel::LayoutChangeHint>(), QAbstractItemModel::NoLayoutChangeHint);
    f.view.header()->setHoverPosition(333);
    QCOMPARE(after.count(), 1);
}

void TestViewWiring::hoverWithoutAModelDoesNothing()
{
    TimelineView view;
    QSignalSpy spy(view.header(), &TimelineHeaderView::hoverPositionChanged);
    view.header()->setHoverPosition(333);
    QCOMPARE(spy.count(), 1);
}

void TestViewWiring::delegateIsInstalled()
{
    RecordingLogger logger;
    TimelineView view;
    ItemDelegate delegate(&view);
    view.setItemDelegate(&delegate);
    QCOMPARE(view.itemDelegate(), &delegate);
    QCOMPARE(static_cast<const QTreeView&>(view).itemDelegate(), &delegate);
    view.setItemDelegate(nullptr);
    QVERIFY(view.itemDelegate() == nullptr);
    QVERIFY(logger.messages(Hox::Error).isEmpty());
    delegate.setParent(nullptr);
}

void TestViewWiring::cursorTextIsStoredAndRepainted()
{
    ViewFixture f;
    PaintCounter counter(f.view.viewport());
    for (const bool isVisible : {true, true, false}) {
        f.view.setCursorTextVisible(isVisible);
        QCOMPARE(f.view.isCursorTextVisible(), isVisible);
        QVERIFY(counter.takeIsPainted());
    }
    // Repainted even when it is the same.
    f.view.setCursorText(QStringLiteral("text"));
    QVERIFY(counter.takeIsPainted());
    f.view.setCursorText(QStringLiteral("text"));
    QVERIFY(counter.takeIsPainted());
}

void TestViewWiring::durationOfAPixelIsMeasuredFromTheColumn()
{
    const ViewFixture f;
    const int left = ViewFixture::labelWidth;
    // Of the view's whole width, frame and scroll bar included.
    const int width = f.view.geometry().width() - left;
    QVERIFY(width > ViewFixture::secondsVisible);
    QCOMPARE(f.view.toDuration(left), qint64(0));
    QCOMPARE(f.view.toDuration(left + width), qint64(1'800'000));
    for (const int px : {0, 1, 199, 201, 777, 1999, 5000, -300}) {
        const double share = static_cast<double>(px - left) / static_cast<double>(width);
        QCOMPARE(f.view.toDuration(px), static_cast<qint64>(1'800'000.0 * share));
    }
    QVERIFY(f.view.toDuration(0) < 0);
}

void TestViewWiring::pixelsOfADurationAreWholeWidths()
{
    const ViewFixture f;
    const int width = f.view.geometry().width() - ViewFixture::labelWidth;
    const qint64 start = f.view.startTime();
    QCOMPARE(f.view.fromDuration(start), 0);
    QCOMPARE(f.view.fromDuration(start + 1'799'999), 0);
    QCOMPARE(f.view.fromDuration(start + 1'800'000), width);
    QCOMPARE(f.view.fromDuration(start + 5'399'999), 2 * width);
    QCOMPARE(f.view.fromDuration(start - 1'799'999), 0);
    QCOMPARE(f.view.fromDuration(start - 1'800'000), -width);
    // So far away that 32 bits do not hold it.
    const qint64 windows = 4'000'000'000;
    const auto wrapped = static_cast<quint32>(windows) * static_cast<quint32>(width);
    QCOMPARE(f.view.fromDuration(start + windows * 1'800'000), static_cast<int>(wrapped));
}

void TestViewWiring::cursorRangeExcludesItsEdges()
{
    const ViewFixture f;
    const int right = f.view.geometry().right();
    const int bottom = f.view.geometry().bottom();
    QVERIFY(!f.view.isCursorWithinRangeX(ViewFixture::labelWidth));
    QVERIFY(f.view.isCursorWithinRangeX(ViewFixture::labelWidth + 1));
    QVERIFY(f.view.isCursorWithinRangeX(right - 1));
    QVERIFY(!f.view.isCursorWithinRangeX(right));
    QVERIFY(!f.view.isCursorWithinRangeY(0));
    QVERIFY(f.view.isCursorWithinRangeY(1));
    QVERIFY(f.view.isCursorWithinRangeY(bottom - 1));
    QVERIFY(!f.view.isCursorWithinRangeY(bottom));
    QVERIFY(f.view.isCursorWithinRange({ViewFixture::labelWidth + 1, 1}));
    QVERIFY(!f.view.isCursorWithinRange({ViewFixture::labelWidth, 1}));
    QVERIFY(!f.view.isCursorWithinRange({ViewFixture::labelWidth + 1, 0}));
}

QTEST_MAIN(TestViewWiring)
#include "tst_view_wiring.moc"
