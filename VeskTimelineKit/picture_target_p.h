#pragma once

// Internal to the kit; not installed.

#include "picture_view_p.h"
#include "whole_file_p.h"

#include <VeskTimelineKit/picture_export.h>

#include <QPainter>

#include <atomic>
#include <memory>

namespace VeskTimeline::Kit {

/// A file that replaces the old one when it is complete, and fails from the moment that it is cancelled.
class PictureFile : public WholeFile
{
public:
    PictureFile(const QString& fileName, const std::atomic_bool& isCancelled);

protected:
    qint64 writeData(const char* data, qint64 length) override;

private:
    const std::atomic_bool& m_isCancelled;
};

/// A picture in one of its forms, painted step by step. Reasons are empty when all went well.
class PictureTarget
{
public:
    explicit PictureTarget(PictureView& view, const PictureOptions& options, const TimeSpan& range);
    virtual ~PictureTarget();

    /// Reason why there can be no such picture; otherwise its size is known.
    virtual QString measure() = 0;
    virtual PictureSize size() const = 0;
    /// Makes ready for painting. Returns a reason.
    virtual QString begin() = 0;
    virtual int stepCount() const = 0;
    virtual QString paintStep(int step) = 0;
    /// Writes what is painted. Returns a reason.
    virtual QString finish() = 0;
    /// Paints what of the picture, or of its first page, has room in the painter's device.
    virtual void paintPreview(QPainter& painter, int height);
    /// Size of what paintPreview() paints.
    virtual QSize previewSize() const { return m_sheet; }
    /// Whether finish() takes long and needs no GUI thread.
    virtual bool finishesAside() const { return false; }

protected:
    /// Size of the whole picture in pixels of the screen, or a reason why there is none.
    QString measureSheet();
    int titleHeight() const;
    /// At the origin.
    void paintTitle(QPainter& painter, int width) const;

    PictureView& m_view;
    const PictureOptions& m_options;
    const TimeSpan m_range;
    QSize m_sheet;
};

std::unique_ptr<PictureTarget> makePngTarget(PictureView& view, const PictureOptions& options, const TimeSpan& range,
                                             PictureFile& file);
std::unique_ptr<PictureTarget> makeSvgTarget(PictureView& view, const PictureOptions& options, const TimeSpan& range,
                                             PictureFile& file);
std::unique_ptr<PictureTarget> makePdfTarget(PictureView& view, const PictureOptions& options, const TimeSpan& range,
                                             PictureFile& file);
std::unique_ptr<PictureTarget> makePageTarget(PictureView& view, const PictureOptions& options, const TimeSpan& range,
                                              QPagedPaintDevice& device);

} // namespace VeskTimeline::Kit
