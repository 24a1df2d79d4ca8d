# Sourced by the other scripts: installs the Debian packages a script needs when missing.
# Usage: ensure_packages PACKAGE...

ensure_packages() {
    local lean=()
    if [ "${1:-}" = "--lean" ]; then # without recommended packages, which can be many
        lean=(--no-install-recommends)
        shift
    fi
    local missing=()
    local package
    for package in "$@"; do
        if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
            missing+=("$package")
        fi
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing missing packages: ${missing[*]}"
    local sudo=""
    if [ "$(id -u)" -ne 0 ]; then
        if command -v sudo >/dev/null 2>&1; then
            sudo="sudo"
        else
            echo "Not root and no sudo: please install ${missing[*]}" >&2
            return 1
        fi
    fi
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${lean[@]}" "${missing[@]}"
}

# What building the library, its tests, benchmarks, tools and Python module needs.
LIBSTROKESET_BUILD_PACKAGES=(cmake make g++ libeigen3-dev libgtest-dev libbenchmark-dev libcli11-dev
    libpugixml-dev libtomlplusplus-dev pybind11-dev python3-dev python3-numpy)
# What the test script checks with besides: the second compiler and the fuzzers' runtime, the
# format check, the pkg-config consumer, the API reference and the Python tests.
LIBSTROKESET_CHECK_PACKAGES=(clang libclang-rt-14-dev clang-format pkg-config doxygen
    python3-pytest)
# The interpreters that read the machine files back in the tests (HPGL, RS274/NGC G-code).
# The G-code one comes with a whole machine controller: about 30 s and 76 MB to install.
LIBSTROKESET_INTERPRETER_PACKAGES=(hp2xx linuxcnc-uspace)

# What building the strokeset tool needs.
LIBSTROKESET_TOOL_PACKAGES=(cmake make g++ libeigen3-dev libcli11-dev libpugixml-dev
    libtomlplusplus-dev)

# Builds the strokeset tool in release mode in DIR (installing what it needs first) and sets
# $strokeset to it. Usage: build_strokeset DIR
build_strokeset() {
    ensure_packages "${LIBSTROKESET_TOOL_PACKAGES[@]}"
    cmake -S . -B "$1" -DCMAKE_BUILD_TYPE=Release -DLIBSTROKESET_BUILD_TOOLS=ON \
        -DLIBSTROKESET_BUILD_TESTS=OFF -DLIBSTROKESET_BUILD_BENCHMARKS=OFF >/dev/null
    cmake --build "$1" -j "$(nproc)" --target strokeset >/dev/null
    strokeset=$1/tools/strokeset
}

