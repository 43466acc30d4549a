#include "kit_tr_p.h"
#include "picture_target_p.h"

#include <QPagedPaintDevice>
#include <QPdfWriter>

#include <cmath>

namespace VeskTimeline::Kit {

namespace {

constexpr int footerHeight = 24;
constexpr int mostPages = 2000;

/// Pages with the ruler and the names on each, the range across and the tracks downwards, those across first.
class PageTarget : public PictureTarget
{
public:
    PageTarget(PictureView& view, const PictureOptions& options, const TimeSpan& range, QPagedPaintDevice* device)
        : PictureTarget(view, options, range), m_device(device)
    {
    }

    QString measure() override
    {
        constexpr double leastZoom = 0.1;
        constexpr double mostZoom = 4.0;
        const double zoom = m_options.pages.zoom;
        if (!(zoom >= leastZoom && zoom <= mostZoom))
            return Tr::tr("the size on paper is from %1 to %2, not %3").arg(leastZoom).arg(mostZoom).arg(zoom);
        const QSizeF paper = layout().paintRectPixels(PictureExport::pageResolution()).size();
        m_page = QSize(static_cast<int>(paper.width() / zoom), static_cast<int>(paper.height() / zoom));
        m_rowsPerPage = (m_page.height() - m_view.rulerHeight() - footerHeight) / m_view.rowHeight();
        if (m_rowsPerPage < 1 || m_page.width() < PictureOptions::leastWidth)
            return Tr::tr("a page is too small for a row of the timeline: choose a larger page or a smaller size");
        return measurePages();
    }

    PictureSize size() const override { return {m_page, static_cast<int>(pageCount())}; }

    QString begin() override
    {
        if (!m_painter.begin(m_device))
            return Tr::tr("nothing can be painted on these pages");
        m_painter.scale(m_options.pages.zoom, m_options.pages.zoom);
        return {};
    }

    // For each page its frame, then its rows.
    int stepCount() const override { return m_pagesAcross * (m_view.rowCount() + m_pagesDown); }

    QString paintStep(int step) override
    {
        const int stepsPerBand = m_pagesAcross * (m_rowsPerPage + 1);
        const int down = step / stepsPerBand;
        const int rows = std::min(m_rowsPerPage, m_view.rowCount() - down * m_rowsPerPage);
        const int across = step % stepsPerBand / (rows + 1);
        const int row = step % stepsPerBand % (rows + 1) - 1;
        const int number = down * m_pagesAcross + across + 1;
        if (!isWanted(number))
            return {};
        if (row < 0)
            return beginPage(number);
        paintRow(m_painter, down * m_rowsPerPage, row);
        return {};
    }

    void paintPreview(QPainter& painter, int /*height*/) override
    {
        paintFrame(painter, 1);
        for (int row = 0; row < std::min(m_rowsPerPage, m_view.rowCount()); ++row)
            paintRow(painter, 0, row);
    }
    QSize previewSize() const override { return m_page; }

    QString finish() override { return m_painter.end() ? QString() : Tr::tr("the pages could not be finished"); }

protected:
    virtual QPageLayout layout() const { return m_device->pageLayout(); }
    void setDevice(QPagedPaintDevice* device) { m_device = device; }
    QPainter& painter() { return m_painter; }

private:
    qint64 pageCount() const { return qint64(m_pagesAcross) * m_pagesDown; }

    QString measurePages()
    {
        const qint64 length = m_range.end - m_range.start;
        qint64 across = std::max(m_options.pages.pagesAcross, 1);
        m_timePerPage = m_options.pages.timePerPage;
        if (m_timePerPage > 0)
            across = (length + m_timePerPage - 1) / m_timePerPage;
        else
            m_timePerPage = std::max<qint64>((length + across - 1) / across, 1);
        const qint64 down = (m_view.rowCount() + m_rowsPerPage - 1) / m_rowsPerPage;
        if (across > mostPages || across * down > mostPages)
            return Tr::tr("there would be %1 by %2 pages, more than the %3 that are possible: choose more time for "
                          "each page or fewer tracks")
                .arg(across)
                .arg(down)
                .arg(mostPages);
        m_pagesAcross = static_cast<int>(across);
        m_pagesDown = static_cast<int>(down);
        if (m_options.pages.firstPage > across * down)
            return Tr::tr("there is no page %1; the last one is %2").arg(m_options.pages.firstPage).arg(across * down);
        return {};
    }

    // Of the pages that the user asks for.
    bool isWanted(int number) const
    {
        const PicturePages& pages = m_options.pages;
        return number >= pages.firstPage && (pages.lastPage <= 0 || number <= pages.lastPage);
    }

    QString beginPage(int number)
    {
        if (m_hasPage && !m_device->newPage())
            return Tr::tr("page %1 could not be begun").arg(number);
        m_hasPage = true;
        paintFrame(m_painter, number);
        return {};
    }

    // All but the rows.
    void paintFrame(QPainter& painter, int number)
    {
        const qint64 start = m_range.start + (number - 1) % m_pagesAcross * m_timePerPage;
        m_view.layOut({start, start + m_timePerPage}, m_page.width());
        painter.fillRect(QRect(QPoint(0, 0), m_page), m_options.palette.color(QPalette::Base));
        m_view.paintRuler(painter);
        paintFooter(painter, number);
    }

    void paintRow(QPainter& painter, int firstRow, int row)
    {
        painter.save();
        painter.translate(0, m_view.rulerHeight() + row * m_view.rowHeight());
        m_view.paintRow(painter, firstRow + row);
        painter.restore();
    }

    void paintFooter(QPainter& painter, int number)
    {
        painter.save();
        painter.setFont(m_view.font());
        painter.setPen(m_options.palette.color(QPalette::Text));
        const QRect footer(0, m_page.height() - footerHeight, m_page.width(), footerHeight);
        const QString page = Tr::tr("Page %1 of %2").arg(number).arg(pageCount());
        const QFontMetrics metrics(m_view.font());
        const int room = footer.width() - metrics.horizontalAdvance(page) - footerHeight;
        painter.drawText(footer, Qt::AlignLeft | Qt::AlignVCenter,
                         metrics.elidedText(m_options.title.simplified(), Qt::ElideRight, room));
        painter.drawText(footer, Qt::AlignRight | Qt::AlignVCenter, page);
        painter.restore();
    }

    QPagedPaintDevice* m_device;
    QPainter m_painter;
    QSize m_page;
    bool m_hasPage = false;
    qint64 m_timePerPage = 1;
    int m_rowsPerPage = 1;
    int m_pagesAcross = 1;
    int m_pagesDown = 1;
};

class PdfTarget : public PageTarget
{
public:
    PdfTarget(PictureView& view, const PictureOptions& options, const TimeSpan& range, PictureFile& file)
        : PageTarget(view, options, range, nullptr), m_file(file)
    {
    }
    ~PdfTarget() override
    {
        // Before what it paints on.
        if (painter().isActive())
            painter().end();
    }

    QString begin() override
    {
        if (!m_file.open(QIODevice::WriteOnly))
            return m_file.errorString();
        m_writer = std::make_unique<QPdfWriter>(&m_file);
        m_writer->setResolution(PictureExport::pageResolution());
        m_writer->setPageLayout(layout());
        m_writer->setTitle(m_options.title);
        m_writer->setCreator(QStringLiteral("VeskTimeline"));
        setDevice(m_writer.get());
        return PageTarget::begin();
    }

    QString finish() override
    {
        const QString reason = PageTarget::finish();
        if (!m_file.commitWhole())
            return m_file.errorString();
        return reason;
    }

protected:
    QPageLayout layout() const override { return m_options.pages.layout; }

private:
    PictureFile& m_file;
    std::unique_ptr<QPdfWriter> m_writer;
};

} // namespace

std::unique_ptr<PictureTarget> makePdfTarget(PictureView& view, const PictureOptions& options, const TimeSpan& range,
                                             PictureFile& file)
{
    return std::make_unique<PdfTarget>(view, options, range, file);
}

std::unique_ptr<PictureTarget> makePageTarget(PictureView& view, const PictureOptions& options, const TimeSpan& range,
                                              QPagedPaintDevice& device)
{
    return std::make_unique<PageTarget>(view, options, range, &device);
}

} // namespace VeskTimeline::Kit
