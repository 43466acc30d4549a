#include "commands.h"
#include "picture_arguments.h"

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/picture_export.h>
#include <VeskTimelineKit/standard_timeline_model.h>
#include <VeskTimelineKit/track_path.h>

#include <QCoreApplication>

#include <cstdio>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

void report(const QString& text)
{
    std::fputs((text + u'\n').toLocal8Bit().constData(), stderr);
}

// The track with these names from the top level down; null for none.
const Track* findTrack(const Track& root, const QStringList& path)
{
    const Track* track = &root;
    for (const QString& name : path) {
        const Track* found = nullptr;
        for (const TrackPtr& child : track->tracks()) {
            if (child->text() == name && !found)
                found = child.get();
        }
        if (!found)
            return nullptr;
        track = found;
    }
    return track == &root ? nullptr : track;
}

void addSubtree(const Track& track, QVector<int>& ids)
{
    ids.append(track.id());
    for (const TrackPtr& child : track.tracks())
        addSubtree(*child, ids);
}

} // namespace

int convertToPicture(const Document& document, const PictureArguments& arguments, const QString& output)
{
    StandardTimelineModel model;
    model.setDocument(document);
    PictureOptions options = arguments.options;
    for (const QString& path : arguments.tracks) {
        const Track* const track = findTrack(*model.rootTrack(), splitTrackPath(path));
        if (!track) {
            report(QStringLiteral("vesk-timeline-workbench: %1")
                       .arg(QCoreApplication::translate("Commands", "there is no track \"%1\"").arg(path)));
            return WrongUsage;
        }
        addSubtree(*track, options.trackIds);
    }
    const std::optional<FileError> error = writePicture(model, output, options);
    if (!error)
        return Done;
    report(error->text());
    return FileRefused;
}

} // namespace Workbench
