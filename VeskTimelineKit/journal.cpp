#include "background_disposal_p.h"
#include "journal_changes_p.h"
#include "journal_writer_p.h"
#include "kit_tr_p.h"

#include <VeskTimelineKit/journal.h>

#include <QDateTime>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QThread>
#include <QTimer>

namespace VeskTimeline::Kit {

namespace {

void letGo(std::shared_ptr<const JournalDelta> delta)
{
    if (delta && delta->items.size() >= manyItems)
        disposeInBackground(std::move(delta));
}

} // namespace

struct JournalPrivate
{
    JournalPrivate(StandardTimelineModel& model, const QString& journalName, const JournalOptions& journalOptions)
        : fileName(journalName),
          options(journalOptions),
          changes(model),
          writer(new JournalWriter(journalName, journalOptions))
    {
        timer.setSingleShot(true);
        writer->moveToThread(&thread);
        QObject::connect(&thread, &QThread::finished, writer, &QObject::deleteLater);
        thread.setObjectName(QStringLiteral("journal"));
        thread.start();
    }

    /// Has something done in the writer's thread, after all that was asked before.
    template <typename Body>
    void post(Body body)
    {
        QMetaObject::invokeMethod(writer, [writer = writer, body = std::move(body)] { body(*writer); });
    }

    const QString fileName;
    const JournalOptions options;
    JournalChanges changes;
    QThread thread;
    JournalWriter* writer;   ///< destroyed by its thread
    QTimer timer;            ///< until what was touched is due
    QTimer slices;           ///< while it is taken down
    QDeadlineTimer patience; ///< until it is taken down in one go
    int generation = 0;
    bool isStarted = false;  ///< start() was called
    bool hasBegun = false;   ///< there is something to write, or it has been
    bool isModified = false; ///< it is to be written before it is changed
    bool isBaseWritten = false;
    bool isFailing = false;     ///< writing changes
    bool isBaseFailing = false; ///< writing the base
    std::shared_ptr<const Document> base;
    QStringList fileNames;
    std::shared_ptr<const JournalDelta> inFlight; ///< with the writer
    quint64 revision = 0;
    quint64 savedRevision = 0;
    bool isSaving = false; ///< savedRevision is yet to be marked
};

Journal::Journal(StandardTimelineModel& model, const QString& fileName, const JournalOptions& options, QObject* parent)
    : QObject(parent), d(std::make_unique<JournalPrivate>(model, fileName, options))
{
    connect(&d->timer, &QTimer::timeout, this, &Journal::takeDown);
    connect(&d->slices, &QTimer::timeout, this, &Journal::takeDownSlice);
    connect(&d->changes, &JournalChanges::touched, this, &Journal::onTouched);
    connect(&d->changes, &JournalChanges::modelReset, this, &Journal::onReset);
    connect(d->writer, &JournalWriter::appended, this, &Journal::onAppended);
    connect(d->writer, &JournalWriter::rejected, this, &Journal::onRejected);
    connect(d->writer, &JournalWriter::baseWritten, this, &Journal::onBaseWritten);
    connect(d->writer, &JournalWriter::baseFailed, this, [this](int generation, const QString& reason) {
        if (generation == d->generation)
            fail(d->isBaseFailing, reason);
    });
    connect(d->writer, &JournalWriter::lost, this, &Journal::onLost);
}

Journal::~Journal()
{
    disconnect(d->writer, nullptr, this, nullptr);
    // What the writer may refuse cannot be tried again; everything else it takes in order.
    letGo(std::exchange(d->inFlight, {}));
    if (d->isStarted && (!d->changes.isEmpty() || (d->isModified && !d->hasBegun)))
        append();
    QMetaObject::invokeMethod(d->writer, &JournalWriter::finish, Qt::BlockingQueuedConnection);
    d->thread.quit();
    d->thread.wait();
}

QString Journal::fileName() const
{
    return d->fileName;
}

quint64 Journal::revision() const
{
    return d->revision;
}

void Journal::start(std::shared_ptr<const Document> base, const QStringList& fileNames, bool isModified)
{
    drop();
    d->changes.restart();
    d->isStarted = true;
    d->base = std::move(base);
    d->fileNames = fileNames;
    d->isModified = isModified;
    if (!isModified)
        return;
    if (d->base)
        begin({});
    d->timer.start(0);
}

void Journal::drop()
{
    d->timer.stop();
    d->slices.stop();
    d->changes.cancelTaking();
    if (d->hasBegun)
        d->post([](JournalWriter& writer) { writer.drop(); });
    ++d->generation;
    d->isStarted = false;
    d->hasBegun = false;
    d->isBaseWritten = false;
    d->isFailing = false;
    d->isBaseFailing = false;
    d->isSaving = false;
    d->isModified = false;
    letGo(std::exchange(d->inFlight, {}));
    d->base.reset();
}

void Journal::onReset()
{
    ++d->revision;
    if (d->isStarted)
        start(nullptr, d->fileNames);
}

void Journal::begin(JournalDelta&& everything)
{
    JournalBase base{std::move(d->base), std::move(everything)};
    d->hasBegun = true;
    d->post([generation = d->generation, base = std::make_shared<const JournalBase>(std::move(base)),
             fileNames = d->fileNames](JournalWriter& writer) { writer.start(generation, base, fileNames); });
}

void Journal::setFileNames(const QStringList& fileNames)
{
    d->fileNames = fileNames;
    if (d->hasBegun)
        d->post([fileNames](JournalWriter& writer) { writer.setFileNames(fileNames); });
}

void Journal::onTouched()
{
    ++d->revision;
    if (!d->isStarted)
        return;
    // The base has its time until the change is due.
    if (!d->hasBegun && d->base)
        begin({});
    if (!d->inFlight && !d->changes.isTaking())
        schedule();
}

// Much takes a while, which is to be over in time.
void Journal::schedule()
{
    const bool isMuch = d->changes.itemCount() >= static_cast<int>(manyItems);
    if (isMuch && !d->isFailing)
        d->timer.start(0);
    else if (!d->timer.isActive())
        d->timer.start(d->options.interval);
}

void Journal::flush()
{
    if (d->timer.isActive() || d->changes.isTaking())
        append();
}

// Whether there is anything.
bool Journal::beginTaking()
{
    if (!d->isStarted || d->inFlight || (!d->hasBegun && !d->isModified && d->changes.isEmpty()))
        return false;
    d->changes.beginTaking(d->hasBegun ? JournalChanges::Extent::Touched : JournalChanges::Extent::Everything);
    d->patience.setRemainingTime(d->options.patience);
    return true;
}

void Journal::takeDown()
{
    if (!d->changes.isTaking() && beginTaking())
        takeDownSlice();
}

void Journal::takeDownSlice()
{
    const int step = d->options.slice.count() > 0 ? 500 : 1;
    QElapsedTimer time;
    time.start();
    bool isDone = d->changes.hasBegunAnew() && d->patience.hasExpired();
    while (!isDone) {
        isDone = d->changes.advanceTaking(step);
        if (time.elapsed() >= d->options.slice.count())
            break;
    }
    if (isDone)
        append();
    else if (!d->slices.isActive())
        d->slices.start(0);
}

// What is not taken down yet is taken down in one go.
void Journal::append()
{
    d->timer.stop();
    d->slices.stop();
    if (!d->changes.isTaking() && !beginTaking())
        return;
    JournalDelta delta = d->changes.finishTaking();
    if (!d->hasBegun)
        begin(std::exchange(delta, {}));
    d->inFlight = std::make_shared<const JournalDelta>(std::move(delta));
    d->post([delta = d->inFlight, time = QDateTime::currentMSecsSinceEpoch()](JournalWriter& writer) {
        writer.append(*delta, time);
    });
}

void Journal::markSaved(quint64 revision)
{
    d->savedRevision = revision;
    if (d->timer.isActive()) {
        d->timer.stop();
        takeDown();
    }
    d->isSaving = d->hasBegun || d->changes.isTaking();
    finishWrite();
}

// What follows when all that was changed has been written.
void Journal::finishWrite()
{
    if (d->inFlight || d->timer.isActive() || d->changes.isTaking() || !d->changes.isEmpty())
        return;
    if (std::exchange(d->isSaving, false) && d->savedRevision == d->revision)
        d->post([](JournalWriter& writer) { writer.markSaved(); });
    if (d->isBaseWritten)
        Q_EMIT written();
}

void Journal::onAppended(int generation)
{
    if (generation != d->generation)
        return;
    letGo(std::exchange(d->inFlight, {}));
    succeed(d->isFailing);
    if (!d->changes.isEmpty())
        schedule();
    finishWrite();
}

void Journal::onRejected(int generation, const QString& reason)
{
    if (generation != d->generation)
        return;
    d->changes.putBack(*d->inFlight);
    letGo(std::exchange(d->inFlight, {}));
    d->timer.start(d->options.retryInterval);
    fail(d->isFailing, reason);
}

void Journal::onBaseWritten(int generation)
{
    if (generation != d->generation)
        return;
    d->isBaseWritten = true;
    succeed(d->isBaseFailing);
    finishWrite();
}

void Journal::onLost(int generation)
{
    if (generation != d->generation)
        return;
    start(nullptr, d->fileNames, true);
}

// Of base and changes either may fail, and the other one then does, too, as a rule: that is said once.
void Journal::fail(bool& isFailing, const QString& reason)
{
    const bool isKnown = d->isFailing || d->isBaseFailing;
    isFailing = true;
    if (!isKnown)
        Q_EMIT failed(Tr::tr("Changes cannot be kept for the case of a crash: %1: %2").arg(d->fileName, reason));
}

void Journal::succeed(bool& isFailing)
{
    if (std::exchange(isFailing, false) && !d->isFailing && !d->isBaseFailing)
        Q_EMIT resumed();
}

} // namespace VeskTimeline::Kit
