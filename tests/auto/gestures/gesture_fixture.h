#pragma once

#include "journal_model.h"
#include "support/recording_logger.h"
#include "support/view_fixture.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QSignalSpy>

/// Base, so that the logger is there before the view and goes after it.
struct LogHolder
{
    RecordingLogger log;
};

/// Counts the paint events of a widget.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget* watched) { watched->installEventFilter(this); }
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            ++count;
        return false;
    }

    int count = 0;
};

/// The view fixture over a journal model, with everything that handlers answer with at hand: calls of the model, with
/// the view's signal among them, log lines, cursor, repaints.
struct GestureFixture : LogHolder, ViewFixtureOf<JournalModel>
{
    GestureFixture()
    {
        QObject::connect(&view, &VeskTimeline::TimelineView::currentItemTimeChanged, &view,
                         [this] { model.journal.append(QStringLiteral("currentItemTimeChanged")); });
    }

    /// "Level: message" of each line that the handlers wrote.
    QStringList logLines() const
    {
        QStringList lines;
        for (const RecordingLogger::Entry& entry : log.entries()) {
            if (entry.logger == QLatin1String("Timeline.TimelineView"))
                lines.append(levelName(entry.level) + QStringLiteral(": ") + spelledAlike(entry.message));
        }
        return lines;
    }
    Qt::CursorShape cursor() const { return view.viewport()->cursor().shape(); }
    /// Whether an action makes the viewport paint. Platforms put updates off by a few milliseconds.
    template <typename Action>
    bool repaints(const Action& action)
    {
        constexpr int delayOfUpdates = 20;
        QTest::qWait(delayOfUpdates);
        PaintCounter counter(view.viewport());
        action();
        return QTest::qWaitFor([&] { return counter.count > 0; }, 2 * delayOfUpdates);
    }
    /// A position in the time column below all rows.
    QPoint belowRows(int second) const { return {labelWidth + second, view.viewport()->height() - 5}; }
    QPoint onName(int trackId) const { return {labelWidth / 2, pos(0, trackId).y()}; }

    /// Compilers write types in signatures differently: a pointer with or without blank, QVector or the QList that it
    /// is, with its const or without.
    static QString spelledAlike(QString message)
    {
        return message.replace(QStringLiteral(" *"), QStringLiteral("*"))
            .replace(QStringLiteral(" &"), QStringLiteral("&"))
            .replace(QStringLiteral("QVector<"), QStringLiteral("QList<"))
            .replace(QStringLiteral("const QList<"), QStringLiteral("QList<"));
    }
    static QString levelName(Hox::LogLevel level)
    {
        switch (level) {
        case Hox::Debug:
            return QStringLiteral("Debug");
        case Hox::Error:
            return QStringLiteral("Error");
        default:
            return QString::number(level);
        }
    }
};

/// The line written for a failure at Error: the text of a QString, otherwise only that it failed.
inline QString failureLine(const QString& signature, Failure failure)
{
    return QStringLiteral("Error: ") + signature +
           (failure == Failure::Text ? QStringLiteral(" veto") : QStringLiteral(" failed"));
}

inline QMouseEvent pressAt(const QPoint& pos, Qt::MouseButton button = Qt::LeftButton,
                           Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    return {QEvent::MouseButtonPress, pos, pos, button, button, modifiers};
}

inline QMouseEvent moveTo(const QPoint& pos, Qt::MouseButtons buttons = Qt::LeftButton)
{
    return {QEvent::MouseMove, pos, pos, Qt::NoButton, buttons, Qt::NoModifier};
}

inline QMouseEvent releaseAt(const QPoint& pos, Qt::MouseButton button = Qt::LeftButton,
                             Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    return {QEvent::MouseButtonRelease, pos, pos, button, Qt::NoButton, modifiers};
}

inline QKeyEvent keyPress(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    return {QEvent::KeyPress, key, modifiers};
}

/// Whether no exception leaves the action.
template <typename Action>
bool keepsExceptions(const Action& action)
{
    try {
        action();
        return true;
    } catch (...) {
        return false;
    }
}

/// Test data: one row for each kind of exception.
inline void addFailureRows()
{
    QTest::addColumn<Failure>("failure");
    QTest::newRow("QString") << Failure::Text;
    QTest::newRow("C string") << Failure::CString;
    QTest::newRow("standard exception") << Failure::Standard;
}
