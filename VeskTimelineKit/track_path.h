#pragma once

#include <VeskTimelineKit/vesktimelinekit_export.h>

#include <QString>
#include <QStringList>

namespace VeskTimeline::Kit {

/// The names of a path that is written as one text: "Ship/Deck" is the track Deck below the track Ship.
///
/// A slash that belongs to a name has a backslash before it. Of backslashes that stand right before a slash, each pair
/// is one backslash of the name; backslashes elsewhere stand for themselves. Blanks around names are dropped, and
/// names can come out empty.
VESKTIMELINEKIT_EXPORT QStringList splitTrackPath(const QString& text);

/// The text that splitTrackPath() takes for these names.
VESKTIMELINEKIT_EXPORT QString joinTrackPath(const QStringList& names);

} // namespace VeskTimeline::Kit
