#include "timeline_pictures.h"

#include "file_dialogs.h"
#include "file_session.h"
#include "main_window.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskTimelineKit/picture_export.h>
#include <VeskTimelineKit/standard_timeline_model.h>
#include <VeskTimelineKit/write_options.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QProgressDialog>
#include <QSet>
#include <QStatusBar>

#include <memory>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

void addExpanded(const QTreeView& view, const QModelIndex& parent, QVector<int>& ids)
{
    const QAbstractItemModel& rows = *view.model();
    for (int row = 0; row < rows.rowCount(parent); ++row) {
        const QModelIndex index = rows.index(row, 0, parent);
        ids.append(index.data(Qt::UserRole).toInt());
        if (view.isExpanded(index))
            addExpanded(view, index, ids);
    }
}

QVector<int> tracksOfSelection(const MainWindow& window)
{
    QSet<int> ids;
    for (const int itemId : window.timeline()->view()->selectedItemIds())
        ids.insert(std::as_const(*window.model()).item(itemId)->parentTrackId());
    return QVector<int>(ids.begin(), ids.end());
}

void sayThereIsNoPicture(MainWindow& window, const QString& reason)
{
    openMessage(&window, {"noPicture", MainWindow::tr("The picture could not be made."), reason, QMessageBox::Warning},
                QMessageBox::Ok, QMessageBox::Ok);
}

// Lets it paint, and be cancelled, while the window stays as it is. Deletes it at its end.
// @param success for the status bar
void runWithProgress(MainWindow& window, PictureExport* picture, const QString& title, const QString& success)
{
    constexpr int visibleFor = 5000; // milliseconds
    constexpr int steps = 1000;
    auto* const progress = new QProgressDialog(title, MainWindow::tr("Cancel"), 0, steps, &window);
    progress->setAttribute(Qt::WA_DeleteOnClose);
    progress->setObjectName(QStringLiteral("pictureProgress"));
    progress->setWindowModality(Qt::WindowModal);
    progress->setAutoClose(false);
    progress->setAutoReset(false);
    QObject::connect(picture, &PictureExport::progressChanged, progress,
                     [progress](double share) { progress->setValue(static_cast<int>(share * steps)); });
    QObject::connect(progress, &QProgressDialog::canceled, picture, &PictureExport::cancel);
    QObject::connect(picture, &PictureExport::finished, &window, [&window, picture, progress, success] {
        progress->disconnect(picture);
        progress->close();
        const std::optional<FileError> error = picture->error();
        picture->deleteLater();
        if (error && error->reason != writingCancelledReason())
            sayThereIsNoPicture(window, error->file.isEmpty() ? error->reason : error->text());
        else if (!error)
            window.statusBar()->showMessage(success, visibleFor);
    });
    picture->start();
}

// Whoever asks for the pages waits for them. What takes longer than a moment shows how far it is, answers meanwhile,
// and can be cancelled.
std::optional<FileError> runHere(MainWindow& window, PictureExport& pages)
{
    constexpr int moment = 50; // milliseconds
    constexpr int steps = 1000;
    QElapsedTimer time;
    time.start();
    std::unique_ptr<QProgressDialog> progress;
    return pages.run([&](double share) {
        if (!progress && time.elapsed() >= moment) {
            progress = std::make_unique<QProgressDialog>(MainWindow::tr("Painting the pages…"),
                                                         MainWindow::tr("Cancel"), 0, steps, &window);
            progress->setObjectName(QStringLiteral("pagesProgress"));
            progress->setWindowModality(Qt::WindowModal);
            progress->setAutoClose(false);
            progress->setAutoReset(false);
            progress->show();
        }
        if (!progress)
            return true;
        progress->setValue(static_cast<int>(share * steps));
        // It lets events in only when there is something new to show.
        QCoreApplication::processEvents();
        return !progress->wasCanceled();
    });
}

PictureOptions printOptions(const MainWindow& window, const QPrinter& printer)
{
    const PictureContext context = pictureContext(window);
    PictureOptions options;
    options.title = context.title;
    options.trackLabel = context.trackLabel;
    if (printer.printRange() == QPrinter::PageRange) {
        options.pages.firstPage = std::max(printer.fromPage(), 1);
        options.pages.lastPage = printer.toPage();
    }
    return options;
}

} // namespace

PictureContext pictureContext(const MainWindow& window)
{
    const TimelineView& view = *window.timeline()->view();
    const TimelineHeaderView& header = *window.timeline()->header();
    PictureContext context;
    context.shownRange = {view.currentTime(), view.currentTime() + view.zoomFactor()};
    addExpanded(view, {}, context.expandedTracks);
    context.selectedTracks = tracksOfSelection(window);
    if (header.isIndicatorVisible() && header.indicatorTime() != -1)
        context.indicatorTime = header.indicatorTime();
    context.palette = window.palette();
    context.trackLabel = header.trackLabel();
    // What stands behind the dash is the program's name.
    const QString title = window.windowTitle().remove(QStringLiteral("[*]")).section(QStringLiteral(" – "), 0, 0);
    context.title = QFileInfo(title).completeBaseName();
    // What has no folder yet goes to the home folder.
    context.fileName = QDir::home().filePath(window.fileSession()->suggestedName(QStringLiteral(".png")));
    return context;
}

void exportPicture(MainWindow& window)
{
    auto* const dialog = new PictureExportDialog(*window.model(), pictureContext(window), &window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setObjectName(QStringLiteral("pictureExportDialog"));
    QObject::connect(dialog, &QDialog::accepted, &window, [&window, dialog] {
        runWithProgress(window, new PictureExport(*window.model(), dialog->fileName(), dialog->options(), &window),
                        MainWindow::tr("Writing the picture…"), MainWindow::tr("Exported %1").arg(dialog->fileName()));
    });
    dialog->open();
}

void preparePrinter(QPrinter& printer)
{
    printer.setResolution(PictureExport::pageResolution());
    printer.setPageOrientation(QPageLayout::Landscape);
}

QString paintPages(MainWindow& window, QPrinter& printer)
{
    PictureExport pages(*window.model(), printer, printOptions(window, printer));
    const std::optional<FileError> error = runHere(window, pages);
    return error ? error->reason : QString();
}

void printTimeline(MainWindow& window)
{
    const auto printer = std::make_shared<QPrinter>();
    preparePrinter(*printer);
    // Print dialogs propose it as the name of a file.
    printer->setDocName(pictureContext(window).title);
    auto* const dialog = new QPrintDialog(printer.get(), &window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOption(QAbstractPrintDialog::PrintSelection, false);
    dialog->setOption(QAbstractPrintDialog::PrintCurrentPage, false);
    QObject::connect(dialog, qOverload<QPrinter*>(&QPrintDialog::accepted), &window, [&window, printer] {
        printer->setResolution(PictureExport::pageResolution());
        auto* const pages = new PictureExport(*window.model(), *printer, printOptions(window, *printer), &window);
        // What was cancelled shall not come out half.
        QObject::connect(pages, &PictureExport::finished, &window, [pages, printer] {
            if (pages->error())
                printer->abort();
        });
        // The printer lives as long as what paints on it.
        QObject::connect(pages, &QObject::destroyed, [printer] {});
        runWithProgress(window, pages, MainWindow::tr("Printing…"), MainWindow::tr("Printed"));
    });
    dialog->open();
}

void previewPrint(MainWindow& window)
{
    const auto printer = std::make_shared<QPrinter>();
    preparePrinter(*printer);
    // Print dialogs propose it as the name of a file.
    printer->setDocName(pictureContext(window).title);
    auto* const dialog = new QPrintPreviewDialog(printer.get(), &window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(dialog, &QPrintPreviewDialog::paintRequested, &window, [&window, dialog](QPrinter* target) {
        const QString reason = paintPages(window, *target);
        // Some of the pages would pass for all. It is asked for them while it is being shown, too early to be closed.
        if (reason == writingCancelledReason())
            QMetaObject::invokeMethod(dialog, &QDialog::reject, Qt::QueuedConnection);
        else if (!reason.isEmpty())
            sayThereIsNoPicture(window, reason);
    });
    QObject::connect(dialog, &QObject::destroyed, [printer] {});
    dialog->open();
}

} // namespace Workbench
