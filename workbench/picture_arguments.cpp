#include "picture_arguments.h"

#include "page_sizes.h"
#include "time_argument.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <optional>
#include <type_traits>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

struct Tr
{
    Q_DECLARE_TR_FUNCTIONS(PictureArguments)
};

constexpr double leastScale = 0.25;
constexpr double mostScale = 8.0;
constexpr int mostPagesAcross = 1000;

// A comma that belongs to a name has a backslash before it.
QStringList pathsOf(const QString& text)
{
    QStringList paths{QString()};
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isEscaped = text.at(i) == u'\\' && i + 1 < text.size() && text.at(i + 1) == u',';
        if (isEscaped)
            paths.last().append(text.at(++i));
        else if (text.at(i) == u',')
            paths.append(QString());
        else
            paths.last().append(text.at(i));
    }
    return paths;
}

QString numberError(const QString& name, const QString& text, double least, double most)
{
    return Tr::tr("--%1 takes a number from %2 to %3, not \"%4\"")
        .arg(name, QString::number(least), QString::number(most, 'g', 7), text);
}

// Empty when the value, if there is one, is a number within the bounds.
template <typename Number>
QString readNumber(const QCommandLineParser& parser, const QCommandLineOption& option, Number least, Number most,
                   Number& target)
{
    if (!parser.isSet(option))
        return {};
    const QString text = parser.value(option);
    bool isNumber = false;
    Number number{};
    if constexpr (std::is_integral_v<Number>)
        number = text.toInt(&isNumber);
    else
        number = text.toDouble(&isNumber);
    if (!isNumber || !(number >= least && number <= most))
        return numberError(option.names().first(), text, least, most);
    target = number;
    return {};
}

} // namespace

PictureCommandOptions::PictureCommandOptions()
    : m_range(QStringLiteral("range"),
              Tr::tr("Pictures: show the time from START to END instead of all items; "
                     "each is a date, an ISO 8601 time with its zone, or milliseconds since 1970."),
              QStringLiteral("START..END")),
      m_tracks(QStringLiteral("tracks"),
               Tr::tr("Pictures: show only these tracks. Ship/Deck is the track Deck below Ship; "
                      "a slash or comma in a name has a backslash before it."),
               QStringLiteral("PATH[,PATH...]")),
      m_width(QStringLiteral("width"), Tr::tr("PNG and SVG: width in pixels, names included; without it 1600."),
              QStringLiteral("PIXELS")),
      m_scale(QStringLiteral("scale"), Tr::tr("PNG: that many pixels for each, in both directions."),
              QStringLiteral("FACTOR")),
      m_title(QStringLiteral("title"), Tr::tr("Pictures: a text above, in PDF at the foot of each page."),
              QStringLiteral("TEXT")),
      m_dark(QStringLiteral("dark"), Tr::tr("Pictures: light texts on a dark background.")),
      m_page(
          QStringLiteral("page"),
          Tr::tr("PDF: size of the pages, one of %1; without it A4.").arg(pageSizeNames().join(QStringLiteral(", "))),
          QStringLiteral("SIZE")),
      m_portrait(QStringLiteral("portrait"), Tr::tr("PDF: upright pages.")),
      m_pagesAcross(QStringLiteral("pages-across"), Tr::tr("PDF: spread the time over N pages side by side."),
                    QStringLiteral("N"))
{
}

QList<QCommandLineOption> PictureCommandOptions::all() const
{
    return {m_range, m_tracks, m_width, m_scale, m_title, m_dark, m_page, m_portrait, m_pagesAcross};
}

void PictureCommandOptions::addTo(QCommandLineParser& parser) const
{
    parser.addOptions(all());
}

QString PictureCommandOptions::read(const QCommandLineParser& parser, bool isPicture, PictureArguments& arguments) const
{
    for (const QCommandLineOption& option : all()) {
        const QString name = option.names().first();
        if (parser.isSet(option) && !isPicture)
            return Tr::tr("--%1 goes with --convert to a .png, .svg or .pdf").arg(name);
        if (parser.values(option).size() > 1)
            return Tr::tr("--%1 is there more than once").arg(name);
    }
    PictureOptions& options = arguments.options;
    if (parser.isSet(m_range)) {
        const QString text = parser.value(m_range);
        options.range = spanArgument(text);
        if (!options.range)
            return Tr::tr("\"%1\" is not START..END with an end after the start").arg(text);
    }
    if (parser.isSet(m_tracks))
        arguments.tracks = pathsOf(parser.value(m_tracks));
    if (parser.isSet(m_page) && !setPage(options.pages.layout, parser.value(m_page)))
        return Tr::tr("there is no page size \"%1\"").arg(parser.value(m_page));
    if (parser.isSet(m_portrait))
        options.pages.layout.setOrientation(QPageLayout::Portrait);
    if (parser.isSet(m_dark))
        options.palette = PictureOptions::darkPalette();
    options.title = parser.value(m_title);

    const QString errors[] = {
        readNumber(parser, m_width, PictureOptions::leastWidth, PictureOptions::mostWidth, options.width),
        readNumber(parser, m_scale, leastScale, mostScale, options.scale),
        readNumber(parser, m_pagesAcross, 1, mostPagesAcross, options.pages.pagesAcross)};
    for (const QString& error : errors) {
        if (!error.isEmpty())
            return error;
    }
    return {};
}

} // namespace Workbench
