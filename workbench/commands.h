#pragma once

namespace Workbench {

struct CommandLine;

/// What the process ends with.
enum ExitStatus { Done = 0, FileRefused = 1, WrongUsage = 2 };

/// Does what the user wants: prints to standard output, reports to standard error. Makes the application object that
/// the action needs, so there must be none yet.
/// @param programName the first argument of main()
/// @return an ExitStatus
int run(const CommandLine& commandLine, char* programName);

} // namespace Workbench
