#include "kit_tr_p.h"
#include "picture_target_p.h"

#include <cmath>

namespace VeskTimeline::Kit {

namespace {

constexpr int titleBand = 32;
constexpr int titleMargin = 8;

} // namespace

PictureFile::PictureFile(const QString& fileName, const std::atomic_bool& isCancelled)
    : WholeFile(fileName), m_isCancelled(isCancelled)
{
}

qint64 PictureFile::writeData(const char* data, qint64 length)
{
    if (!m_isCancelled)
        return WholeFile::writeData(data, length);
    // Not all who write look whether it went well.
    cancelWriting();
    return -1;
}

PictureTarget::PictureTarget(PictureView& view, const PictureOptions& options, const TimeSpan& range)
    : m_view(view), m_options(options), m_range(range)
{
}

PictureTarget::~PictureTarget() = default;

QString PictureTarget::measureSheet()
{
    const int least = PictureOptions::leastWidth;
    const int most = PictureOptions::mostWidth;
    double width = m_options.width;
    if (m_options.timePerPixel > 0.0) {
        const double timeWidth = std::ceil(static_cast<double>(m_range.end - m_range.start) / m_options.timePerPixel);
        width =
            std::min<double>(timeWidth + m_view.nameWidth(static_cast<int>(std::min<double>(timeWidth, most))), 1e15);
    }
    if (!(width >= least && width <= most))
        return Tr::tr("the picture would be %1 pixels wide; it can be from %2 to %3")
            .arg(QString::number(width, 'f', 0), QString::number(least), QString::number(most));
    // The model's row count is an int, and so are widths and heights.
    constexpr qint64 mostHeight = 16'000'000;
    const qint64 height = titleHeight() + m_view.rulerHeight() + qint64(m_view.rowCount()) * m_view.rowHeight();
    if (height > mostHeight)
        return Tr::tr("the picture would be %1 pixels high, more than the %2 that are possible: choose fewer tracks")
            .arg(height)
            .arg(mostHeight);
    m_sheet = QSize(static_cast<int>(width), static_cast<int>(height));
    return {};
}

void PictureTarget::paintPreview(QPainter& painter, int height)
{
    m_view.layOut(m_range, m_sheet.width());
    paintTitle(painter, m_sheet.width());
    painter.translate(0, titleHeight());
    m_view.paintRuler(painter);
    int top = titleHeight() + m_view.rulerHeight();
    painter.translate(0, m_view.rulerHeight());
    for (int row = 0; row < m_view.rowCount() && top < height; ++row, top += m_view.rowHeight()) {
        m_view.paintRow(painter, row);
        painter.translate(0, m_view.rowHeight());
    }
}

int PictureTarget::titleHeight() const
{
    return m_options.title.isEmpty() ? 0 : titleBand;
}

void PictureTarget::paintTitle(QPainter& painter, int width) const
{
    if (m_options.title.isEmpty())
        return;
    painter.save();
    const QRect band(0, 0, width, titleBand);
    painter.fillRect(band, m_options.palette.color(QPalette::Base));
    QFont font = m_view.font();
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(m_options.palette.color(QPalette::Text));
    const QRect room = band.adjusted(titleMargin, 0, -titleMargin, 0);
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
                     QFontMetrics(font).elidedText(m_options.title.simplified(), Qt::ElideRight, room.width()));
    painter.restore();
}

} // namespace VeskTimeline::Kit
