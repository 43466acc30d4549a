#pragma once

#include "support/stderr_capture.h"

#include <QString>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <sys/resource.h>
#include <sys/wait.h>

/// How a function that may end the process ended a child process.
struct ChildEnd
{
    bool isAborted = false;
    /// What the function returned; -1 when it did not return.
    int result = -1;
    /// What the child wrote to standard error.
    QByteArray text;
};

/// Runs a function that returns 0 to 127 in a child process, so that a failed assertion ends only that.
template <typename Function>
ChildEnd runInChild(const Function& function)
{
    StderrCapture capture;
    const pid_t child = fork();
    if (child < 0)
        qFatal("cannot fork");
    if (child == 0) {
        // The test library's own handling of crashes would print a report.
        for (const int number : {SIGABRT, SIGSEGV, SIGFPE, SIGBUS, SIGILL})
            std::signal(number, SIG_DFL);
        std::set_terminate(std::abort);
        const rlimit noCoreFile{0, 0};
        setrlimit(RLIMIT_CORE, &noCoreFile);
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) {
            std::fprintf(stderr, "%s\n", qPrintable(message));
        });
        _exit(function());
    }

    int status = 0;
    waitpid(child, &status, 0);
    ChildEnd end;
    end.isAborted = WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT;
    end.result = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    end.text = capture.take();
    return end;
}

/// Whether the libraries under test, built like the tests, check their assertions.
#ifdef QT_NO_DEBUG
constexpr bool areAssertionsChecked = false;
#else
constexpr bool areAssertionsChecked = true;
#endif
