#include "kit_tr_p.h"
#include "picture_target_p.h"

#include <QImage>
#include <QImageWriter>

#include <cmath>

namespace VeskTimeline::Kit {

namespace {

/// One image, painted in tiles that share its memory: painters know no coordinates beyond some ten thousands.
class PngTarget : public PictureTarget
{
public:
    PngTarget(PictureView& view, const PictureOptions& options, const TimeSpan& range, PictureFile& file)
        : PictureTarget(view, options, range), m_file(file)
    {
    }

    QString measure() override
    {
        constexpr double leastScale = 0.25;
        constexpr double mostScale = 8.0;
        constexpr double mostPixels = 1e8;
        const double scale = m_options.scale;
        if (!(scale >= leastScale && scale <= mostScale))
            return Tr::tr("the scale of a picture is from %1 to %2, not %3").arg(leastScale).arg(mostScale).arg(scale);
        if (const QString reason = measureSheet(); !reason.isEmpty())
            return reason;
        const double width = std::ceil(m_sheet.width() * scale);
        const double height = std::ceil(m_sheet.height() * scale);
        if (width * height > mostPixels)
            return Tr::tr("the picture would be %1 by %2 pixels, more than the 100 million that are possible: choose "
                          "fewer tracks or less width, or write SVG or PDF")
                .arg(QString::number(width, 'f', 0), QString::number(height, 'f', 0));
        m_pixels = QSize(static_cast<int>(width), static_cast<int>(height));
        return {};
    }

    PictureSize size() const override { return {m_pixels, 1}; }

    QString begin() override
    {
        m_image = QImage(m_pixels, QImage::Format_RGB32);
        if (m_image.isNull())
            return Tr::tr("there is not enough memory for %1 by %2 pixels")
                .arg(m_pixels.width())
                .arg(m_pixels.height());
        m_image.fill(m_options.palette.color(QPalette::Base));
        m_view.layOut(m_range, m_sheet.width());
        return {};
    }

    int stepCount() const override { return tileCount() * stepsPerTile(); }

    QString paintStep(int step) override
    {
        const int row = step % stepsPerTile() - 1;
        const int top = row < 0 ? 0 : titleHeight() + m_view.rulerHeight() + row * m_view.rowHeight();
        const int height = row < 0 ? titleHeight() + m_view.rulerHeight() : m_view.rowHeight();
        paintTile(step / stepsPerTile() * tileWidth, top, height, row);
        return {};
    }

    QString finish() override
    {
        if (!m_file.open(QIODevice::WriteOnly))
            return m_file.errorString();
        QImageWriter writer(&m_file, "png");
        const bool isWritten = writer.write(m_image);
        if (isWritten && m_file.commitWhole())
            return {};
        return m_file.error() != QFileDevice::NoError || isWritten ? m_file.errorString() : writer.errorString();
    }

    bool finishesAside() const override { return true; }

private:
    // A multiple of what scales are rounded to, so that tiles begin at whole pixels.
    static constexpr int tileWidth = 4000;

    int tileCount() const { return (m_sheet.width() + tileWidth - 1) / tileWidth; }
    // The ruler, then the rows.
    int stepsPerTile() const { return 1 + m_view.rowCount(); }

    void paintTile(int left, int top, int height, int row)
    {
        const double scale = m_options.scale;
        const int x = static_cast<int>(left * scale);
        const int y = static_cast<int>(std::floor(top * scale));
        const int right = std::min(static_cast<int>(std::ceil((left + tileWidth) * scale)), m_pixels.width());
        const int bottom = std::min(static_cast<int>(std::ceil((top + height) * scale)), m_pixels.height());
        constexpr qsizetype bytesPerPixel = 4;
        QImage tile(m_image.bits() + y * m_image.bytesPerLine() + x * bytesPerPixel, right - x, bottom - y,
                    m_image.bytesPerLine(), m_image.format());
        tile.setDevicePixelRatio(scale);
        QPainter painter(&tile);
        painter.translate(-x / scale, top - y / scale);
        if (row >= 0) {
            m_view.paintRow(painter, row);
            return;
        }
        paintTitle(painter, m_sheet.width());
        painter.translate(0, titleHeight());
        m_view.paintRuler(painter);
    }

    PictureFile& m_file;
    QSize m_pixels;
    QImage m_image;
};

} // namespace

std::unique_ptr<PictureTarget> makePngTarget(PictureView& view, const PictureOptions& options, const TimeSpan& range,
                                             PictureFile& file)
{
    return std::make_unique<PngTarget>(view, options, range, file);
}

} // namespace VeskTimeline::Kit
