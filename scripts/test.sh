#!/usr/bin/env bash
# Builds LibStrokeset and runs every test: first a warnings-as-errors build, then the
# installed CMake package through a small consumer project, then all tests again under
# AddressSanitizer and UndefinedBehaviorSanitizer, and, when clang is present, the
# round-trip and selection fuzzers for about a minute each. Exits non-zero on any failure.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/ensure-packages.sh
ensure_packages "${LIBSTROKESET_BUILD_PACKAGES[@]}"

jobs=$(nproc)
root=${LIBSTROKESET_BUILD_ROOT:-build}
fuzz_seconds=${LIBSTROKESET_FUZZ_SECONDS:-60}

step() { printf '\n== %s ==\n' "$*"; }

build_and_test() {
    local dir=$1
    shift
    cmake -S . -B "$dir" -DLIBSTROKESET_WERROR=ON "$@" >/dev/null
    cmake --build "$dir" -j "$jobs"
    ctest --test-dir "$dir" --output-on-failure -j "$jobs"
}

step "Build and test"
build_and_test "$root/release" -DCMAKE_BUILD_TYPE=RelWithDebInfo

step "Install and build a consumer of the package"
rm -rf "$root/install" "$root/consumer"
cmake --install "$root/release" --prefix "$root/install" >/dev/null
cmake -S tests/consumer -B "$root/consumer" -DCMAKE_PREFIX_PATH="$PWD/$root/install" >/dev/null
cmake --build "$root/consumer" -j "$jobs"
LD_LIBRARY_PATH="$PWD/$root/install/lib" "$root/consumer/consumer"

step "Build and test under AddressSanitizer and UndefinedBehaviorSanitizer"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
build_and_test "$root/sanitize" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS="-O1" \
    -DLIBSTROKESET_SANITIZE=ON -DLIBSTROKESET_BUILD_BENCHMARKS=OFF

if command -v clang++ >/dev/null 2>&1 && [ "$fuzz_seconds" -gt 0 ]; then
    step "Fuzz loading and writing for ${fuzz_seconds} s"
    cmake -S . -B "$root/fuzz" -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DLIBSTROKESET_BUILD_FUZZERS=ON -DLIBSTROKESET_BUILD_TESTS=OFF \
        -DLIBSTROKESET_BUILD_BENCHMARKS=OFF -DLIBSTROKESET_BUILD_TOOLS=OFF >/dev/null
    cmake --build "$root/fuzz" -j "$jobs" --target fuzz_roundtrip fuzz_selection
    mkdir -p "$root/fuzz/corpus" "$root/fuzz/selection_corpus"
    "$root/fuzz/fuzz/fuzz_roundtrip" -max_total_time="$fuzz_seconds" -max_len=4096 \
        -print_final_stats=1 "$root/fuzz/corpus" fuzz/seeds 2>&1 | tail -n 20
    step "Fuzz selections on edited drawings for ${fuzz_seconds} s"
    "$root/fuzz/fuzz/fuzz_selection" -max_total_time="$fuzz_seconds" -max_len=512 \
        -print_final_stats=1 "$root/fuzz/selection_corpus" 2>&1 | tail -n 6
else
    step "Fuzzing skipped (no clang++)"
fi

step "All tests passed"
