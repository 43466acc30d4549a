#!/bin/sh
# Measures what the library costs and prints one table of it: ./bench.sh [quick|full] [--docs]
#
# quick (the default) takes less than two minutes after the build and ends with an error when a ratio is far from its
# target; full takes a quarter of an hour. --docs writes the table and its picture to docs/, too. For figures worth
# keeping, nothing else should run.
set -eu

cd "$(dirname "$0")"
extent=quick
docs=
for argument in "$@"; do
    case $argument in
    quick | full) extent=$argument ;;
    --docs) docs=docs/performance.md ;;
    *)
        echo "usage: ./bench.sh [quick|full] [--docs]" >&2
        exit 2
        ;;
    esac
done

./scripts/install-packages.sh scripts/packages.txt scripts/packages-ci.txt
./scripts/build.sh bench benchmarks

# The programs choose a platform without a screen themselves.
unset QT_QPA_PLATFORM
results=build/release/benchmarks/results
rm -rf "$results"
mkdir -p "$results"
for program in build/release/benchmarks/programs/bench_*; do
    name=$(basename "$program")
    echo "$name" >&2
    # What is measured for long anyway needs no repetitions to be sure of it.
    if [ "$extent" = full ]; then
        set -- --full --benchmark_min_time=0.3
    else
        set -- --benchmark_min_time=0.05
    fi
    "$program" "$@" --benchmark_out="$results/$name.json" --benchmark_out_format=json >"$results/$name.log" 2>&1 || {
        cat "$results/$name.log" >&2
        exit 1
    }
done
PYTHONDONTWRITEBYTECODE=1 python3 benchmarks/report.py "$extent" "$results" ${docs:+--docs "$docs"}
