#!/bin/sh
# Configures and builds one of the presets of CMakePresets.json: scripts/build.sh PRESET [TARGET...]
set -eu

cd "$(dirname "$0")/.."
preset=$1
shift
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! cmake --preset "$preset" >"$log" 2>&1; then
    cat "$log" >&2
    exit 1
fi
if [ $# -gt 0 ]; then
    cmake --build --preset "$preset" --target "$@"
else
    cmake --build --preset "$preset"
fi
