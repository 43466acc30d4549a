#!/bin/sh
# Runs clang-tidy with .clang-tidy over the libraries and the workbench, using the dev build's compile commands.
set -eu

cd "$(dirname "$0")/.."
[ -f build/dev/compile_commands.json ] || ./scripts/build.sh dev
git ls-files 'VeskTimeline/*.cpp' 'VeskTimelineKit/*.cpp' 'platform/*.cpp' 'workbench/*.cpp' |
    xargs -P 2 -n 2 clang-tidy -p build/dev --quiet
