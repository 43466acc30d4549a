#pragma once

#include <VeskTimeline/timeline_view.h>

#include <QImage>
#include <QPainter>
#include <QRect>

/// Pictures of the rows of a view, and their comparison.
namespace Picture {

inline QImage of(const VeskTimeline::TimelineView& view, qreal devicePixelRatio = 1.0)
{
    QWidget* const viewport = view.viewport();
    QImage image(viewport->size() * devicePixelRatio, QImage::Format_RGB32);
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::magenta);
    viewport->render(&image);
    return image;
}

/// The smallest rectangle around all pixels that differ; null for equal pictures.
inline QRect difference(const QImage& one, const QImage& other)
{
    QRect changed;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            if (one.pixel(x, y) != other.pixel(x, y))
                changed |= QRect(x, y, 1, 1);
        }
    }
    return changed;
}

/// Says where two pictures of the same size differ; empty for equal ones.
inline QByteArray describeDifference(const QImage& actual, const QImage& expected)
{
    if (actual.size() != expected.size())
        return "sizes differ";
    const QRect changed = difference(actual, expected);
    if (changed.isNull())
        return {};
    const QPoint first = changed.topLeft();
    return QStringLiteral("pixels differ within x %1..%2, y %3..%4; %5 instead of %6 in its middle, left %7, %8")
        .arg(first.x())
        .arg(changed.right())
        .arg(first.y())
        .arg(changed.bottom())
        .arg(QColor(actual.pixel(changed.center())).name(), QColor(expected.pixel(changed.center())).name(),
             QColor(actual.pixel(first)).name(), QColor(expected.pixel(first)).name())
        .toUtf8();
}

/// A colour as it is when painted over another one.
inline QColor over(const QColor& background, const QColor& color)
{
    QImage image(1, 1, QImage::Format_RGB32);
    image.fill(background);
    QPainter(&image).fillRect(0, 0, 1, 1, color);
    return image.pixelColor(0, 0);
}

} // namespace Picture

#define COMPARE_PICTURES(actual, expected)                                                                             \
    do {                                                                                                               \
        const QByteArray pictureDifference = Picture::describeDifference(actual, expected);                            \
        QVERIFY2(pictureDifference.isEmpty(), pictureDifference.constData());                                          \
    } while (false)
