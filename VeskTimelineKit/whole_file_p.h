#pragma once

// Internal to the kit; not installed.

#include <QSaveFile>

namespace VeskTimeline::Kit {

/// A file that replaces the old one when all of it has been written.
///
/// A disk that becomes full takes a part of what it is given, and says why only when it is asked to take the rest. Qt
/// counts such a write as a success, so that what is missing would not be noticed.
class WholeFile : public QSaveFile
{
public:
    using QSaveFile::QSaveFile;

    /// To be called instead of commit(). @return false: see errorString()
    bool commitWhole() { return (flush() || flush()) && !m_isIncomplete && commit(); }

protected:
    qint64 writeData(const char* data, qint64 length) override
    {
        qint64 written = 0;
        bool hasFailed = false;
        while (written < length) {
            const qint64 part = QSaveFile::writeData(data + written, length - written);
            written += part > 0 ? part : 0;
            if (part > 0 || (error() == NoError && !hasFailed)) {
                hasFailed = part <= 0;
                continue;
            }
            // What comes after it must not close the gap.
            if (error() == NoError)
                cancelWriting();
            // Kept here, since closing the file forgets the reason.
            m_isIncomplete = true;
            return -1;
        }
        return written;
    }

private:
    bool m_isIncomplete = false;
};

} // namespace VeskTimeline::Kit
