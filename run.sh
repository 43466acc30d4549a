#!/bin/sh
# Builds the workbench and starts it with the arguments; without any it opens the sample timeline.
# Without a display it saves a picture of the sample, or of the files that are its arguments, and says where; arguments
# with options are left to the workbench.
set -eu

root=$(cd "$(dirname "$0")" && pwd)
"$root/scripts/install-packages.sh"
"$root/scripts/build.sh" release vesk-timeline-workbench >&2

workbench=$root/build/release/workbench/vesk-timeline-workbench
[ $# -gt 0 ] || set -- "$root/samples/apollo17.csv"
has_options=
for argument in "$@"; do
    case $argument in
    -*) has_options=yes ;;
    esac
done
if [ -n "$has_options" ] || [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
    exec "$workbench" "$@"
fi
picture=$root/build/sample.png
[ "$*" = "$root/samples/apollo17.csv" ] || picture=$root/build/timeline.png
QT_QPA_PLATFORM=offscreen "$workbench" --screenshot "$picture" "$@"
echo "There is no display. A picture of the timeline: $picture"
