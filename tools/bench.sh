#!/bin/sh
# Configures the bench preset, builds it and runs every workload, five times
# each, printing the median, mean and spread of the five. Arguments go to the
# benchmark program after these defaults (e.g. --benchmark_filter=W1
# --benchmark_repetitions=1). E3D_BENCH_DIR chooses another build directory.
set -eu
cd "$(dirname "$0")/.."
dir=${E3D_BENCH_DIR:-build/bench}
cmake --preset bench -B "$dir" > /dev/null
cmake --build "$dir" -j2 --target engine3d_bench
exec "$dir/bench/engine3d_bench" --benchmark_counters_tabular=true --benchmark_repetitions=5 \
  --benchmark_report_aggregates_only=true "$@"
