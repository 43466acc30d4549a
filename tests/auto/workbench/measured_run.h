#pragma once

#include <QByteArray>
#include <QStringList>
#include <QTemporaryFile>

#include <cstdlib>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

/// What became of a program, and what it took.
struct MeasuredRun
{
    int exitStatus = -1; ///< -1 when a signal ended it
    int signal = 0;
    QByteArray output;
    QByteArray errors;
    double seconds = 0; ///< of a processor; what else the machine is busy with is not in it
    long peakKiB = 0;   ///< of memory in use
};

/// Runs a program to its end, or to the limit: then SIGALRM ends it. The limit is one of a clock on the wall, which
/// goes on when the program waits for something.
inline MeasuredRun runMeasured(const QStringList& command, unsigned int mostSeconds)
{
    QTemporaryFile output;
    QTemporaryFile errors;
    if (!output.open() || !errors.open())
        qFatal("cannot make files for the output");
    std::vector<QByteArray> texts;
    for (const QString& argument : command)
        texts.push_back(argument.toLocal8Bit());
    std::vector<char*> arguments;
    for (QByteArray& text : texts)
        arguments.push_back(text.data());
    arguments.push_back(nullptr);

    const pid_t child = fork();
    if (child < 0)
        qFatal("cannot fork");
    if (child == 0) {
        const rlimit noCoreFile{0, 0};
        setrlimit(RLIMIT_CORE, &noCoreFile);
        dup2(output.handle(), STDOUT_FILENO);
        dup2(errors.handle(), STDERR_FILENO);
        alarm(mostSeconds);
        execv(arguments.front(), arguments.data());
        _exit(127);
    }

    int status = 0;
    rusage used = {};
    wait4(child, &status, 0, &used);
    MeasuredRun run;
    run.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    const auto secondsOf = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    run.seconds = secondsOf(used.ru_utime) + secondsOf(used.ru_stime);
    run.peakKiB = used.ru_maxrss;
    output.seek(0);
    run.output = output.readAll();
    errors.seek(0);
    run.errors = errors.readAll();
    return run;
}
