#!/usr/bin/env bash
# Builds the benchmarks in release mode and runs them; extra arguments go to the benchmark
# binary (for example --benchmark_filter=Synthetic). Results are also kept as JSON.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/ensure-packages.sh
ensure_packages "${LIBSTROKESET_BUILD_PACKAGES[@]}"

dir=${LIBSTROKESET_BUILD_ROOT:-build}/bench
cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=Release -DLIBSTROKESET_BUILD_BENCHMARKS=ON \
    -DLIBSTROKESET_BUILD_TESTS=OFF -DLIBSTROKESET_BUILD_TOOLS=OFF >/dev/null
cmake --build "$dir" -j "$(nproc)" --target strokeset_bench
"$dir/bench/strokeset_bench" --benchmark_out="$dir/results.json" --benchmark_out_format=json "$@"
