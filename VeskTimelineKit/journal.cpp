#include "background_disposal_p.h"
#include "journal_changes_p.h"
#include "journal_writer_p.h"
#include "kit_tr_p.h"

#include <VeskTimelineKit/journal.h>

#include <QDateTime>
#include <QThread>
#include <QTimer>

namespace VeskTimeline::Kit {

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
    JournalWriter* writer; ///< destroyed by its thread
    QTimer timer;
    int generation = 0;
    bool isStarted = false; ///< start() was called
    bool hasBegun = false;  ///< there is something to write, or it has been
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
    connect(&d->timer, &QTimer::timeout, this, &Journal::append);
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
    d->inFlight.reset();
    if (!d->changes.isEmpty())
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
    if (isModified) {
        begin(!d->base);
        d->timer.start(0);
    }
}

void Journal::drop()
{
    d->timer.stop();
    if (d->hasBegun)
        d->post([](JournalWriter& writer) { writer.drop(); });
    ++d->generation;
    d->isStarted = false;
    d->hasBegun = false;
    d->isBaseWritten = false;
    d->isFailing = false;
    d->isBaseFailing = false;
    d->isSaving = false;
    d->inFlight.reset();
    d->base.reset();
}

void Journal::onReset()
{
    ++d->revision;
    if (d->isStarted)
        start(nullptr, d->fileNames);
}

void Journal::begin(bool withEverything)
{
    JournalBase base{std::move(d->base), {}};
    if (withEverything) {
        base.everything = d->changes.everything();
        d->changes.restart();
    }
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
        begin(false);
    if (!d->timer.isActive() && !d->inFlight)
        d->timer.start(d->options.interval);
}

void Journal::flush()
{
    if (d->timer.isActive()) {
        d->timer.stop();
        append();
    }
}

void Journal::append()
{
    if (!d->isStarted || d->inFlight)
        return;
    const bool isFirst = !d->hasBegun;
    if (isFirst && d->changes.isEmpty())
        return;
    if (isFirst)
        begin(true);
    d->inFlight = std::make_shared<const JournalDelta>(d->changes.take());
    d->post([delta = d->inFlight, time = QDateTime::currentMSecsSinceEpoch()](JournalWriter& writer) {
        writer.append(*delta, time);
    });
}

void Journal::markSaved(quint64 revision)
{
    d->savedRevision = revision;
    flush();
    d->isSaving = d->hasBegun;
    finishWrite();
}

// What follows when all that was changed has been written.
void Journal::finishWrite()
{
    if (d->inFlight || d->timer.isActive() || !d->changes.isEmpty())
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
    if (d->inFlight && d->inFlight->items.size() >= manyItems)
        disposeInBackground(std::move(d->inFlight));
    d->inFlight.reset();
    succeed(d->isFailing);
    if (!d->changes.isEmpty())
        d->timer.start(d->options.interval);
    finishWrite();
}

void Journal::onRejected(int generation, const QString& reason)
{
    if (generation != d->generation)
        return;
    d->changes.putBack(*std::exchange(d->inFlight, {}));
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
