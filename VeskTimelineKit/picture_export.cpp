#include "kit_tr_p.h"
#include "picture_target_p.h"

#include <VeskTimeline/timeline_model.h>
#include <VeskTimelineKit/picture_export.h>
#include <VeskTimelineKit/time_text.h>

#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>
#include <QThread>
#include <QTimer>

#include <algorithm>

namespace VeskTimeline::Kit {

/// What an export holds while it lasts.
struct PictureExportPrivate
{
    QString fileName;
    PictureOptions options;
    QPagedPaintDevice* device = nullptr;
    QString refusal; ///< why nothing can be painted; told at the end, as other errors are
    std::atomic_bool isCancelled = false;
    std::unique_ptr<PictureView> view;
    std::unique_ptr<PictureFile> file;
    std::unique_ptr<PictureTarget> target; ///< before the view and the file that it paints with and on
    int step = 0;
    bool isStarted = false;
    bool isEnded = false;
    bool isPainted = false;
    std::unique_ptr<QThread> finisher;
    std::optional<FileError> error;

    double share() const
    {
        constexpr double sharePainting = 0.95;
        return target && target->stepCount() > 0 ? sharePainting * step / target->stepCount() : 0.0;
    }
};

namespace {

enum class Form { None, Png, Svg, Pdf };

Form formOf(const QString& fileName)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    if (suffix == u"png")
        return Form::Png;
    if (suffix == u"svg")
        return Form::Svg;
    return suffix == u"pdf" ? Form::Pdf : Form::None;
}

// Empty when such a picture can be painted.
QString prepare(PictureExportPrivate& d, TimelineModel& model)
{
    const Form form = formOf(d.fileName);
    if (!d.device && form == Form::None)
        return Tr::tr("the name of a picture ends in .png, .svg or .pdf");
    for (const int id : std::as_const(d.options.trackIds)) {
        if (id == 0 || !model.rootTrack()->hasTrack(id, true))
            return Tr::tr("there is no track %1").arg(id);
    }
    const std::optional<TimeSpan> range = d.options.range ? d.options.range : pictureRange(model);
    if (!range)
        return Tr::tr("there are no items; say which range to show");
    if (range->end <= range->start || range->start < -farthestTime || range->end > farthestTime)
        return Tr::tr("the range ends before it begins, or is too long");
    d.view = std::make_unique<PictureView>(model, d.options);
    if (d.view->rowCount() == 0)
        return Tr::tr("there are no tracks");

    d.file = std::make_unique<PictureFile>(d.fileName, d.isCancelled);
    if (d.device)
        d.target = makePageTarget(*d.view, d.options, *range, *d.device);
    else if (form == Form::Png)
        d.target = makePngTarget(*d.view, d.options, *range, *d.file);
    else if (form == Form::Svg)
        d.target = makeSvgTarget(*d.view, d.options, *range, *d.file);
    else
        d.target = makePdfTarget(*d.view, d.options, *range, *d.file);
    return d.target->measure();
}

// Grows the span by the track's own items and those below it.
void addItems(const Track& track, std::optional<TimeSpan>& span)
{
    for (const ItemPtr& item : track.items()) {
        const qint64 end = item->startTime() + std::max(item->duration(), 0);
        if (!span)
            span = TimeSpan{item->startTime(), end};
        span->start = std::min(span->start, item->startTime());
        span->end = std::max(span->end, end);
    }
    for (const TrackPtr& child : track.tracks())
        addItems(*child, span);
}

} // namespace

PictureExport::PictureExport(TimelineModel& model, const QString& fileName, const PictureOptions& options,
                             QObject* parent)
    : QObject(parent), d(std::make_unique<PictureExportPrivate>())
{
    d->fileName = fileName;
    d->options = options;
    init(model);
}

PictureExport::PictureExport(TimelineModel& model, QPagedPaintDevice& device, const PictureOptions& options,
                             QObject* parent)
    : QObject(parent), d(std::make_unique<PictureExportPrivate>())
{
    d->options = options;
    d->device = &device;
    init(model);
}

PictureExport::~PictureExport()
{
    d->isCancelled = true;
    if (d->finisher)
        d->finisher->wait();
    // Before what it paints on.
    d->target.reset();
}

void PictureExport::init(TimelineModel& model)
{
    d->refusal = prepare(*d, model);
    watch(model);
}

void PictureExport::watch(TimelineModel& model)
{
    const auto giveUp = [this] {
        if (!d->isPainted)
            end(Tr::tr("the timeline was changed meanwhile"));
    };
    connect(&model, &QAbstractItemModel::modelReset, this, giveUp);
    connect(&model, &QAbstractItemModel::rowsInserted, this, giveUp);
    connect(&model, &QAbstractItemModel::rowsRemoved, this, giveUp);
    connect(&model, &QAbstractItemModel::rowsMoved, this, giveUp);
    connect(&model, &QAbstractItemModel::dataChanged, this, giveUp);
}

void PictureExport::start()
{
    d->isStarted = true;
    QTimer::singleShot(0, this, [this] {
        if (!d->isEnded && (!d->refusal.isEmpty() || !d->target)) {
            end(d->refusal);
            return;
        }
        if (const QString reason = d->isEnded ? QString() : d->target->begin(); !reason.isEmpty()) {
            end(reason);
            return;
        }
        auto* const timer = new QTimer(this);
        connect(timer, &QTimer::timeout, this, [this, timer] {
            if (!paintSome()) {
                timer->stop();
                timer->deleteLater();
                finish();
            }
        });
        timer->start(0);
    });
}

// For a moment. False when there is nothing more to paint.
bool PictureExport::paintSome()
{
    constexpr qint64 longest = 30; // milliseconds
    if (d->isEnded)
        return false;
    QElapsedTimer clock;
    clock.start();
    while (d->step < d->target->stepCount() && clock.elapsed() < longest) {
        if (const QString reason = d->target->paintStep(d->step++); !reason.isEmpty()) {
            end(reason);
            return false;
        }
    }
    Q_EMIT progressChanged(d->share());
    return !d->isEnded && d->step < d->target->stepCount();
}

void PictureExport::finish()
{
    if (d->isEnded)
        return;
    d->isPainted = true;
    if (!d->target->finishesAside()) {
        end(d->target->finish());
        return;
    }
    PictureTarget* const target = d->target.get();
    d->finisher.reset(QThread::create([this, target] {
        const QString reason = target->finish();
        QMetaObject::invokeMethod(this, [this, reason] { end(d->isCancelled ? writingCancelledReason() : reason); });
    }));
    d->finisher->start();
}

void PictureExport::end(const QString& reason)
{
    if (d->isEnded)
        return;
    d->isEnded = true;
    if (!reason.isEmpty())
        d->error = FileError{d->fileName, 0, reason};
    else
        Q_EMIT progressChanged(1.0);
    if (d->isStarted)
        Q_EMIT finished();
}

std::optional<FileError> PictureExport::run(const std::function<bool(double share)>& progress)
{
    QString reason = d->refusal;
    if (reason.isEmpty() && !d->isEnded)
        reason = d->target->begin();
    while (reason.isEmpty() && !d->isEnded && d->step < d->target->stepCount()) {
        if (progress && !progress(d->share())) {
            d->isCancelled = true;
            reason = writingCancelledReason();
            break;
        }
        paintSome();
    }
    if (!d->isEnded) {
        d->isPainted = true;
        end(reason.isEmpty() ? d->target->finish() : reason);
    }
    return d->error;
}

void PictureExport::cancel()
{
    if (!d->isStarted || d->isEnded)
        return;
    d->isCancelled = true;
    // A picture that is being written ends by itself, and at once.
    if (!d->finisher)
        end(writingCancelledReason());
}

const std::optional<FileError>& PictureExport::error() const
{
    return d->error;
}

Result<PictureSize> PictureExport::size(TimelineModel& model, const QString& fileName, const PictureOptions& options)
{
    PictureExportPrivate d;
    d.fileName = fileName;
    d.options = options;
    if (const QString reason = prepare(d, model); !reason.isEmpty())
        return FileError{fileName, 0, reason};
    return d.target->size();
}

QImage PictureExport::preview(TimelineModel& model, const QString& fileName, const PictureOptions& options,
                              const QSize& most)
{
    PictureExportPrivate d;
    d.fileName = fileName;
    d.options = options;
    if (!prepare(d, model).isEmpty())
        return {};
    constexpr double leastScale = 0.2;
    const QSize size = d.target->previewSize();
    const double scale = std::clamp(most.width() / static_cast<double>(size.width()), leastScale, 1.0);
    QImage image((QSizeF(size) * scale).toSize().boundedTo(most), QImage::Format_RGB32);
    image.fill(options.palette.color(QPalette::Base));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing, scale < 1.0);
    painter.scale(scale, scale);
    d.target->paintPreview(painter, static_cast<int>(image.height() / scale));
    return image;
}

bool PictureExport::isPictureFile(const QString& fileName)
{
    return formOf(fileName) != Form::None;
}

int PictureExport::pageResolution()
{
    const QScreen* const screen = QGuiApplication::primaryScreen();
    constexpr int usual = 96;
    return screen ? std::max(qRound(screen->logicalDotsPerInch()), 1) : usual;
}

std::optional<FileError> writePicture(TimelineModel& model, const QString& fileName, const PictureOptions& options,
                                      const std::function<bool(double share)>& progress)
{
    return PictureExport(model, fileName, options).run(progress);
}

std::optional<TimeSpan> pictureRange(const TimelineModel& model)
{
    std::optional<TimeSpan> span;
    addItems(*model.rootTrack(), span);
    if (!span)
        return std::nullopt;
    constexpr qint64 leastMargin = 1000;
    constexpr qint64 shareOfMargin = 50;
    const qint64 margin = std::max((span->end - span->start) / shareOfMargin, leastMargin);
    return TimeSpan{span->start - margin, span->end + margin};
}

} // namespace VeskTimeline::Kit
