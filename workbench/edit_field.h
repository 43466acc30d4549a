#pragma once

#include <QWidget>

#include <functional>

class QLabel;
class QLineEdit;
class QPlainTextEdit;

namespace Workbench {

/// A text that is edited in place, with room for what was wrong with it below.
///
/// What has been typed is committed by Return (in several lines: Control+Return) and by leaving the field, and given up
/// by Escape. A text that is refused stays for mending after Return; after leaving, the field shows the old one again
/// and says what was refused.
class EditField : public QWidget
{
    Q_OBJECT

public:
    /// @return why the text is refused; empty when it was taken
    using Commit = std::function<QString(const QString& text)>;
    enum Lines { OneLine, SeveralLines };

    EditField(const QString& name, Lines lines, Commit commit, QWidget* parent = nullptr);

    /// Shows what there is now; a text that is being edited stays.
    /// @param isMixed there are several values, of which none is shown
    void showValue(const QString& text, bool isMixed);
    /// Commits what has been typed, if it can be, and drops it otherwise.
    void leave();
    /// Takes the keyboard with all text selected.
    void startEditing();
    bool isPending() const;
    QString text() const;
    QString error() const;
    void clearError();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool filterKey(int key, Qt::KeyboardModifiers modifiers);
    void setText(const QString& text);
    void setPending(bool isPending);
    void commit(bool isLeaving);
    void reset();

    Commit m_commit;
    QLineEdit* m_line = nullptr;
    QPlainTextEdit* m_lines = nullptr;
    QLabel* m_error;
    QString m_shown;
};

} // namespace Workbench
