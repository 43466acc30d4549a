#include "picture_target_p.h"

#include <QBuffer>
#include <QSvgGenerator>

#include <algorithm>
#include <array>

namespace VeskTimeline::Kit {

namespace {

// XML has no way to write down most control characters, and two others.
QByteArray withoutForbidden(QByteArray text)
{
    constexpr char firstAllowed = ' ';
    const QByteArray replacement = QString(QChar::ReplacementCharacter).toUtf8();
    const auto isForbidden = [](char byte) {
        return byte >= 0 && byte < firstAllowed && byte != '\t' && byte != '\n' && byte != '\r';
    };
    for (auto at = std::find_if(text.cbegin(), text.cend(), isForbidden); at != text.cend();) {
        const auto position = at - text.cbegin();
        text.replace(position, 1, replacement);
        at = std::find_if(text.cbegin() + position, text.cend(), isForbidden);
    }
    return text.replace("\xEF\xBF\xBE", replacement).replace("\xEF\xBF\xBF", replacement);
}

/// A part of a picture with a place of its own, to which it is clipped. The generator of Qt knows no clips, so each
/// part is a picture first and then a group.
class SvgPart
{
public:
    void begin(const QRect& rect, int resolution)
    {
        m_rect = rect;
        m_buffer.open(QIODevice::WriteOnly);
        m_generator.setOutputDevice(&m_buffer);
        m_generator.setResolution(resolution);
        m_generator.setSize(rect.size());
        m_generator.setViewBox(QRect(QPoint(0, 0), rect.size()));
        m_painter.begin(&m_generator);
    }

    QPainter& painter() { return m_painter; }

    // The elements that show the part, which is empty afterwards. @param name unique in the picture
    QByteArray takeElements(const QByteArray& name)
    {
        m_painter.end();
        QByteArray text = m_buffer.data();
        m_buffer.close();
        m_buffer.setData(QByteArray());
        // What stands before is about a picture of its own, and so is the last tag.
        text = text.mid(text.indexOf("<defs>"));
        text.truncate(text.lastIndexOf("</svg>"));
        // Parts do not share what they define.
        text.replace("id=\"gradient", "id=\"" + name + "gradient")
            .replace("url(#gradient", "url(#" + name + "gradient");
        // Readers do not know the families that this system makes up.
        text.replace("font-family=\"Sans Serif\"", "font-family=\"Sans Serif, sans-serif\"");
        const auto number = [](int value) { return QByteArray::number(value); };
        return "<clipPath id=\"" + name + "\"><rect x=\"0\" y=\"0\" width=\"" + number(m_rect.width()) +
               "\" height=\"" + number(m_rect.height()) + "\"/></clipPath>\n<g transform=\"translate(" +
               number(m_rect.x()) + ',' + number(m_rect.y()) + ")\" clip-path=\"url(#" + name + ")\">\n" +
               withoutForbidden(std::move(text)) + "</g>\n";
    }

private:
    QRect m_rect;
    QBuffer m_buffer;
    QSvgGenerator m_generator;
    QPainter m_painter;
};

class SvgTarget : public PictureTarget
{
public:
    SvgTarget(PictureView& view, const PictureOptions& options, const TimeSpan& range, PictureFile& file)
        : PictureTarget(view, options, range), m_file(file)
    {
    }

    QString measure() override { return measureSheet(); }
    PictureSize size() const override { return {m_sheet, 1}; }

    QString begin() override
    {
        m_view.layOut(m_range, m_sheet.width());
        const int rowsHeight = m_view.rowCount() * m_view.rowHeight();
        const int resolution = PictureExport::pageResolution();
        m_title.begin(QRect(0, 0, m_sheet.width(), titleHeight()), resolution);
        for (int column = 0; column < 2; ++column) {
            QRect rect = m_view.columnRect(column);
            rect.moveTop(titleHeight());
            rect.setHeight(m_view.rulerHeight());
            part(m_rulers, column).begin(rect, resolution);
            rect.moveTop(titleHeight() + m_view.rulerHeight());
            rect.setHeight(rowsHeight);
            part(m_rows, column).begin(rect, resolution);
        }
        return {};
    }

    int stepCount() const override { return 1 + m_view.rowCount(); }

    QString paintStep(int step) override
    {
        if (step == 0)
            paintTitle(m_title.painter(), m_sheet.width());
        for (int column = 0; column < 2; ++column) {
            QPainter& painter = step == 0 ? part(m_rulers, column).painter() : part(m_rows, column).painter();
            painter.save();
            painter.translate(-m_view.columnRect(column).left(), step == 0 ? 0 : (step - 1) * m_view.rowHeight());
            if (step == 0)
                m_view.paintRulerColumn(painter, column);
            else
                m_view.paintRow(painter, step - 1, column);
            painter.restore();
        }
        return {};
    }

    QString finish() override
    {
        if (!m_file.open(QIODevice::WriteOnly))
            return m_file.errorString();
        const QByteArray width = QByteArray::number(m_sheet.width());
        const QByteArray height = QByteArray::number(m_sheet.height());
        m_file.write("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\n"
                     "<svg width=\"" +
                     width + "\" height=\"" + height + "\" viewBox=\"0 0 " + width + ' ' + height +
                     "\"\n xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\""
                     " version=\"1.1\">\n");
        if (!m_options.title.isEmpty())
            m_file.write("<title>" + withoutForbidden(m_options.title.toHtmlEscaped().toUtf8()) + "</title>\n");
        // Not every reader clips: the names come last and cover what reaches into them.
        if (titleHeight() > 0)
            m_file.write(m_title.takeElements("title"));
        for (int column = 1; column >= 0; --column) {
            m_file.write(part(m_rows, column).takeElements(column == 1 ? "items" : "names"));
            m_file.write(part(m_rulers, column).takeElements(column == 1 ? "ruler" : "caption"));
        }
        m_file.write("</svg>\n");
        return m_file.commitWhole() ? QString() : m_file.errorString();
    }

    bool finishesAside() const override { return true; }

private:
    using Parts = std::array<SvgPart, 2>;
    static SvgPart& part(Parts& parts, int column) { return parts[static_cast<std::size_t>(column)]; }

    PictureFile& m_file;
    SvgPart m_title;
    Parts m_rulers;
    Parts m_rows;
};

} // namespace

std::unique_ptr<PictureTarget> makeSvgTarget(PictureView& view, const PictureOptions& options, const TimeSpan& range,
                                             PictureFile& file)
{
    return std::make_unique<SvgTarget>(view, options, range, file);
}

} // namespace VeskTimeline::Kit
