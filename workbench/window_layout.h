#pragma once

#include <QObject>

class QMainWindow;

namespace Workbench {

class NameColumn;

/// Gives a window the place, the size and the arrangement that it had when it was closed last, and keeps those that it
/// has when it is closed. Without any, or when they cannot be read, the window is made to fit the screen.
class WindowLayout : public QObject
{
    Q_OBJECT

public:
    /// To be made before the window is shown. @param window becomes the parent
    WindowLayout(QMainWindow* window, NameColumn* nameColumn);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void restore();
    void save() const;

    QMainWindow* m_window;
    NameColumn* m_nameColumn;
};

} // namespace Workbench
