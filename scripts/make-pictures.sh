#!/bin/sh
# Renews the pictures of the README: scripts/make-pictures.sh [WORKBENCH]
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
workbench=${1:-$root/build/release/workbench/vesk-timeline-workbench}
images=$root/docs/images
export QT_QPA_PLATFORM=offscreen

for look in light dark; do
    "$workbench" --theme "$look" --screenshot "$images/apollo17-$look.png" "$root/samples/apollo17.csv"
    "$workbench" --theme "$look" --screenshot "$images/calendar-$look.png" "$root/samples/observatory.ics"
    "$workbench" --theme "$look" --screenshot "$images/trace-$look.png" "$root/samples/frames.json"
done
"$workbench" --convert "$images/calendar-whole.png" --width 1400 "$root/samples/observatory.ics"
