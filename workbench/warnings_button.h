#pragma once

#include <QPointer>
#include <QStringList>
#include <QToolButton>

class QDialog;
class QPlainTextEdit;

namespace Workbench {

/// Says how many warnings there are, and shows them in a dialog that does not get in the way. Hidden without any.
class WarningsButton : public QToolButton
{
    Q_OBJECT

public:
    explicit WarningsButton(QWidget* parent = nullptr);

    const QStringList& warnings() const { return m_warnings; }
    /// A dialog that is open shows the new ones.
    void setWarnings(const QStringList& warnings);

private:
    void showDialog();
    void fillDialog();
    QString title() const;

    QStringList m_warnings;
    QPointer<QDialog> m_dialog;
    QPointer<QPlainTextEdit> m_list;
};

} // namespace Workbench
