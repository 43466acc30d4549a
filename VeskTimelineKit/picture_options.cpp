#include <VeskTimelineKit/picture_options.h>

#include <QColor>
#include <QMarginsF>
#include <QPageSize>

namespace VeskTimeline::Kit {

namespace {

QPalette paletteOf(const QColor& base, const QColor& alternate, const QColor& text)
{
    QPalette palette(alternate);
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(role, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, alternate);
    palette.setColor(QPalette::Window, base);
    return palette;
}

} // namespace

QPageLayout PicturePages::defaultLayout()
{
    constexpr qreal margin = 10.0;
    return {QPageSize(QPageSize::A4), QPageLayout::Landscape, QMarginsF(margin, margin, margin, margin),
            QPageLayout::Millimeter};
}

QPalette PictureOptions::lightPalette()
{
    return paletteOf(QColor(Qt::white), QColor(0xf5, 0xf5, 0xf5), QColor(Qt::black));
}

QPalette PictureOptions::darkPalette()
{
    return paletteOf(QColor(0x1e, 0x1e, 0x1e), QColor(0x27, 0x27, 0x27), QColor(0xe6, 0xe6, 0xe6));
}

} // namespace VeskTimeline::Kit
