#include "recovery_dialog.h"

#include "file_dialogs.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace Workbench {

namespace {

constexpr int journalRole = Qt::UserRole;
constexpr int progressSteps = 1000;
constexpr QSize startSize(620, 280);

} // namespace

RecoveryDialog::RecoveryDialog(const std::vector<OrphanedJournal>& journals, QWidget* parent)
    : QDialog(parent), m_list(new QTreeWidget(this)), m_error(new QLabel(this)), m_progress(new QProgressBar(this))
{
    setWindowTitle(tr("Recover Unsaved Changes"));
    auto* const text = new QLabel(tr("The program ended before these changes were saved. A recovered timeline is shown "
                                     "in this window; the others are offered again at the next start."),
                                  this);
    text->setWordWrap(true);
    m_list->setObjectName(QStringLiteral("journals"));
    m_list->setHeaderLabels({tr("Timeline"), tr("Last change"), tr("Folder")});
    m_list->setRootIsDecorated(false);
    for (const OrphanedJournal& journal : journals)
        addJournal(journal);
    m_list->header()->resizeSections(QHeaderView::ResizeToContents);
    m_list->setCurrentItem(m_list->topLevelItem(0));
    m_error->setObjectName(QStringLiteral("error"));
    m_error->setWordWrap(true);
    m_error->setTextFormat(Qt::PlainText);
    m_error->hide();
    m_progress->setRange(0, progressSteps);
    m_progress->hide();

    auto* const buttons = new QDialogButtonBox(this);
    m_recover = buttons->addButton(tr("&Recover"), QDialogButtonBox::ActionRole);
    m_recover->setObjectName(QStringLiteral("recover"));
    m_recover->setDefault(true);
    m_discard = buttons->addButton(tr("&Discard…"), QDialogButtonBox::DestructiveRole);
    m_discard->setObjectName(QStringLiteral("discard"));
    buttons->addButton(tr("&Later"), QDialogButtonBox::RejectRole)->setObjectName(QStringLiteral("later"));
    auto* const layout = new QVBoxLayout(this);
    for (QWidget* const widget : std::initializer_list<QWidget*>{text, m_list, m_error, m_progress, buttons})
        layout->addWidget(widget);

    connect(m_recover, &QPushButton::clicked, this, [this] { Q_EMIT recoverWanted(selectedJournal()); });
    connect(m_discard, &QPushButton::clicked, this, &RecoveryDialog::askToDiscard);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QTreeWidget::itemSelectionChanged, this, &RecoveryDialog::updateButtons);
    // Return in the list goes on to the default button. Recovering at once would disable the list, with that make
    // "Later" the default, and so let the same key press give up what it began.
    connect(m_list, &QTreeWidget::itemActivated, m_recover, &QPushButton::click, Qt::QueuedConnection);
    resize(startSize);
    updateButtons();
}

void RecoveryDialog::addJournal(const OrphanedJournal& journal)
{
    const QString folder =
        journal.fileNames.isEmpty() ? QString() : QFileInfo(journal.fileNames.first()).absolutePath();
    auto* const entry =
        new QTreeWidgetItem({journal.title(), QLocale().toString(journal.lastChange, QLocale::ShortFormat),
                             QDir::toNativeSeparators(folder)});
    entry->setData(0, journalRole, journal.fileName);
    entry->setToolTip(0, journal.fileNames.join(u'\n').toHtmlEscaped());
    m_list->addTopLevelItem(entry);
}

QString RecoveryDialog::selectedJournal() const
{
    const QList<QTreeWidgetItem*> selected = m_list->selectedItems();
    return selected.isEmpty() ? QString() : selected.first()->data(0, journalRole).toString();
}

void RecoveryDialog::updateButtons()
{
    const bool canAct = !m_isBusy && !m_list->selectedItems().isEmpty();
    m_recover->setEnabled(canAct);
    m_discard->setEnabled(canAct);
    m_list->setEnabled(!m_isBusy);
}

void RecoveryDialog::askToDiscard()
{
    const QString journal = selectedJournal();
    const QString title = m_list->selectedItems().first()->text(0);
    const FileQuestion question{"discardJournal", tr("Discard the unsaved changes of “%1”?").arg(title),
                                tr("They cannot be brought back."), QMessageBox::Warning};
    ask(this, question, QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Cancel,
        [this, journal](QMessageBox::StandardButton answer) {
            if (answer == QMessageBox::Discard)
                Q_EMIT discardWanted(journal);
        });
}

void RecoveryDialog::removeJournal(const QString& fileName)
{
    for (int row = m_list->topLevelItemCount() - 1; row >= 0; --row) {
        if (m_list->topLevelItem(row)->data(0, journalRole).toString() == fileName)
            delete m_list->takeTopLevelItem(row);
    }
    if (m_list->topLevelItemCount() == 0)
        close();
}

void RecoveryDialog::setBusy(bool isBusy)
{
    m_isBusy = isBusy;
    m_progress->setValue(0);
    m_progress->setVisible(isBusy);
    m_error->hide();
    updateButtons();
}

void RecoveryDialog::setProgress(double share)
{
    m_progress->setValue(static_cast<int>(share * progressSteps));
}

void RecoveryDialog::showError(const QString& text)
{
    m_error->setText(text);
    m_error->show();
}

} // namespace Workbench
