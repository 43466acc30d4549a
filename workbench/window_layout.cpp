#include "window_layout.h"

#include "name_column.h"
#include "settings.h"

#include <QEvent>
#include <QMainWindow>
#include <QScreen>

namespace Workbench {

namespace {

const QString geometryKey = QStringLiteral("window/geometry");
const QString stateKey = QStringLiteral("window/state");
// Another arrangement of tool bars and docks takes another number.
constexpr int stateVersion = 1;

} // namespace

WindowLayout::WindowLayout(QMainWindow* window, NameColumn* nameColumn)
    : QObject(window), m_window(window), m_nameColumn(nameColumn)
{
    restore();
    window->installEventFilter(this);
}

void WindowLayout::restore()
{
    const std::unique_ptr<QSettings> settings = openSettings();
    if (!m_window->restoreGeometry(settings->value(geometryKey).toByteArray())) {
        // The window manager's frame takes some of it, too.
        constexpr QSize frame(8, 40);
        m_window->resize(m_window->size().boundedTo(m_window->screen()->availableSize() - frame));
    }
    m_window->restoreState(settings->value(stateKey).toByteArray(), stateVersion);
    m_nameColumn->restore(*settings);
}

void WindowLayout::save() const
{
    const std::unique_ptr<QSettings> settings = openSettings();
    settings->setValue(geometryKey, m_window->saveGeometry());
    settings->setValue(stateKey, m_window->saveState(stateVersion));
    m_nameColumn->save(*settings);
}

bool WindowLayout::eventFilter(QObject* watched, QEvent* event)
{
    // While all is still in its place; that the window may refuse to close does no harm.
    if (event->type() == QEvent::Close)
        save();
    return QObject::eventFilter(watched, event);
}

} // namespace Workbench
