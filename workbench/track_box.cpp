#include "track_box.h"

#include <QKeyEvent>
#include <QWheelEvent>

namespace Workbench {

TrackBox::TrackBox(QWidget* parent) : QComboBox(parent)
{
}

// Tab and the like go their way, and so do shortcuts.
void TrackBox::keyPressEvent(QKeyEvent* event)
{
    constexpr auto withText = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    const bool isText = !event->text().isEmpty() && event->text().at(0).isPrint() && !(event->modifiers() & withText);
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
        if (!(event->modifiers() & withText))
            showPopup();
        else
            event->ignore();
        return;
    default:
        break;
    }
    if (isText)
        showPopup();
    else
        QComboBox::keyPressEvent(event);
}

// For what scrolls around it.
void TrackBox::wheelEvent(QWheelEvent* event)
{
    event->ignore();
}

} // namespace Workbench
