#include "command_line.h"

#include <VeskTimelineKit/document_format.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

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
                               Tr::tr("Load the files, write OUT in the format of its suffix, and exit."),
                               QStringLiteral("OUT")};
    QCommandLineOption screenshot{
        QStringLiteral("screenshot"),
        Tr::tr("Show the window with the files loaded, save its picture as OUT.png, and exit."),
        QStringLiteral("OUT.png")};
    QCommandLineOption from{QStringLiteral("from"),
                            Tr::tr("Read the files as this format instead of by suffix and content: %1.")
                                .arg(formatNames().join(QStringLiteral(", "))),
                            QStringLiteral("FORMAT")};
    QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")}, Tr::tr("Print this text and exit.")};
    QCommandLineOption version{{QStringLiteral("v"), QStringLiteral("version")}, Tr::tr("Print the version and exit.")};

    void addTo(QCommandLineParser& parser) const
    {
        parser.setApplicationDescription(Tr::tr("Shows timelines."));
        parser.addOptions({info, convert, screenshot, from, help, version});
        parser.addPositionalArgument(QStringLiteral("FILE"), Tr::tr("Timelines to load; tracks of the same name join."),
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
    for (const QCommandLineOption& option : {options.convert, options.screenshot, options.from}) {
        if (parser.values(option).size() > 1)
            return Tr::tr("--%1 is there more than once").arg(option.names().first());
    }
    const bool needsFiles = parser.isSet(options.info) || parser.isSet(options.convert);
    if (needsFiles && parser.positionalArguments().isEmpty())
        return Tr::tr("%1 needs a FILE").arg(actions.first());
    return {};
}

// Empty when the action can write such a file.
QString outputError(Action action, const QString& output)
{
    if (action == Action::Convert) {
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
    commandLine.output = parser.value(commandLine.action == Action::Convert ? options.convert : options.screenshot);
    if (const QString error = outputError(commandLine.action, commandLine.output); !error.isEmpty())
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
