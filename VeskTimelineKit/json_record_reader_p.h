#pragma once

// Internal to the kit; not installed.

#include "gzip_reader_p.h"
#include "read_progress_p.h"

#include <QByteArray>
#include <QIODevice>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace VeskTimeline::Kit {

/// Takes a JSON text apart into records: the elements of the outermost array, or those of the arrays in the outermost
/// object. Only one record is in memory at a time, however long the text is, and only the nesting is checked here: a
/// parser has to see each record. Text packed with gzip is unpacked along the way.
///
/// The operations throw: QString, the reason, when the text cannot be read on, see line(); ReadCancelled.
class JsonRecordReader
{
public:
    /// Whether the records of that member of the outermost object are wanted; others are passed over.
    using IsWanted = std::function<bool(const QByteArray& member)>;

    /// @param device open for reading, and @param progress: must outlive this object
    JsonRecordReader(QIODevice& device, ReadProgress& progress, IsWanted isWanted);

    /// Goes to the next record. @return whether there is one
    bool next();

    /// The member that the record is in, or is the value of; empty when the outermost value is an array.
    const QByteArray& member() const { return m_member; }
    /// Whether the record is an element of an array, rather than the member's value itself.
    bool isElement() const { return m_isInArray; }
    /// Whether the outermost value is an object; known after the first call of next().
    bool hasOuterObject() const { return m_hasOuterObject; }
    /// The record's text; can be changed by the one who parses it.
    QByteArray& text() { return m_text; }
    /// Counted from 1: where the record starts, or, after an error, where the text went wrong or
    /// broke off; 0 within packed data.
    int line() const { return m_recordLine; }
    /// The members that were passed over, each once, as many as a message can list.
    const std::vector<QByteArray>& skippedMembers() const { return m_skipped; }

    /// How the text ended.
    enum class Ending {
        Complete,
        OpenArray, ///< after a record, before the outermost array was closed
        Truncated  ///< anywhere else; a record that was cut short is left out
    };
    Ending ending() const { return m_ending; }

private:
    enum class Place { Start, Outermost, Array, End };

    int peek();
    void take() { m_line += m_chunk.at(m_position++) == '\n' ? 1 : 0; }
    int peekAfterBlanks();
    bool refill();
    qint64 readChunk();

    void start();
    bool nextMember();
    bool nextElement();
    bool readMemberName(QByteArray& name);
    bool readRecord();
    bool takeObjectInChunk();
    bool readValue(QByteArray* target);
    bool readString(QByteArray* target);
    void takeRun(QByteArray* target, qsizetype size);
    void readScalar(QByteArray* target);
    void append(QByteArray* target, char c);
    void end(Ending ending);
    void expectNothingMore();
    [[noreturn]] void refuse(const QString& reason);

    QIODevice& m_device;
    ReadProgress& m_progress;
    IsWanted m_isWanted;
    std::optional<GzipReader> m_gzip;
    QByteArray m_chunk;
    qsizetype m_position = 0;
    int m_line = 1;

    Place m_place = Place::Start;
    bool m_hasOuterObject = false;
    bool m_isInArray = false;
    bool m_isFirst = true; ///< in the innermost of outermost object and array
    int m_recordLine = 1;
    QByteArray m_member;
    QByteArray m_text;
    std::vector<QByteArray> m_skipped;
    Ending m_ending = Ending::Complete;
};

} // namespace VeskTimeline::Kit
