#pragma once

// Internal to the kit; not installed.

#include <QByteArray>

class QIODevice;

namespace VeskTimeline::Kit {

/// Reads the lines of an iCalendar stream, with folded ones put together again and blank ones left out.
///
/// Control characters other than tabs are dropped, and a line that is not UTF-8 is taken as ISO 8859-1; both are
/// counted.
class IcsLineReader
{
public:
    /// A repair that was made to several lines.
    struct Repair
    {
        int firstLine = 0;
        int count = 0;
    };

    /// @param device open for reading; not owned
    explicit IcsLineReader(QIODevice& device);

    /// Goes to the next line; false at the end, and at a line that is too long.
    bool next();
    const QByteArray& text() const { return m_text; }
    /// Where the line begins, counted from 1.
    int number() const { return m_number; }
    bool isTooLong() const { return m_isTooLong; }
    /// Of the device, from 0 to 1.
    double share() const;

    const Repair& droppedControls() const { return m_droppedControls; }
    const Repair& decodedAsLatin1() const { return m_decodedAsLatin1; }

private:
    void readAhead();
    void repair();

    QIODevice& m_device;
    qint64 m_size = 0; ///< asking the device for each line would take longer than reading it
    qint64 m_done = 0;
    QByteArray m_ahead; ///< the next line of the device, without its end
    bool m_hasAhead = false;
    bool m_isAheadTooLong = false;
    int m_aheadNumber = 0;
    QByteArray m_text;
    int m_number = 0;
    bool m_isTooLong = false;
    Repair m_droppedControls;
    Repair m_decodedAsLatin1;
};

} // namespace VeskTimeline::Kit
