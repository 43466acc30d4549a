#pragma once

#include "autosave_orphans.h"

#include <QDialog>

class QDialogButtonBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace Workbench {

/// Lists timelines that were not saved when the program ended, to be recovered, discarded, or left for later. It does
/// nothing itself but ask once more before something is discarded.
class RecoveryDialog : public QDialog
{
    Q_OBJECT

public:
    explicit RecoveryDialog(const std::vector<OrphanedJournal>& journals, QWidget* parent = nullptr);

    /// Takes a journal off the list; with the last one the dialog closes.
    void removeJournal(const QString& fileName);
    /// While it is busy one can only leave it.
    void setBusy(bool isBusy);
    /// @param share from 0 to 1
    void setProgress(double share);
    void showError(const QString& text);

Q_SIGNALS:
    void recoverWanted(const QString& fileName);
    void discardWanted(const QString& fileName);

private:
    void addJournal(const OrphanedJournal& journal);
    void askToDiscard();
    QString selectedJournal() const;
    void updateButtons();

    QTreeWidget* m_list;
    QLabel* m_error;
    QProgressBar* m_progress;
    QPushButton* m_recover = nullptr;
    QPushButton* m_discard = nullptr;
    bool m_isBusy = false;
};

} // namespace Workbench
