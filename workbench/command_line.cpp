#include "command_line.h"

#include "csv_command_line.h"
#include "time_argument.h"

#include <VeskTimelineKit/document_format.h>
#include <VeskTimelineKit/picture_export.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include <optional>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

struct Tr
{
    Q_DECLARE_TR_FUNCTIONS(CommandLine)
};

/// The program's options, each once.
struct Options
{
    QCommandLineOption info{QStringLiteral("info"), Tr::tr("Load the files, print what they hold as JSON, and exit.")};
    QCommandLineOption convert{QStringLiteral("convert"),
                               Tr::tr("Load the files, write OUT in the format of its suffix, or a picture of them as "
                                      "PNG, SVG or PDF, and exit."),
                               QStringLiteral("OUT")};
    QCommandLineOption screenshot{
        QStringLiteral("screenshot"),
        Tr::tr("Show the window with the files loaded, save its picture as OUT.png, and exit."),
        QStringLiteral("OUT.png")};
    QCommandLineOption from{QStringLiteral("from"),
                            Tr::tr("Read the files as this format instead of by suffix and content: %1.")
                                .arg(formatNames().join(QStringLiteral(", "))),
                            QStringLiteral("FORMAT")};
    QCommandLineOption stretch{
        QStringLiteral("stretch"),
        Tr::tr("Show one millisecond of a trace as N milliseconds; without this option as 1000."), QStringLiteral("N")};
    QCommandLineOption expand{
        QStringLiteral("expand"),
        Tr::tr("Make the occurrences of recurring events that start from START on and before END; "
               "each is a date, an ISO 8601 time with its zone, or milliseconds since 1970."),
        QStringLiteral("START..END")};
    CsvCommandLine csv;
    QCommandLineOption theme{QStringLiteral("theme"),
                             Tr::tr("Show the window in this look: system, light, dark; it is not remembered."),
                             QStringLiteral("LOOK")};
    QCommandLineOption showRefusals{
        QStringLiteral("show-refusals"),
        Tr::tr("Say also in a dialog which files are refused and why, for starts without a terminal.")};
    PictureCommandOptions picture;
    QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")}, Tr::tr("Print this text and exit.")};
    QCommandLineOption version{{QStringLiteral("v"), QStringLiteral("version")}, Tr::tr("Print the version and exit.")};

    void addTo(QCommandLineParser& parser) const
    {
        parser.setApplicationDescription(Tr::tr("Shows timelines."));
        parser.addOptions({info, convert, screenshot, from, stretch, expand, theme, showRefusals});
        parser.addOptions(csv.options());
        picture.addTo(parser);
        parser.addOptions({help, version});
        parser.addPositionalArgument(
            QStringLiteral("FILE"),
            Tr::tr("Timelines to load; of several, each gets a track of its own at the top level."),
            QStringLiteral("[FILE...]"));
    }

    static QStringList formatNames()
    {
        QStringList names;
        for (const DocumentFormat& format : documentFormats())
            names.append(format.name);
        return names;
    }
};

using Action = CommandLine::Action;

// Empty when the options agree with each other.
QString usageError(const QCommandLineParser& parser, const Options& options)
{
    QStringList actions;
    for (const QCommandLineOption& option : {options.info, options.convert, options.screenshot}) {
        if (parser.isSet(option))
            actions.append(QStringLiteral("--") + option.names().first());
    }
    if (actions.size() > 1)
        return Tr::tr("%1 do not go together").arg(actions.join(QStringLiteral(", ")));
    const QList<QCommandLineOption> single{options.convert, options.screenshot, options.from,
                                           options.stretch, options.expand,     options.theme};
    for (const QCommandLineOption& option : single + options.csv.options()) {
        if (parser.values(option).size() > 1)
            return Tr::tr("--%1 is there more than once").arg(option.names().first());
    }
    const bool needsFiles = parser.isSet(options.info) || parser.isSet(options.convert);
    if (needsFiles && parser.positionalArguments().isEmpty())
        return Tr::tr("%1 needs a FILE").arg(actions.first());
    return {};
}

// Nothing for what is no number that times can be stretched by.
std::optional<double> stretchOf(const QString& text)
{
    // Beyond that, times are either all the same or out of range.
    constexpr double least = 1e-6;
    constexpr double most = 1e9;
    bool isNumber = false;
    const double stretch = text.toDouble(&isNumber);
    return isNumber && stretch >= least && stretch <= most ? std::optional<double>(stretch) : std::nullopt;
}

// Empty when the options for reading are right.
QString readReadOptions(const QCommandLineParser& parser, const Options& options, ReadOptions& readOptions)
{
    if (parser.isSet(options.stretch)) {
        const QString text = parser.value(options.stretch);
        const std::optional<double> stretch = stretchOf(text);
        if (!stretch)
            return Tr::tr("times cannot be stretched by \"%1\"").arg(text);
        readOptions.stretch = *stretch;
    }
    if (parser.isSet(options.expand)) {
        const QString text = parser.value(options.expand);
        readOptions.expand = spanArgument(text);
        if (!readOptions.expand)
            return Tr::tr("\"%1\" is not START..END with an end after the start").arg(text);
    }
    return options.csv.read(parser, readOptions.csv);
}

// Empty when the action can write such a file.
QString outputError(Action action, const QString& output)
{
    if (action == Action::Convert && !PictureExport::isPictureFile(output)) {
        const DocumentFormat* const format = documentFormatBySuffix(output);
        if (!format || !format->write)
            return Tr::tr("no format to write has the suffix of \"%1\"").arg(output);
    }
    if (action == Action::SaveScreenshot &&
        QFileInfo(output).suffix().compare(QStringView(u"png"), Qt::CaseInsensitive) != 0)
        return Tr::tr("the name of a picture ends in .png, not so \"%1\"").arg(output);
    return {};
}

Action actionOf(const QCommandLineParser& parser, const Options& options)
{
    if (parser.isSet(options.info))
        return Action::PrintInfo;
    if (parser.isSet(options.convert))
        return Action::Convert;
    return parser.isSet(options.screenshot) ? Action::SaveScreenshot : Action::ShowWindow;
}

CommandLine refusal(const QString& error)
{
    CommandLine commandLine;
    commandLine.action = Action::RefuseUsage;
    commandLine.error = error;
    return commandLine;
}

} // namespace

bool CommandLine::convertsToPicture() const
{
    return action == Action::Convert && PictureExport::isPictureFile(output);
}

CommandLine parseCommandLine(const QStringList& arguments)
{
    const Options options;
    QCommandLineParser parser;
    options.addTo(parser);
    if (!parser.parse(arguments))
        return refusal(parser.errorText());

    CommandLine commandLine;
    if (parser.isSet(options.help) || parser.isSet(options.version)) {
        commandLine.action = parser.isSet(options.help) ? Action::PrintHelp : Action::PrintVersion;
        return commandLine;
    }
    if (const QString error = usageError(parser, options); !error.isEmpty())
        return refusal(error);

    commandLine.action = actionOf(parser, options);
    commandLine.files = parser.positionalArguments();
    commandLine.showsRefusals = parser.isSet(options.showRefusals) && commandLine.action == Action::ShowWindow;
    commandLine.output = parser.value(commandLine.action == Action::Convert ? options.convert : options.screenshot);
    if (const QString error = outputError(commandLine.action, commandLine.output); !error.isEmpty())
        return refusal(error);
    if (const QString error = readReadOptions(parser, options, commandLine.readOptions); !error.isEmpty())
        return refusal(error);
    if (parser.isSet(options.theme)) {
        const QString name = parser.value(options.theme);
        commandLine.theme = Theme::schemeOf(name);
        if (!commandLine.theme)
            return refusal(Tr::tr("there is no look \"%1\"; there are system, light and dark").arg(name));
    }
    if (const QString error = options.picture.read(parser, commandLine.convertsToPicture(), commandLine.picture);
        !error.isEmpty())
        return refusal(error);
    if (parser.isSet(options.from)) {
        const QString name = parser.value(options.from);
        commandLine.from = documentFormatByName(name);
        if (!commandLine.from)
            return refusal(Tr::tr("there is no format \"%1\"").arg(name));
    }
    return commandLine;
}

QString helpText()
{
    QCommandLineParser parser;
    Options().addTo(parser);
    return parser.helpText();
}

} // namespace Workbench
