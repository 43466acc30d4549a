#pragma once

#include "csv_column_choices.h"
#include "csv_preview_loader.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTimer;

namespace Workbench {

class CsvOptionsForm;
class CsvPreviewModel;
class CsvPreviewTables;

/// Shows how the beginning of a file of comma-separated values is read, and lets it be corrected: what the columns are,
/// and how the text is to be understood. The preview follows each change.
class CsvImportDialog : public QDialog
{
    Q_OBJECT

public:
    /// @param start what is said already; @param preview for other ways to read than the kit's
    CsvImportDialog(const QString& fileName, const VeskTimeline::Kit::CsvOptions& start,
                    CsvPreviewFunction preview = defaultCsvPreview(), QWidget* parent = nullptr);
    ~CsvImportDialog() override;

    /// What was said; what was left at "Detected" is not in it.
    VeskTimeline::Kit::CsvOptions options() const;
    /// Begins anew with other options.
    void setOptions(const VeskTimeline::Kit::CsvOptions& options);

    bool isSilentFromNowOn() const;
    /// Whether something is kept for files with this header, so that it can be forgotten.
    void setRemembered(bool isRemembered, bool isSilent);

    void done(int result) override;

Q_SIGNALS:
    void forgetRequested();

private:
    void createWidgets(const QString& fileName);
    QWidget* createNotes();
    QWidget* createMemoryRow();
    QWidget* createButtonRow();
    void setTabOrders();
    void forget();

    void changeSoon();
    void requestPreview();
    void showAnswer(const VeskTimeline::Kit::CsvOptions& asked, const CsvPreviewLoader::Answer& answer);
    void showPreview(const VeskTimeline::Kit::CsvOptions& asked, const VeskTimeline::Kit::CsvPreview& preview);
    void showCount();
    void updateImport();
    QString reasonAgainst() const;

    CsvPreviewLoader m_loader;
    CsvColumnChoices m_columns;
    QString m_problem;
    VeskTimeline::Kit::CsvOptions m_asked;
    bool m_isCurrent = false;
    QTimer* m_delay;
    CsvOptionsForm* m_form = nullptr;
    CsvPreviewModel* m_model = nullptr;
    CsvPreviewTables* m_tables = nullptr;
    QPlainTextEdit* m_guesses = nullptr;
    QLabel* m_count = nullptr;
    QLabel* m_reasonIcon = nullptr;
    QLabel* m_reason = nullptr;
    QCheckBox* m_silent = nullptr;
    QPushButton* m_forget = nullptr;
    QPushButton* m_detect = nullptr;
    QPushButton* m_import = nullptr;
    QPushButton* m_cancel = nullptr;
};

} // namespace Workbench
