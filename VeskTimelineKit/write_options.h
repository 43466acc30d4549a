#pragma once

#include <VeskTimelineKit/result.h>
#include <VeskTimelineKit/vesktimelinekit_export.h>

#include <QStringList>

#include <functional>

namespace VeskTimeline::Kit {

/// What the one who has a file written may say about it. Every writer takes what concerns it.
struct WriteOptions
{
    /// Called now and then while a file is written, on the thread that writes, with the share done, from 0 to 1.
    /// Returning false cancels: the writer then gives up with the reason writingCancelledReason(). May be empty.
    std::function<bool(double share)> progress = {};
};

/// What writing a file comes to: sentences for the user about what the format could not say, none when the file says
/// all of the document; or the reason why nothing was written. The file that was there before then stays as it was.
using WriteResult = Result<QStringList>;

/// The reason of a file error when writing was cancelled, translated.
VESKTIMELINEKIT_EXPORT QString writingCancelledReason();

} // namespace VeskTimeline::Kit
