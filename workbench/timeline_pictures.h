#pragma once

#include "picture_export_dialog.h"

#include <functional>

class QPrinter;

namespace Workbench {

class MainWindow;

/// What the window shows, for pictures of it.
PictureContext pictureContext(const MainWindow& window);

/// Asks what to show and where it goes, then writes it, with progress that can be cancelled. Says when it fails.
void exportPicture(MainWindow& window);

/// Asks for printer and pages, then prints the whole timeline in light colours, with progress that can be cancelled.
void printTimeline(MainWindow& window);

/// Shows the pages before they are printed. Painting them can be cancelled, which closes the preview.
void previewPrint(MainWindow& window);

/// A printer that is ready for a timeline: landscape, and at the resolution that texts are painted for.
void preparePrinter(QPrinter& printer);

/// Paints the timeline on all pages, or those that the printer is asked for, and returns when that is done. When it
/// takes a while, it shows progress and lets events in. @return empty, or why not: writingCancelledReason() when the
/// user does not want it any more
QString paintPages(MainWindow& window, QPrinter& printer);

} // namespace Workbench
