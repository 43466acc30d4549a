#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <cstdio>
#include <unistd.h>

/// Takes what the process writes to standard error, through the C library or past it, while it lives. One at a time.
class StderrCapture
{
public:
    StderrCapture() : m_file(std::tmpfile()), m_original(dup(STDERR_FILENO))
    {
        if (!m_file || m_original < 0)
            qFatal("cannot capture standard error");
        std::fflush(stderr);
        dup2(fileno(m_file), STDERR_FILENO);
    }
    Q_DISABLE_COPY_MOVE(StderrCapture)
    ~StderrCapture() { stop(); }

    /// Ends the capture and returns all that was written.
    QByteArray take()
    {
        stop();
        return m_text;
    }

private:
    void stop()
    {
        if (!m_file)
            return;
        std::fflush(stderr);
        dup2(m_original, STDERR_FILENO);
        close(m_original);
        std::rewind(m_file);
        char buffer[4096];
        while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, m_file))
            m_text.append(buffer, static_cast<qsizetype>(count));
        std::fclose(m_file);
        m_file = nullptr;
    }

    std::FILE* m_file;
    int m_original;
    QByteArray m_text;
};
