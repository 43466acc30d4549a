#pragma once

#include <VeskWidgets/veskwidgets_export.h>

#include <QFlags>
#include <QHash>
#include <QMessageBox>
#include <QString>

namespace VeskWidgets {

/// What a message dialog is for; decides its icon.
enum class Behaviour { Information = 0, Question = 1 };

/// The buttons a message dialog can have.
enum class Button { None = 0, Ok = 1, Yes = 2, Cancel = 4, No = 8 };
Q_DECLARE_FLAGS(Buttons, Button)
Q_DECLARE_OPERATORS_FOR_FLAGS(Buttons)

/// Tells the user something or asks for a yes or no, without blocking the caller.
///
/// The dialog deletes itself when it is closed, so it is created with new and not kept. While open it blocks the input
/// of its parent's window.
///
/// It answers exactly once, when it closes after having been open: with yes() when the user has pressed Yes or Ok, with
/// no() in every other case. The careful answer is the easy one: Escape and closing the window press No, as does
/// Return until the focus is moved to another button. A dialog without No uses Cancel instead. With neither, Escape and
/// closing the window just close it, answering no(), and Return presses Ok or else Yes. A dialog that is destroyed
/// while open, say with its parent, does not answer.
class VESKWIDGETS_EXPORT VeskMessageDialogNew : public QMessageBox
{
    Q_OBJECT

public:
    /// @p parent is centred on and blocked; it owns the dialog until that deletes itself. None as @p buttons gives Ok.
    /// @p customTexts replace the texts of the buttons they are given for; those of buttons the dialog does not have
    /// are ignored. With @p openAtOnce the dialog shows itself; otherwise the caller calls open().
    VeskMessageDialogNew(QWidget* parent, const QString& title, const QString& text, VeskWidgets::Behaviour behaviour,
                         VeskWidgets::Buttons buttons, const QHash<VeskWidgets::Button, QString>& customTexts,
                         bool openAtOnce);

Q_SIGNALS:
    /// The user has confirmed.
    void yes();

    /// The user has declined or closed the dialog.
    void no();

protected:
    void keyPressEvent(QKeyEvent* e) override;
    void closeEvent(QCloseEvent* e) override;

private:
    void onFinished(int result);
};

} // namespace VeskWidgets
