#!/bin/sh
# Builds everything and runs all tests. Arguments go to ctest, e.g. ./test.sh -R drag
set -eu

cd "$(dirname "$0")"
./scripts/install-packages.sh
./scripts/build.sh dev
ctest --preset dev --parallel 2 "$@"
