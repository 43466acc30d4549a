#pragma once

#include <VeskTimelineKit/vesktimelinekit_export.h>

#include <QString>

#include <utility>
#include <variant>

namespace VeskTimeline::Kit {

/// Why a file was refused or could not be written.
struct VESKTIMELINEKIT_EXPORT FileError
{
    QString file;
    int line = 0; ///< counted from 1; 0 where there is none
    QString reason;

    /// "FILE:LINE: reason", or "FILE: reason" where there is no line.
    QString text() const;
};

/// What reading a file comes to: a value, or the reason why there is none.
template <typename Value>
class Result
{
public:
    Result(Value value) : m_content(std::move(value)) {}
    Result(FileError error) : m_content(std::move(error)) {}

    bool isOk() const { return std::holds_alternative<Value>(m_content); }
    explicit operator bool() const { return isOk(); }

    /// Only when isOk().
    const Value& value() const { return std::get<Value>(m_content); }
    Value& value() { return std::get<Value>(m_content); }
    /// Only when not isOk().
    const FileError& error() const { return std::get<FileError>(m_content); }

private:
    std::variant<Value, FileError> m_content;
};

} // namespace VeskTimeline::Kit
