#!/bin/sh
# Builds the workbench and starts it with the arguments; without any it opens the sample timeline.
# Without a display, and without arguments, it saves a picture of the sample instead and says where.
set -eu

root=$(cd "$(dirname "$0")" && pwd)
"$root/scripts/install-packages.sh"
"$root/scripts/build.sh" release vesk-timeline-workbench >&2

workbench=$root/build/release/workbench/vesk-timeline-workbench
if [ $# -gt 0 ]; then
    exec "$workbench" "$@"
fi
if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
    exec "$workbench" "$root/samples/apollo17.csv"
fi
picture=$root/build/sample.png
QT_QPA_PLATFORM=offscreen "$workbench" --screenshot "$picture" "$root/samples/apollo17.csv"
echo "There is no display. A picture of the sample timeline: $picture"
