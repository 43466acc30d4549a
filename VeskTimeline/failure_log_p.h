#pragma once

// Internal to the library; not installed.

#include <HoxLogger/ihox_logger.h>
#include <HoxLogger/log_stream_helper.h>

/// Stream into a logger; the parts are evaluated only when the level is enabled.
#define VESK_LOG(logger, level)                                                                                        \
    if (!(logger).isEnabled(level)) {                                                                                  \
    } else                                                                                                             \
        Hox::LogStreamHelper((logger), (level), __FILE__, __LINE__, Q_FUNC_INFO)

namespace VeskTimeline {

/// The text of an exception that a look-up may throw: a `QString`, a C string or a standard exception; otherwise empty.
/// For use inside a catch block only.
QString textOfCaughtException();

/// Writes the exception being handled: a `QString` as the signature, a blank and its text, at `levelForText`; anything
/// else as the signature followed by " failed", at Error. For use inside a catch block only.
void logCaughtException(IHoxLogger& logger, const char* signature, Hox::LogLevel levelForText = Hox::Error);

} // namespace VeskTimeline
