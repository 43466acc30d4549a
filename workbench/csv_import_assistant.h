#pragma once

#include "csv_import_memory.h"
#include "csv_preview_loader.h"

#include <QObject>
#include <QPointer>

#include <deque>
#include <functional>
#include <optional>

class QSettings;
class QWidget;

namespace Workbench {

class CsvImportDialog;

/// Finds out with the user how files of comma-separated values are to be read. Files that need no guessing are not
/// asked about, nor those whose header the user does not want to be asked about again. Nothing here blocks.
class CsvImportAssistant : public QObject
{
    Q_OBJECT

public:
    using Done = std::function<void(std::optional<VeskTimeline::Kit::CsvOptions>)>;

    /// @param window gets the dialogs and becomes the parent; @param settings outlives this
    CsvImportAssistant(QWidget* window, QSettings& settings, CsvPreviewFunction preview = defaultCsvPreview());
    ~CsvImportAssistant() override;

    /// Asks about a file; several are asked about one after another, in order.
    /// @param start what is said already, which counts more than what is remembered
    /// @param done called once, never before this returns: with how to read the file, or with nothing when the user
    /// does not want it. Not called when this is deleted first. A file that cannot be previewed at all comes back with
    /// `start`: reading it tells why.
    void ask(const QString& fileName, const VeskTimeline::Kit::CsvOptions& start, Done done);

    /// What the dialogs belong to.
    QWidget* window() const { return m_window; }
    CsvImportMemory& memory() { return m_memory; }

private:
    struct Question
    {
        QString fileName;
        VeskTimeline::Kit::CsvOptions start;
        Done done;
    };

    void askNext();
    void decide(const CsvPreviewLoader::Answer& answer);
    void showDialog(const QStringList& header, const std::optional<CsvImportMemory::Entry>& known);
    void takeAnswer(const QStringList& header, const CsvImportDialog& dialog);
    void answerSoon(const std::optional<VeskTimeline::Kit::CsvOptions>& options);
    void answer(const std::optional<VeskTimeline::Kit::CsvOptions>& options);

    QWidget* m_window;
    CsvImportMemory m_memory;
    CsvPreviewFunction m_preview;
    std::deque<Question> m_questions;
    bool m_isAsking = false;
    CsvPreviewLoader* m_loader = nullptr;
    QPointer<CsvImportDialog> m_dialog;
};

} // namespace Workbench
