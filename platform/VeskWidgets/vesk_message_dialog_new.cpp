#include <VeskWidgets/vesk_message_dialog_new.h>

#include <QCloseEvent>
#include <QKeyEvent>
#include <QKeySequence>
#include <QPushButton>

namespace VeskWidgets {

namespace {

QMessageBox::Icon iconOf(Behaviour behaviour)
{
    switch (behaviour) {
    case Behaviour::Information:
        return QMessageBox::Information;
    case Behaviour::Question:
        return QMessageBox::Question;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButton standardButton(Button button)
{
    switch (button) {
    case Button::Ok:
        return QMessageBox::Ok;
    case Button::Yes:
        return QMessageBox::Yes;
    case Button::Cancel:
        return QMessageBox::Cancel;
    case Button::No:
        return QMessageBox::No;
    case Button::None:
        break;
    }
    return QMessageBox::NoButton;
}

void addButtons(QMessageBox& box, Buttons buttons, const QHash<Button, QString>& customTexts)
{
    for (const Button button : {Button::Ok, Button::Yes, Button::Cancel, Button::No}) {
        if (!buttons.testFlag(button))
            continue;
        QPushButton* const added = box.addButton(standardButton(button));
        if (const auto customText = customTexts.constFind(button); customText != customTexts.cend())
            added->setText(*customText);
    }
}

void makeCarefulButtonTheEasyOne(QMessageBox& box, Buttons buttons)
{
    for (const Button button : {Button::No, Button::Cancel}) {
        if (!buttons.testFlag(button))
            continue;
        box.setDefaultButton(standardButton(button));
        box.setEscapeButton(standardButton(button));
        return;
    }
    box.setDefaultButton(standardButton(buttons.testFlag(Button::Ok) ? Button::Ok : Button::Yes));
}

} // namespace

VeskMessageDialogNew::VeskMessageDialogNew(QWidget* parent, const QString& title, const QString& text,
                                           VeskWidgets::Behaviour behaviour, VeskWidgets::Buttons buttons,
                                           const QHash<VeskWidgets::Button, QString>& customTexts, bool openAtOnce)
    : QMessageBox(iconOf(behaviour), title, text, QMessageBox::NoButton, parent)
{
    setAttribute(Qt::WA_DeleteOnClose);
    const Buttons shown = buttons ? buttons : Buttons(VeskWidgets::Button::Ok);
    addButtons(*this, shown, customTexts);
    makeCarefulButtonTheEasyOne(*this, shown);
    connect(this, &QDialog::finished, this, &VeskMessageDialogNew::onFinished);
    if (openAtOnce)
        QDialog::open();
}

void VeskMessageDialogNew::keyPressEvent(QKeyEvent* e)
{
    if (!escapeButton() && e->matches(QKeySequence::Cancel)) {
        reject();
        return;
    }
    QMessageBox::keyPressEvent(e);
}

void VeskMessageDialogNew::closeEvent(QCloseEvent* e)
{
    if (escapeButton() && isVisible()) {
        QMessageBox::closeEvent(e);
        return;
    }
    // A message box refuses to be closed when it has no escape button or has never been shown.
    e->accept();
    if (isVisible())
        reject();
}

void VeskMessageDialogNew::onFinished(int result)
{
    const bool isConfirmed = result == QMessageBox::Yes || result == QMessageBox::Ok || result == QDialog::Accepted;
    if (isConfirmed)
        Q_EMIT yes();
    else
        Q_EMIT no();
}

} // namespace VeskWidgets
