#pragma once

#include <VeskTimelineKit/result.h>

#include <QList>
#include <QMessageBox>
#include <QString>

#include <functional>

class QFileDialog;

namespace VeskTimeline::Kit {
struct DocumentFormat;
}

namespace Workbench {

/// What is said or asked in a message box.
struct FileQuestion
{
    const char* name; ///< of the dialog as an object
    QString text;
    QString details; ///< below the text; may be empty
    QMessageBox::Icon icon = QMessageBox::Question;
};

/// Opens a message box over the window, and goes on. It destroys itself when it is closed. Texts are plain.
QMessageBox* openMessage(QWidget* window, const FileQuestion& question, QMessageBox::StandardButtons buttons,
                         QMessageBox::StandardButton defaultButton);

/// Opens a message box and calls `then` with the button that it is closed with; for Escape that is Cancel.
QMessageBox* ask(QWidget* window, const FileQuestion& question, QMessageBox::StandardButtons buttons,
                 QMessageBox::StandardButton defaultButton,
                 const std::function<void(QMessageBox::StandardButton)>& then);

/// Asks, in a box "overwrite", whether a file that is there may be replaced; calls one of the two, at once when there
/// is no such file.
/// @return null when nothing is asked
QMessageBox* askToReplace(QWidget* window, const QString& fileName, const std::function<void()>& then,
                          const std::function<void()>& otherwise);

/// Says once for each file why it was refused, in one dialog "notOpened".
void reportRefusals(QWidget* window, const QList<VeskTimeline::Kit::FileError>& refusals);

/// Opens a dialog "openDialog" or, to add, "addDialog" for files to be read.
void chooseFilesToRead(QWidget* window, const char* name, const QString& title, const QString& folder,
                       const std::function<void(const QStringList&)>& then);

/// Opens the dialog "saveDialog" for the native file to write.
/// @param suggestion the file name, with its folder. @param otherwise called when it is closed without a choice
void chooseFileToSave(QWidget* window, const QString& suggestion, const std::function<void(const QString&)>& then,
                      const std::function<void()>& otherwise);

/// Opens the dialog "exportDialog" for a file of any other format to write: of the suffix or else of the filter chosen.
void chooseFileToExport(QWidget* window, const QString& suggestion,
                        const std::function<void(const QString&, const VeskTimeline::Kit::DocumentFormat&)>& then);

/// The format that Save writes.
const VeskTimeline::Kit::DocumentFormat& nativeFormat();
/// The name without the suffix of a format, if it has one.
QString withoutFormatSuffix(const QString& fileName);
/// The name with the native suffix, in place of that of another format: a name that others share, as *.json is that of
/// traces, too, would say of the file what it is not.
QString withNativeSuffix(const QString& fileName);

} // namespace Workbench
