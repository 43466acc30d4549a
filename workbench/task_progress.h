#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;
class QProgressBar;
class QToolButton;

namespace Workbench {

/// For the status bar: what is under way, how far it is, and a button to cancel it. Hidden while there is nothing, and
/// for the first moments, so that short work does not flash up.
class TaskProgress : public QWidget
{
    Q_OBJECT

public:
    explicit TaskProgress(QWidget* parent = nullptr);

    void start(const QString& text);
    /// @param share from 0 to 1
    void setShare(double share);
    void setText(const QString& text);
    void stop();

Q_SIGNALS:
    void cancelRequested();

private:
    QLabel* m_label;
    QProgressBar* m_bar;
    QToolButton* m_cancelButton;
    QTimer m_delay;
};

} // namespace Workbench
