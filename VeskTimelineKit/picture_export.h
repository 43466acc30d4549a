#pragma once

#include <VeskTimelineKit/picture_options.h>
#include <VeskTimelineKit/result.h>
#include <VeskTimelineKit/write_options.h>

#include <QImage>
#include <QObject>
#include <QSize>

#include <functional>
#include <memory>
#include <optional>

class QPagedPaintDevice;
class QPainter;

namespace VeskTimeline {
class TimelineModel;
}

namespace VeskTimeline::Kit {

struct PictureExportPrivate;

/// How large a picture comes out.
struct PictureSize
{
    QSize pixels;  ///< of the whole picture or, for pages, of what one of them shows
    int pages = 1; ///< 1 for a picture that is not in pages
};

/// Paints a timeline as a picture: into a PNG, SVG or PDF file, by the file's suffix, or onto the pages of a printer.
/// Rows and ruler are painted by the delegate and the ruler that views have, so that it looks as on screen; no window
/// is shown, and the model's views know nothing of it. SVG and PDF hold lines and texts, no pixels.
///
/// start() paints in short pieces from the event loop, run() in one go; each export is for one of them, once. A file is
/// replaced when all of it is written; after an error, or when cancelled, it is as it was. A model whose tracks or
/// items change before all is painted ends the export with an error. The model must outlive the export. For the GUI
/// thread of a QApplication.
class VESKTIMELINEKIT_EXPORT PictureExport : public QObject
{
    Q_OBJECT

public:
    PictureExport(TimelineModel& model, const QString& fileName, const PictureOptions& options,
                  QObject* parent = nullptr);
    /// Onto pages as the device lays them out; the layout in the options is not used. The device must outlive the
    /// export, and its resolution must be pageResolution().
    PictureExport(TimelineModel& model, QPagedPaintDevice& device, const PictureOptions& options,
                  QObject* parent = nullptr);
    /// Cancels what is not finished.
    ~PictureExport() override;

    /// Returns at once; finished() tells the end.
    void start();
    /// Returns when it is done. @param progress see ReadOptions::progress; may be empty
    /// @return nothing, or why there is no picture
    std::optional<FileError> run(const std::function<bool(double share)>& progress = {});
    /// Ends with an error whose reason is writingCancelledReason(). Does nothing before start() and after finished().
    void cancel();
    /// Why there is no picture; nothing before the end, or when all went well.
    const std::optional<FileError>& error() const;

    /// How large the picture will be. @return an error for options from which none can be made
    static Result<PictureSize> size(TimelineModel& model, const QString& fileName, const PictureOptions& options);
    /// What the picture, or its first page, will look like, made smaller so as to be no wider than `most`; what is too
    /// high or, at the least scale of 1 to 5, too wide is cut. Null for options from which no picture can be made.
    static QImage preview(TimelineModel& model, const QString& fileName, const PictureOptions& options,
                          const QSize& most);
    /// Whether a file of that name would be a picture: a PNG, SVG or PDF, letter case aside.
    static bool isPictureFile(const QString& fileName);
    /// Dots an inch that pages are painted at; texts come out in the sizes of the screen.
    static int pageResolution();

Q_SIGNALS:
    /// @param share what is painted, from 0 to 1
    void progressChanged(double share);
    /// All is written or, with error(), given up.
    void finished();

private:
    void init(TimelineModel& model);
    bool paintSome();
    void finish();
    void end(const QString& reason);
    void watch(TimelineModel& model);

    std::unique_ptr<PictureExportPrivate> d;
};

/// Writes a picture in one go, see PictureExport.
VESKTIMELINEKIT_EXPORT std::optional<FileError> writePicture(TimelineModel& model, const QString& fileName,
                                                             const PictureOptions& options = {},
                                                             const std::function<bool(double share)>& progress = {});

/// From the first to the last item of a model, with a little room at both ends; nothing without items.
VESKTIMELINEKIT_EXPORT std::optional<TimeSpan> pictureRange(const TimelineModel& model);

} // namespace VeskTimeline::Kit
