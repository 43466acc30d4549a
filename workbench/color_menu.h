#pragma once

#include <QColor>
#include <QMenu>

namespace Workbench {

/// Offers the colours of tracks, any other by a dialog, and none.
class ColorMenu : public QMenu
{
    Q_OBJECT

public:
    /// @param noneText says what stands for no colour
    explicit ColorMenu(const QString& title, const QString& noneText, QWidget* parent = nullptr);

    /// Where the dialog starts.
    void setCurrent(const QColor& color) { m_current = color; }

    /// A filled square; striped for an invalid colour.
    static QIcon swatch(const QColor& color);

Q_SIGNALS:
    /// @param color invalid for none
    void colorChosen(const QColor& color);

private:
    void askForColor();

    QColor m_current;
};

} // namespace Workbench
