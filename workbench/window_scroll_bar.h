#pragma once

#include <QScrollBar>

namespace Workbench {

class Navigation;

/// Scrolls the window of a timeline through all that is in reach, however long that is, see Navigation. Arrows move by
/// one labelled mark of the ruler, clicks beside the handle by a window.
class WindowScrollBar : public QScrollBar
{
    Q_OBJECT

public:
    explicit WindowScrollBar(Navigation* navigation, QWidget* parent = nullptr);

    /// Makes a scroll bar and puts it in the place of the slider that the timeline widget comes with.
    static WindowScrollBar* replaceSlider(Navigation* navigation);

private:
    void sync();
    void act(int action);
    void drag(int position);

    Navigation* m_navigation;
    /// Milliseconds for one of the scroll bar's steps, whose number is an int.
    qint64 m_unit = 1;
};

} // namespace Workbench
