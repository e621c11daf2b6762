#!/bin/sh
# Configures the bench preset, builds it and runs every workload, five times
# each, printing the median, mean and spread of the five, then the reading
# rates and in-all times of big model files. Arguments go to the benchmark
# program after these defaults (e.g. --benchmark_filter=W1
# --benchmark_repetitions=1). E3D_BENCH_DIR chooses another build directory.
set -eu
cd "$(dirname "$0")/.."
dir=${E3D_BENCH_DIR:-build/bench}
cmake --preset bench -B "$dir" > /dev/null
cmake --build "$dir" -j2 --target engine3d_bench e3d_model_bench e3d-render e3d_portable_bench
"$dir/bench/engine3d_bench" --benchmark_counters_tabular=true --benchmark_repetitions=5 \
  --benchmark_report_aggregates_only=true "$@"
# W1 and W3 natively and in WebAssembly (E3D_BENCH_WASM=0 skips them).
[ "${E3D_BENCH_WASM:-1}" = 0 ] || bench/portable.sh "$dir"
# Big models: reading rates and e3d-render in all (E3D_BENCH_MODELS=0 skips them).
[ "${E3D_BENCH_MODELS:-1}" = 0 ] || bench/models.sh "$dir"
