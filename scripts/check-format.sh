#!/bin/sh
# Fails when a source file is not formatted as .clang-format says; scripts/check-format.sh --fix formats them.
set -eu

cd "$(dirname "$0")/.."
if [ "${1:-}" = "--fix" ]; then
    git ls-files '*.h' '*.cpp' | xargs clang-format -i
else
    git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run --Werror
fi
