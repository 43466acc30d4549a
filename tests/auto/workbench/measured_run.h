#pragma once

#include <QByteArray>
#include <QStringList>
#include <QTemporaryFile>

#include <cstdlib>
#include <ctime>
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
    double seconds = 0; ///< as a clock on the wall counts
    long peakKiB = 0;   ///< of memory in use
};

/// Runs a program to its end, or to the limit: then SIGALRM ends it.
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

    timespec start = {};
    clock_gettime(CLOCK_MONOTONIC, &start);
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
    timespec end = {};
    clock_gettime(CLOCK_MONOTONIC, &end);
    MeasuredRun run;
    run.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    run.seconds =
        static_cast<double>(end.tv_sec - start.tv_sec) + static_cast<double>(end.tv_nsec - start.tv_nsec) / 1e9;
    run.peakKiB = used.ru_maxrss;
    output.seek(0);
    run.output = output.readAll();
    errors.seek(0);
    run.errors = errors.readAll();
    return run;
}
