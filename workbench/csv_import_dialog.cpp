#include "csv_import_dialog.h"

#include "csv_column_header.h"
#include "csv_options_form.h"
#include "csv_preview_model.h"
#include "csv_preview_tables.h"
#include "icons.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QStyle>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

const QString sizeKey = QStringLiteral("csvImportDialog/size");
// Changes that follow each other faster than this are one.
constexpr int delayInMs = 120;

// A label for texts that hold what a file says, which must not be taken for markup.
QLabel* plainLabel(const char* name, QWidget* parent)
{
    auto* const label = new QLabel(parent);
    label->setObjectName(QString::fromLatin1(name));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

CsvImportDialog::CsvImportDialog(const QString& fileName, const CsvOptions& start, CsvPreviewFunction preview,
                                 QWidget* parent)
    : QDialog(parent), m_loader(fileName, std::move(preview)), m_delay(new QTimer(this))
{
    setObjectName(QStringLiteral("csvImportDialog"));
    setWindowTitle(tr("Import %1").arg(QFileInfo(fileName).fileName()));
    setSizeGripEnabled(true);
    createWidgets(fileName);
    setTabOrders();
    resize(QSettings().value(sizeKey, QSize(1100, 720)).toSize().expandedTo(minimumSizeHint()));

    m_delay->setSingleShot(true);
    m_delay->setInterval(delayInMs);
    connect(m_delay, &QTimer::timeout, this, &CsvImportDialog::requestPreview);
    connect(&m_loader, &CsvPreviewLoader::loaded, this, &CsvImportDialog::showAnswer);
    connect(m_form, &CsvOptionsForm::changed, this, &CsvImportDialog::changeSoon);
    connect(m_tables->columnHeader(), &CsvColumnHeader::useChosen, this, [this](const QString& column, auto use) {
        m_columns.choose(column, use);
        changeSoon();
    });
    setRemembered(false, false);
    setOptions(start);
}

CsvImportDialog::~CsvImportDialog()
{
    // Fields that lose the focus when the window goes still have something to say, to nobody.
    m_form->disconnect(this);
}

void CsvImportDialog::createWidgets(const QString& fileName)
{
    m_form = new CsvOptionsForm(this);
    m_form->setObjectName(QStringLiteral("csvOptionsForm"));
    m_model = new CsvPreviewModel(this);
    m_tables = new CsvPreviewTables(m_model, this);
    m_tables->setObjectName(QStringLiteral("csvPreviewTables"));
    m_count = plainLabel("csvCount", this);
    m_count->setToolTip(QStringLiteral("<span>%1</span>").arg(fileName.toHtmlEscaped()));

    auto* const column = new QVBoxLayout(this);
    column->addWidget(m_form);
    column->addWidget(m_tables, 1);
    column->addWidget(m_count);
    column->addWidget(createNotes());
    column->addWidget(createMemoryRow());
    column->addWidget(createButtonRow());
}

QWidget* CsvImportDialog::createNotes()
{
    auto* const notes = new QWidget(this);
    auto* const column = new QVBoxLayout(notes);
    column->setContentsMargins(0, 0, 0, 0);
    auto* const title = new QLabel(tr("&Guessed, please check:"), notes);
    m_guesses = new QPlainTextEdit(notes);
    m_guesses->setObjectName(QStringLiteral("csvGuesses"));
    m_guesses->setAccessibleName(tr("What was guessed"));
    m_guesses->setReadOnly(true);
    m_guesses->setTabChangesFocus(true);
    m_guesses->setFixedHeight(fontMetrics().lineSpacing() * 4 + 12);
    title->setBuddy(m_guesses);
    column->addWidget(title);
    column->addWidget(m_guesses);
    return notes;
}

QWidget* CsvImportDialog::createMemoryRow()
{
    auto* const side = new QWidget(this);
    auto* const row = new QHBoxLayout(side);
    row->setContentsMargins(0, 0, 0, 0);
    m_silent = new QCheckBox(tr("Do &not ask again for files with this header"), side);
    m_silent->setObjectName(QStringLiteral("csvSilent"));
    m_forget = new QPushButton(tr("F&orget"), side);
    m_forget->setObjectName(QStringLiteral("csvForget"));
    m_forget->setAccessibleName(tr("Forget what was chosen for files with this header"));
    m_forget->setToolTip(tr("Forget what was chosen for files with this header"));
    m_forget->setAutoDefault(false);
    connect(m_forget, &QPushButton::clicked, this, &CsvImportDialog::forget);
    row->addWidget(m_silent);
    row->addWidget(m_forget);
    row->addStretch(1);
    return side;
}

QWidget* CsvImportDialog::createButtonRow()
{
    auto* const side = new QWidget(this);
    auto* const row = new QHBoxLayout(side);
    row->setContentsMargins(0, 0, 0, 0);
    m_reasonIcon = new QLabel(side);
    m_reasonIcon->setObjectName(QStringLiteral("csvReasonIcon"));
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
    m_reasonIcon->setPixmap(icon(QStringLiteral("warning")).pixmap(size));
    m_reason = plainLabel("csvReason", side);
    m_detect = new QPushButton(tr("De&tect all"), side);
    m_detect->setObjectName(QStringLiteral("csvDetectAll"));
    m_detect->setToolTip(tr("Set everything back to what is detected"));
    m_detect->setAutoDefault(false);
    m_import = new QPushButton(tr("&Import"), side);
    m_import->setObjectName(QStringLiteral("csvImport"));
    m_import->setDefault(true);
    m_cancel = new QPushButton(tr("Cancel"), side);
    m_cancel->setObjectName(QStringLiteral("csvCancel"));
    connect(m_detect, &QPushButton::clicked, this, [this] { setOptions({}); });
    connect(m_import, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_cancel, &QPushButton::clicked, this, &QDialog::reject);
    row->addWidget(m_reasonIcon, 0, Qt::AlignTop);
    row->addWidget(m_reason, 1);
    for (QPushButton* const button : {m_detect, m_import, m_cancel})
        row->addWidget(button, 0, Qt::AlignBottom);
    return side;
}

void CsvImportDialog::setTabOrders()
{
    QWidget* last = m_form->findChild<QComboBox*>(QStringLiteral("timeZone"));
    QList<QWidget*> order;
    for (QComboBox* const box : m_tables->columnHeader()->boxes()) {
        if (box)
            order.append(box);
    }
    order += {m_tables->fields(), m_tables->read(), m_guesses, m_silent, m_forget, m_detect, m_import, m_cancel};
    for (QWidget* const widget : order) {
        setTabOrder(last, widget);
        last = widget;
    }
}

CsvOptions CsvImportDialog::options() const
{
    CsvOptions options = m_form->options();
    options.columns = m_columns.columns();
    return options;
}

void CsvImportDialog::setOptions(const CsvOptions& options)
{
    m_columns.reset(options.columns);
    m_form->setOptions(options);
    m_delay->stop();
    requestPreview();
}

bool CsvImportDialog::isSilentFromNowOn() const
{
    return m_silent->isChecked();
}

void CsvImportDialog::setRemembered(bool isRemembered, bool isSilent)
{
    m_forget->setEnabled(isRemembered);
    m_silent->setChecked(isSilent);
}

void CsvImportDialog::forget()
{
    // Before the button that has the focus goes out of reach.
    m_silent->setFocus();
    setRemembered(false, false);
    Q_EMIT forgetRequested();
}

void CsvImportDialog::done(int result)
{
    QSettings().setValue(sizeKey, size());
    QDialog::done(result);
}

void CsvImportDialog::changeSoon()
{
    // A field says so, too, when what was typed is found in its list as it loses the focus: to the very button that
    // would be out of reach then.
    m_isCurrent = m_isCurrent && options() == m_asked;
    updateImport();
    if (!m_isCurrent)
        m_delay->start();
}

void CsvImportDialog::requestPreview()
{
    m_isCurrent = false;
    updateImport();
    m_asked = options();
    m_loader.request(m_asked);
}

void CsvImportDialog::showAnswer(const CsvOptions& asked, const CsvPreviewLoader::Answer& answer)
{
    // There is a newer question, which has not been put yet.
    if (m_delay->isActive())
        return;
    m_isCurrent = true;
    if (answer)
        showPreview(asked, answer.value());
    else
        m_problem = answer.error().text();
    updateImport();
}

void CsvImportDialog::showPreview(const CsvOptions& asked, const CsvPreview& preview)
{
    m_problem = preview.problem;
    m_columns.setPreview(preview.header, asked.columns, preview.options.columns);
    // Another header, as after another delimiter: what was said of columns that are not there any more does not count.
    if (m_columns.columns() != asked.columns) {
        requestPreview();
        return;
    }
    m_form->setDetected(preview.options);
    m_model->setPreview(preview);
    m_tables->columnHeader()->setColumns(preview.header, m_columns, preview.options.columns);
    m_guesses->setPlainText(preview.guesses.isEmpty() ? tr("Nothing.") : preview.guesses.join(u'\n'));
    showCount();
    setTabOrders();
}

void CsvImportDialog::showCount()
{
    int refused = 0;
    for (int row = 0; row < m_model->rowCount(); ++row)
        refused += m_model->isRefused(row) ? 1 : 0;
    const int count = m_model->rowCount();
    QString text =
        count == 1 ? tr("The first record of the file.") : tr("The first %1 records of the file.").arg(count);
    if (refused > 0)
        text += u' ' + (refused == 1 ? tr("1 is not imported.") : tr("%1 are not imported.").arg(refused));
    if (const int hidden = m_model->hiddenColumns(); hidden > 0)
        text += u' ' + tr("Columns that are not shown here because there are too many, but imported: %1.").arg(hidden);
    m_count->setText(text);
}

QString CsvImportDialog::reasonAgainst() const
{
    const QString typed = m_form->problem();
    return typed.isEmpty() ? m_problem : typed;
}

void CsvImportDialog::updateImport()
{
    const QString reason = reasonAgainst();
    m_reason->setText(reason);
    m_reasonIcon->setVisible(!reason.isEmpty());
    m_import->setEnabled(m_isCurrent && reason.isEmpty());
    m_import->setToolTip(QStringLiteral("<span>%1</span>").arg(reason.toHtmlEscaped()));
}

} // namespace Workbench
