#pragma once

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

/// What the workbench did when it was called.
struct WorkbenchRun
{
    int status = -1; ///< -1 when it could not be started or did not end by itself
    QString output;
    QString errors;
};

/// What the workbench can show itself on.
enum class Platform { None, Offscreen };

/// Calls the workbench, the file that the build names PROGRAM_FILE, and waits for its end.
inline WorkbenchRun runWorkbench(const QStringList& arguments, Platform platform = Platform::None)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* const name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        environment.remove(name);
    // Qt remarks on one that is missing, or open to others.
    const QTemporaryDir runtime;
    environment.insert("XDG_RUNTIME_DIR", runtime.path());
    if (platform == Platform::Offscreen)
        environment.insert("QT_QPA_PLATFORM", "offscreen");
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(PROGRAM_FILE), arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {-1, process.errorString(), QString::fromUtf8(process.readAllStandardError())};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}
