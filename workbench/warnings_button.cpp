#include "warnings_button.h"

#include "icons.h"

#include <QClipboard>
#include <QDialog>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace Workbench {

WarningsButton::WarningsButton(QWidget* parent) : QToolButton(parent)
{
    setObjectName(QStringLiteral("warningsButton"));
    setAutoRaise(true);
    setIcon(Workbench::icon(QStringLiteral("warning")));
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setToolTip(tr("Show what was skipped or adapted"));
    connect(this, &QToolButton::clicked, this, &WarningsButton::showDialog);
    hide();
}

QString WarningsButton::title() const
{
    return m_warnings.size() == 1 ? tr("1 warning") : tr("%1 warnings").arg(m_warnings.size());
}

void WarningsButton::setWarnings(const QStringList& warnings)
{
    m_warnings = warnings;
    setText(title());
    setVisible(!m_warnings.isEmpty());
    if (!m_dialog)
        return;
    if (m_warnings.isEmpty())
        m_dialog->close();
    else
        fillDialog();
}

void WarningsButton::fillDialog()
{
    m_dialog->setWindowTitle(title());
    m_list->setPlainText(m_warnings.join(u'\n'));
}

void WarningsButton::showDialog()
{
    if (m_dialog) {
        m_dialog->raise();
        m_dialog->activateWindow();
        return;
    }
    m_dialog = new QDialog(window());
    m_dialog->setObjectName(QStringLiteral("warningsDialog"));
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_list = new QPlainTextEdit(m_dialog);
    m_list->setReadOnly(true);
    m_list->setLineWrapMode(QPlainTextEdit::NoWrap);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close, m_dialog);
    QPushButton* const copy = buttons->addButton(tr("&Copy"), QDialogButtonBox::ActionRole);
    copy->setObjectName(QStringLiteral("copyWarnings"));
    copy->setAutoDefault(false);
    connect(copy, &QPushButton::clicked, this,
            [this] { QGuiApplication::clipboard()->setText(m_warnings.join(u'\n')); });
    connect(buttons, &QDialogButtonBox::rejected, m_dialog, &QDialog::close);
    auto* const layout = new QVBoxLayout(m_dialog);
    layout->addWidget(m_list);
    layout->addWidget(buttons);
    constexpr QSize startSize(720, 360);
    m_dialog->resize(startSize);
    fillDialog();
    m_dialog->show();
}

} // namespace Workbench
