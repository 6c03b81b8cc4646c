#!/usr/bin/env bash
# Developer entry point: installs what is missing, configures, builds, then
#   tools/dev.sh sample         runs 'ct600 calc' on the sample return
#   tools/dev.sh test           runs the whole test suite, then again under ASan+UBSan,
#                               then each fuzz target for a minute (tools/fuzz.sh)
#   tools/dev.sh fuzz           the fuzz targets only
#   tools/dev.sh build          builds only
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
jobs=$(nproc 2>/dev/null || echo 2)

install_missing() {  # install_missing [extra packages...]
    local wanted=(cmake make g++ binutils pkg-config libexpat1-dev nlohmann-json3-dev libgtest-dev googletest libbenchmark-dev
                  libxml2-dev libssl-dev libxml2-utils openssl
                  "$@")
    local missing=()
    for pkg in "${wanted[@]}"; do
        dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q 'install ok installed' || missing+=("$pkg")
    done
    if [ ${#missing[@]} -gt 0 ]; then
        echo "installing: ${missing[*]}" >&2
        local sudo=""
        [ "$(id -u)" -eq 0 ] || sudo="sudo"
        $sudo apt-get update -qq
        DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}" >/dev/null
    fi
}

build() {  # build DIR [cmake options...]
    local dir=$1; shift
    cmake -S "$root" -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
    cmake --build "$dir" -j "$jobs"
}

case "${1:-}" in
    sample)
        install_missing
        build "$root/build" >/dev/null
        shift
        exec "$root/build/tools/ct600" calc "${@:-$root/examples/sample-return.json}"
        ;;
    test)
        # chromium renders the report page headless in the tests (as root too: --no-sandbox).
        install_missing clang libclang-rt-14-dev chromium
        build "$root/build"
        ctest --test-dir "$root/build" -j "$jobs" --output-on-failure
        build "$root/build-asan" -DCT600_SANITIZE=ON -DCT600_BUILD_BENCH=OFF
        ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
            ctest --test-dir "$root/build-asan" -j "$jobs" --output-on-failure
        bash "$root/tools/fuzz.sh"
        ;;
    fuzz)
        install_missing clang libclang-rt-14-dev
        bash "$root/tools/fuzz.sh"
        ;;
    build)
        install_missing
        build "$root/build"
        ;;
    *)
        echo "usage: tools/dev.sh sample [FILE] | test | fuzz | build" >&2
        exit 2
        ;;
esac
