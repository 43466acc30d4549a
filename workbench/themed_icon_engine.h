#pragma once

#include <QByteArray>
#include <QIconEngine>

namespace Workbench {

/// Draws an SVG whose lines take the palette's colour for the text of buttons, so that they are seen on light and on
/// dark ground, and when disabled are as pale as the text is.
class ThemedIconEngine : public QIconEngine
{
public:
    /// @param fileName its lines have the colour #4a86b8; all other colours stay
    explicit ThemedIconEngine(const QString& fileName);

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QIconEngine* clone() const override;

private:
    QByteArray m_drawing;
};

} // namespace Workbench
