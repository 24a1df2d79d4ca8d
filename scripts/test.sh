#!/usr/bin/env bash
# Builds LibStrokeset and runs every test, with every part switched on (a missing dependency
# fails the run):
# - the format check of every source file;
# - with g++, a warnings-as-errors build of the shared library, its tests, tools and
#   benchmarks and the Python module (tested with pytest against the tool); the installed
#   package used by a consumer through CMake and through pkg-config, and the installed module
#   imported; the exported symbols checked for internal classes;
# - the API reference from the public headers (any Doxygen warning, an undocumented member
#   among them, fails);
# - with clang++, the build, tests and package checks with the static library;
# - the tests again under AddressSanitizer and UndefinedBehaviorSanitizer, the Python module's
#   with the sanitizer runtime preloaded into the interpreter;
# - the fuzzers (stream round trip, SVG import, indexed optimizer against the reference,
#   travel optimizer keeping what is drawn, selections and lookups on edited drawings, machine
#   export), for about a minute each.
# The tests read the machine files back with hp2xx and rs274, installed here without their
# recommended packages.
# Exits non-zero on any failure.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/ensure-packages.sh
ensure_packages "${LIBSTROKESET_BUILD_PACKAGES[@]}" "${LIBSTROKESET_CHECK_PACKAGES[@]}"
ensure_packages --lean "${LIBSTROKESET_INTERPRETER_PACKAGES[@]}"

jobs=$(nproc)
root=${LIBSTROKESET_BUILD_ROOT:-build}
fuzz_seconds=${LIBSTROKESET_FUZZ_SECONDS:-60}
# The Python module is built for Debian's interpreter, which has NumPy and pytest.
python=/usr/bin/python3
all_parts=(-DLIBSTROKESET_WERROR=ON -DLIBSTROKESET_BUILD_TESTS=ON -DLIBSTROKESET_BUILD_FORMATS=ON
    -DLIBSTROKESET_BUILD_TOOLS=ON -DLIBSTROKESET_BUILD_PYTHON=ON -DPython_EXECUTABLE=$python)

step() { printf '\n== %s ==\n' "$*"; }

build_and_test() {
    local dir=$1
    shift
    cmake -S . -B "$dir" "${all_parts[@]}" "$@" >/dev/null
    cmake --build "$dir" -j "$jobs"
    ctest --test-dir "$dir" --output-on-failure -j "$jobs"
}

# Installs a build and builds the consumer against it with CMake and with pkg-config only.
check_package() {
    local dir=$1 kind=$2
    local prefix=$PWD/$dir/install
    rm -rf "$prefix" "$dir/consumer"
    cmake --install "$dir" --prefix "$prefix" >/dev/null
    cmake -S tests/consumer -B "$dir/consumer" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
    cmake --build "$dir/consumer" -j "$jobs"
    LD_LIBRARY_PATH="$prefix/lib" "$dir/consumer/consumer"
    LD_LIBRARY_PATH="$prefix/lib" "$dir/consumer/consumer_formats"
    local program package flags
    for program in main:LibStrokeset formats:LibStrokesetFormats; do
        package=${program#*:}
        program=${program%:*}
        flags=$(PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config --cflags --libs "$package")
        echo "pkg-config $package ($kind): $flags"
        # shellcheck disable=SC2086 # the flags are words
        "${CXX:-c++}" -std=c++17 "tests/consumer/$program.cpp" $flags \
            -o "$dir/consumer/$program-pc"
        LD_LIBRARY_PATH="$prefix/lib" "$dir/consumer/$program-pc"
    done
    # The installed module finds its libraries by itself, from any folder.
    local module
    module=$(find "$prefix" -name 'strokeset*.so')
    (cd / && PYTHONPATH=$(dirname "$module") "$python" -c \
        'import strokeset; print("import strokeset:", strokeset.__file__)')
}

step "Format"
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run -Werror

step "g++: build and test"
build_and_test "$root/release" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLIBSTROKESET_BUILD_BENCHMARKS=ON

step "g++: the installed shared library, its package and its symbols"
check_package "$root/release" shared
scripts/check-exports.sh "$root/release/install/lib/libLibStrokeset.so"
scripts/check-exports.sh "$root/release/install/lib/libLibStrokesetFormats.so" \
    include/LibStrokeset/Formats LibStrokeset::Formats

step "API reference"
cmake --build "$root/release" --target docs

step "clang++: build and test the static library"
CXX=clang++ build_and_test "$root/clang" -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBUILD_SHARED_LIBS=OFF
CXX=clang++ check_package "$root/clang" static

step "Build and test under AddressSanitizer and UndefinedBehaviorSanitizer"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
build_and_test "$root/sanitize" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS="-O1" \
    -DLIBSTROKESET_SANITIZE=ON

if [ "$fuzz_seconds" -gt 0 ]; then
    step "Fuzz loading and writing for ${fuzz_seconds} s"
    cmake -S . -B "$root/fuzz" -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DLIBSTROKESET_BUILD_FUZZERS=ON -DLIBSTROKESET_BUILD_TESTS=OFF \
        -DLIBSTROKESET_BUILD_TOOLS=OFF >/dev/null
    cmake --build "$root/fuzz" -j "$jobs" --target fuzz_roundtrip fuzz_svg_import fuzz_optimize \
        fuzz_selection fuzz_travel fuzz_export
    mkdir -p "$root/fuzz/corpus" "$root/fuzz/svg_corpus" "$root/fuzz/optimize_corpus" \
        "$root/fuzz/selection_corpus" "$root/fuzz/travel_corpus" "$root/fuzz/export_corpus"
    "$root/fuzz/fuzz/fuzz_roundtrip" -max_total_time="$fuzz_seconds" -max_len=4096 \
        -print_final_stats=1 "$root/fuzz/corpus" fuzz/seeds 2>&1 | tail -n 20

    step "Fuzz SVG import for ${fuzz_seconds} s"
    "$root/fuzz/fuzz/fuzz_svg_import" -max_total_time="$fuzz_seconds" -max_len=4096 \
        -dict=fuzz/svg.dict -print_final_stats=1 "$root/fuzz/svg_corpus" fuzz/svg_seeds 2>&1 |
        tail -n 20

    step "Fuzz the indexed optimizer against the reference for ${fuzz_seconds} s"
    "$root/fuzz/fuzz/fuzz_optimize" -max_total_time="$fuzz_seconds" -max_len=4096 \
        -print_final_stats=1 "$root/fuzz/optimize_corpus" fuzz/seeds_optimize 2>&1 | tail -n 20

    step "Fuzz the travel optimizer (what is drawn must not change) for ${fuzz_seconds} s"
    "$root/fuzz/fuzz/fuzz_travel" -max_total_time="$fuzz_seconds" -max_len=4096 \
        -print_final_stats=1 "$root/fuzz/travel_corpus" fuzz/seeds_optimize 2>&1 | tail -n 6

    step "Fuzz selections and lookups on edited drawings for ${fuzz_seconds} s"
    "$root/fuzz/fuzz/fuzz_selection" -max_total_time="$fuzz_seconds" -max_len=512 \
        -print_final_stats=1 "$root/fuzz/selection_corpus" 2>&1 | tail -n 6

    step "Fuzz machine export (plain numbers or a clean refusal) for ${fuzz_seconds} s"
    "$root/fuzz/fuzz/fuzz_export" -max_total_time="$fuzz_seconds" -max_len=4096 \
        -print_final_stats=1 "$root/fuzz/export_corpus" fuzz/seeds_optimize 2>&1 | tail -n 6
fi

step "All tests passed"
