#pragma once

// Internal to the kit; not installed.

#include <VeskTimelineKit/read_options.h>

#include <QElapsedTimer>

#include <type_traits>

namespace VeskTimeline::Kit {

/// Thrown inside a reader when the user has it stopped.
struct ReadCancelled
{
};

/// Passes a reader's progress on, often enough for a smooth display and seldom enough to cost nothing.
class ReadProgress
{
public:
    /// @param options must outlive this object
    explicit ReadProgress(const ReadOptions& options) : m_options(options) { m_sinceReport.start(); }

    /// The shares reported from now on are those of a part of the work.
    void setPart(double from, double to)
    {
        m_from = from;
        m_to = to;
    }

    /// To be called at least every few milliseconds. @param share what is done, from 0 to 1
    /// @throws ReadCancelled
    void report(double share)
    {
        if (!m_options.progress || (m_isStarted && m_sinceReport.elapsed() < interval))
            return;
        m_isStarted = true;
        m_sinceReport.restart();
        if (!m_options.progress(m_from + share * (m_to - m_from)))
            throw ReadCancelled();
    }

    /// The same for work that comes in very many small steps, as comparisons do.
    void reportSometimes(double share)
    {
        reportSometimes([share] { return share; });
    }

    /// @param share () to the share, where finding it out takes time too
    template <typename Share, typename = std::enable_if_t<std::is_invocable_r_v<double, Share>>>
    void reportSometimes(Share share)
    {
        constexpr unsigned steps = 4096;
        if (++m_step % steps == 0)
            report(share());
    }

private:
    static constexpr qint64 interval = 20; // milliseconds

    const ReadOptions& m_options;
    QElapsedTimer m_sinceReport;
    bool m_isStarted = false;
    unsigned m_step = 0;
    double m_from = 0.0;
    double m_to = 1.0;
};

} // namespace VeskTimeline::Kit
