#pragma once

#include <VeskTimelineKit/document.h>

#include <QObject>
#include <QTimer>

#include <memory>

namespace VeskTimeline::Kit {

class DocumentBuilder;
class StandardTimelineModel;

/// Takes down what a model holds in slices of a few milliseconds, so that the window goes on answering. When the model
/// changes meanwhile it starts anew: what comes out is what the model holds at that moment.
///
/// Each start() is followed by one of taken() and cancelled(), unless the model or the snapshot is destroyed first.
class VESKTIMELINEKIT_EXPORT DocumentSnapshot : public QObject
{
    Q_OBJECT

public:
    /// @param model not owned; may go before this object
    explicit DocumentSnapshot(StandardTimelineModel* model, QObject* parent = nullptr);
    ~DocumentSnapshot() override;

    /// How long it may hold up the event loop at a time, in milliseconds; 10 unless set. With 0 or less it takes down
    /// as little at a time as it can.
    void setSlice(int milliseconds) { m_slice = milliseconds; }

    bool isRunning() const { return m_builder != nullptr; }
    /// Only when not isRunning().
    void start();

public Q_SLOTS:
    /// Does nothing when not isRunning().
    void cancel();

Q_SIGNALS:
    /// @param document as StandardTimelineModel::document() at the time of this signal
    void taken(const std::shared_ptr<const VeskTimeline::Kit::Document>& document);
    void cancelled();

private:
    void startAnew();
    void advance();

    StandardTimelineModel* m_model;
    std::unique_ptr<DocumentBuilder> m_builder;
    QTimer m_timer;
    int m_slice = 10;
};

} // namespace VeskTimeline::Kit
