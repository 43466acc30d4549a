#pragma once

#include "picture_arguments.h"
#include "theme.h"

#include <VeskTimelineKit/read_options.h>

#include <QString>
#include <QStringList>

#include <optional>

namespace VeskTimeline::Kit {
struct DocumentFormat;
}

namespace Workbench {

/// What the user wants the program to do.
struct CommandLine
{
    enum class Action {
        ShowWindow,
        PrintInfo,
        Convert,
        SaveScreenshot,
        PrintHelp,
        PrintVersion,
        RefuseUsage ///< see `error`
    };

    Action action = Action::ShowWindow;
    QStringList files;
    QString output;                                          ///< of Convert and SaveScreenshot
    const VeskTimeline::Kit::DocumentFormat* from = nullptr; ///< read all files as this; null: each as what it is
    VeskTimeline::Kit::ReadOptions readOptions;
    std::optional<Theme::Scheme> theme; ///< nothing: as the user left it
    bool showsRefusals = false;         ///< of ShowWindow, in a dialog
    PictureArguments picture;           ///< of Convert, when the output is a picture
    QString error;

    /// Whether the action needs widgets, and with them a windowing system.
    bool needsWindow() const
    {
        return action == Action::ShowWindow || action == Action::SaveScreenshot || convertsToPicture();
    }
    bool convertsToPicture() const;
};

/// @param arguments the program's name first
CommandLine parseCommandLine(const QStringList& arguments);

/// The text for --help. Needs an application object.
QString helpText();

} // namespace Workbench
