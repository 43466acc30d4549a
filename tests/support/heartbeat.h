#pragma once

#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>

/// Measures for how long the event loop has not answered, at the longest.
class Heartbeat
{
public:
    Heartbeat()
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { beat(); });
        m_sinceBeat.start();
        m_timer.start(1);
    }

    /// Milliseconds, up to now; starts again.
    qint64 takeLongest()
    {
        beat();
        return std::exchange(m_longest, 0);
    }

private:
    void beat() { m_longest = std::max(m_longest, m_sinceBeat.restart()); }

    QTimer m_timer;
    QElapsedTimer m_sinceBeat;
    qint64 m_longest = 0;
};
