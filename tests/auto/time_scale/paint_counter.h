#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QPaintEvent>
#include <QRegion>
#include <QWidget>

/// Collects what a widget repaints. The widget's window must be on screen.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget* widget) : m_widget(widget)
    {
        settle();
        widget->installEventFilter(this);
    }

    /// The part repainted since the last call, after all that was pending has been done.
    QRegion takeRegion()
    {
        settle();
        const QRegion painted = m_region;
        m_region = QRegion();
        return painted;
    }
    bool takeIsPainted() { return !takeRegion().isEmpty(); }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == m_widget && event->type() == QEvent::Paint)
            m_region += static_cast<QPaintEvent*>(event)->region();
        return false;
    }

private:
    static void settle()
    {
        for (int i = 0; i < 3; ++i) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents();
        }
    }

    QWidget* m_widget;
    QRegion m_region;
};
