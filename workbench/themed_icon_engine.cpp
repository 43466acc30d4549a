#include "themed_icon_engine.h"

#include <QApplication>
#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QPainter>
#include <QPalette>
#include <QPixmap>

namespace Workbench {

namespace {

const char* const lineColor = "#4a86b8";

QColor colorOf(QIcon::Mode mode)
{
    const QPalette palette = QApplication::palette();
    if (mode == QIcon::Disabled)
        return palette.color(QPalette::Disabled, QPalette::ButtonText);
    return palette.color(QPalette::Active, mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText);
}

} // namespace

ThemedIconEngine::ThemedIconEngine(const QString& fileName)
{
    QFile file(fileName);
    if (file.open(QIODevice::ReadOnly))
        m_drawing = file.readAll();
}

void ThemedIconEngine::paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state)
{
    painter->drawPixmap(rect, pixmap(rect.size() * painter->device()->devicePixelRatio(), mode, state));
}

QPixmap ThemedIconEngine::pixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/)
{
    QByteArray drawing = m_drawing;
    drawing.replace(lineColor, colorOf(mode).name().toLatin1());
    QBuffer buffer(&drawing);
    QImageReader reader(&buffer, "svg");
    reader.setScaledSize(size);
    reader.setBackgroundColor(Qt::transparent);
    return QPixmap::fromImage(reader.read());
}

QIconEngine* ThemedIconEngine::clone() const
{
    return new ThemedIconEngine(*this);
}

} // namespace Workbench
