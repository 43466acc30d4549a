#include "commands.h"

#include "command_line.h"
#include "file_dialogs.h"
#include "icons.h"
#include "load_files.h"
#include "main_window.h"
#include "offscreen_silence.h"
#include "portal_look.h"
#include "settings.h"
#include "start_up_load.h"
#include "theme.h"

#include <VeskTimelineKit/document_format.h>

#include <QApplication>
#include <QImageWriter>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <cstdio>
#include <functional>
#include <memory>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

bool print(std::FILE* stream, const QString& text)
{
    return std::fputs(text.toLocal8Bit().constData(), stream) >= 0 && std::fflush(stream) == 0;
}

int printToOutput(const QString& text)
{
    if (print(stdout, text))
        return Done;
    print(stderr, QCoreApplication::translate("Commands", "cannot write to standard output") + u'\n');
    return FileRefused;
}

void report(const QList<FileError>& errors)
{
    for (const FileError& error : errors)
        print(stderr, error.text() + u'\n');
}

QString infoText(const Document& document)
{
    const std::optional<TimeSpan> span = document.span();
    const QJsonObject info{{QStringLiteral("tracks"), static_cast<qint64>(document.tracks().size())},
                           {QStringLiteral("items"), document.itemCount()},
                           {QStringLiteral("start"), span ? QJsonValue(span->start) : QJsonValue()},
                           {QStringLiteral("end"), span ? QJsonValue(span->end) : QJsonValue()},
                           {QStringLiteral("warnings"), QJsonArray::fromStringList(document.warnings())}};
    return QString::fromUtf8(QJsonDocument(info).toJson(QJsonDocument::Compact)) + u'\n';
}

void warn(const QStringList& warnings)
{
    for (const QString& warning : warnings)
        print(stderr, QCoreApplication::translate("Commands", "warning: %1").arg(warning) + u'\n');
}

int convert(const Document& document, const QString& output)
{
    warn(document.warnings());
    const WriteResult result = documentFormatBySuffix(output)->write(document, output, {});
    if (result) {
        warn(result.value());
        return Done;
    }
    report({result.error()});
    return FileRefused;
}

int saveScreenshot(QWidget& window, const QString& output)
{
    // Everything is laid out as on screen; what is only wanted as a picture need not flash up there.
    const OffscreenSilence silence;
    window.setAttribute(Qt::WA_DontShowOnScreen);
    window.show();
    QCoreApplication::processEvents();
    // What has been brought up to date in that turn has yet to be laid out.
    QCoreApplication::processEvents();
    QSaveFile file(output);
    QImageWriter writer(&file, "png");
    const bool isOpen = file.open(QIODevice::WriteOnly);
    const bool isWritten = isOpen && writer.write(window.grab().toImage());
    // Of a full disk only the second try to write what is left says so.
    const bool isFlushed = isOpen && (file.flush() || file.flush());
    if (isWritten && isFlushed && file.commit())
        return Done;
    const bool saysWhy = !isOpen || isWritten || file.error() != QFileDevice::NoError;
    report({FileError{output, 0, saysWhy ? file.errorString() : writer.errorString()}});
    return FileRefused;
}

bool hasDisplay()
{
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") || !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

// Without anybody in front of it a dialog would wait for ever.
bool hasUser()
{
    const QString platform = qEnvironmentVariable("QT_QPA_PLATFORM").section(u':', 0, 0);
    const bool isSeen = !QStringList{QStringLiteral("offscreen"), QStringLiteral("minimal")}.contains(platform);
    return isSeen && hasDisplay();
}

/// Lets dialogs look as the window would, while there is none.
class DialogLook
{
public:
    explicit DialogLook(const std::optional<Theme::Scheme>& chosen)
    {
        prepareSettings();
        QApplication::setWindowIcon(icon(QStringLiteral("vesk_timeline_workbench")));
        m_theme.listenTo(new PortalLook);
        m_theme.setScheme(chosen.value_or(MainWindow::keptLook()));
    }

private:
    Theme m_theme;
};

int runWithoutWindow(const CommandLine& commandLine, const Document& document)
{
    using Action = CommandLine::Action;
    switch (commandLine.action) {
    case Action::PrintHelp:
        return printToOutput(helpText());
    case Action::PrintVersion:
        return printToOutput(QStringLiteral("vesk-timeline-workbench " VESKTIMELINE_VERSION "\n"));
    case Action::RefuseUsage:
        print(stderr, QStringLiteral("vesk-timeline-workbench: %1\n").arg(commandLine.error));
        return WrongUsage;
    case Action::PrintInfo:
        return printToOutput(infoText(document));
    case Action::Convert:
        return convert(document, commandLine.output);
    case Action::ShowWindow:
    case Action::SaveScreenshot:
        break;
    }
    print(stderr, QCoreApplication::translate(
                      "Commands", "there is no display; --screenshot OUT.png saves a picture of the window\n"));
    return FileRefused;
}

int runWithWindow(const CommandLine& commandLine, const ReadDocuments& loaded)
{
    prepareSettings();
    MainWindow window;
    const bool isForUser = commandLine.action == CommandLine::Action::ShowWindow;
    // Pictures are the same for everybody.
    if (isForUser) {
        window.theme()->listenTo(new PortalLook);
        window.keepViewSettings(commandLine.theme);
        window.startAutosave();
    } else {
        window.leaveNoTrace();
        window.theme()->setScheme(commandLine.theme.value_or(Theme::System));
    }
    if (!commandLine.files.isEmpty())
        window.showDocument(loaded.document, commandLine.files, commandLine.from, commandLine.readOptions,
                            loaded.stretch);
    if (commandLine.action == CommandLine::Action::SaveScreenshot)
        return saveScreenshot(window, commandLine.output);
    window.show();
    const int status = QApplication::exec();
    window.autosave()->closed();
    return status;
}

// What is refused soon needs no display; what takes long can be seen and cancelled.
ReadDocuments loadForUser(const CommandLine& commandLine, const std::function<void()>& startApplication)
{
    constexpr std::chrono::milliseconds unnoticed(500);
    StartUpLoad load(commandLine.files, commandLine.from, commandLine.readOptions);
    if (!load.isDoneWithin(unnoticed)) {
        startApplication();
        const DialogLook look(commandLine.theme);
        load.showProgress();
    }
    ReadDocuments loaded = load.take();
    report(loaded.refusals);
    if (!loaded.refusals.isEmpty() && commandLine.showsRefusals && !load.isCancelled()) {
        startApplication();
        const DialogLook look(commandLine.theme);
        reportRefusals(nullptr, loaded.refusals);
        QApplication::exec();
    }
    return loaded;
}

ReadDocuments load(const CommandLine& commandLine, const std::function<void()>& startApplication)
{
    if (commandLine.action == CommandLine::Action::ShowWindow && hasUser())
        return loadForUser(commandLine, startApplication);
    ReadDocuments loaded = loadFiles(commandLine.files, commandLine.from, commandLine.readOptions);
    report(loaded.refusals);
    return loaded;
}

} // namespace

int run(const CommandLine& commandLine, char* programName)
{
    // Of the arguments Qt gets the first only: it would take file names like "-style" for options of its own.
    int count = 1;
    char* arguments[] = {programName, nullptr};
    std::unique_ptr<QApplication> application;
    const auto startApplication = [&] {
        if (!application)
            application = std::make_unique<QApplication>(count, arguments);
    };
    // Before any window is thought of: a refusal needs no display.
    const ReadDocuments loaded = load(commandLine, startApplication);
    if (!loaded.refusals.isEmpty())
        return FileRefused;

    const bool isForUser = commandLine.action == CommandLine::Action::ShowWindow;
    if (!commandLine.needsWindow() || (isForUser && !hasDisplay())) {
        const QCoreApplication withoutWindow(count, arguments);
        return runWithoutWindow(commandLine, loaded.document);
    }
    // A picture shows nothing, so that a display that cannot be reached does no harm.
    if (!hasDisplay() || (commandLine.convertsToPicture() && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    startApplication();
    if (commandLine.convertsToPicture()) {
        warn(loaded.document.warnings());
        return convertToPicture(loaded.document, commandLine.picture, commandLine.output);
    }
    return runWithWindow(commandLine, loaded);
}

} // namespace Workbench
