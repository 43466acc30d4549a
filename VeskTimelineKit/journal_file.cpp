#include "journal_file_p.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace VeskTimeline::Kit {

namespace {

#ifdef Q_OS_LINUX
int forceToDisk(int handle)
{
    return ::fdatasync(handle);
}
#elif defined(Q_OS_UNIX)
int forceToDisk(int handle)
{
    return ::fsync(handle);
}
#else
int forceToDisk(int)
{
    return 0;
}
#endif

} // namespace

bool JournalFile::create(const QString& fileName)
{
    close();
    m_file.setFileName(fileName);
    m_size = 0;
    // Without a folder opening fails, too, and says why.
    QDir().mkpath(QFileInfo(fileName).path());
    return m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered) || fail();
}

bool JournalFile::open(const QString& fileName)
{
    close();
    m_file.setFileName(fileName);
    if (!m_file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered))
        return fail();
    m_size = m_file.size();
    return m_file.seek(m_size) || fail();
}

void JournalFile::close()
{
    m_file.close();
    m_hasRest = false;
}

void JournalFile::remove()
{
    m_file.close();
    if (!m_file.fileName().isEmpty())
        QFile::remove(m_file.fileName());
    m_size = 0;
}

bool JournalFile::append(const QByteArray& text)
{
    // What is there of a former attempt would stand between this and what came before.
    if (m_hasRest && !(m_file.resize(m_size) && m_file.seek(m_size)))
        return fail();
    m_hasRest = m_file.write(text) != text.size();
    if (m_hasRest) {
        fail();
        m_hasRest = !(m_file.resize(m_size) && m_file.seek(m_size));
        return false;
    }
    m_size += text.size();
    return true;
}

bool JournalFile::sync()
{
    if (forceToDisk(m_file.handle()) == 0)
        return true;
    m_errorReason = qt_error_string(errno);
    return false;
}

bool JournalFile::fail()
{
    m_errorReason = m_file.errorString();
    m_file.unsetError();
    return false;
}

bool replaceFile(const QString& fileName, const QString& by)
{
#ifdef Q_OS_UNIX
    if (std::rename(QFile::encodeName(by).constData(), QFile::encodeName(fileName).constData()) != 0)
        return false;
    // Or else the name might be the old one after a power failure, with what belongs to it removed.
    const int folder = ::open(QFile::encodeName(QFileInfo(fileName).path()).constData(), O_RDONLY | O_DIRECTORY);
    if (folder >= 0) {
        ::fsync(folder);
        ::close(folder);
    }
    return true;
#else
    return QFile::remove(fileName) && QFile::rename(by, fileName);
#endif
}

} // namespace VeskTimeline::Kit
