#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (in build-fuzz) and runs each for a
# bounded time on a scratch copy of its seed corpus, so that fuzz/corpus is
# never changed. Any crash, hang, leak, undefined behaviour or broken property
# fails the script; the input that caused it is kept in build-fuzz/findings/.
#
#   CT600_FUZZ_SECONDS   seconds per target (default 60; 0 runs the seed corpus only)
#   CT600_FUZZ_TARGETS   targets to run, separated by blanks (default: all)
#   CT600_FUZZ_TIMEOUT   seconds one input may take before it counts as a hang (default 30)
#   CT600_FUZZ_RSS_MB    memory limit in MB (default 2048)
#   CT600_FUZZ_BUILD_DIR build folder (default build-fuzz)
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
jobs=$(nproc 2>/dev/null || echo 2)
seconds=${CT600_FUZZ_SECONDS:-60}
timeout=${CT600_FUZZ_TIMEOUT:-30}
rss_mb=${CT600_FUZZ_RSS_MB:-2048}
build=${CT600_FUZZ_BUILD_DIR:-$root/build-fuzz}
targets=${CT600_FUZZ_TARGETS:-xmlvar calc2 validate ctv3_21 pattern}

CC=clang CXX=clang++ cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCT600_FUZZ=ON -DCT600_BUILD_TESTS=OFF -DCT600_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" -j "$jobs" --target fuzz_targets

scratch=$(mktemp -d "${TMPDIR:-/tmp}/ct600-fuzz.XXXXXX")
trap 'rm -rf "$scratch"' EXIT

failed=()
for target in $targets; do
    binary="$build/fuzz/fuzz_$target"
    [ -x "$binary" ] || { echo "fuzz: no target $target" >&2; exit 2; }
    work="$scratch/$target"
    findings="$build/findings/$target"
    mkdir -p "$work/corpus" "$work/tmp" "$findings"
    cp -R "$root/fuzz/corpus/$target/." "$work/corpus/"
    extra=()
    case $target in
        validate | ctv3_21) extra+=("-dict=$build/fuzz/boxmap.dict") ;;
        xmlvar | calc2) extra+=("-dict=$root/fuzz/xml.dict") ;;
    esac
    if [ "$seconds" -eq 0 ]; then extra+=(-runs=0); else extra+=(-max_total_time="$seconds"); fi

    status=0
    CT600_TEMP_DIR="$work/tmp" CT600_LOG_FILE="$work/tmp/ct600.log" \
        ASAN_OPTIONS="detect_leaks=1" \
        UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1" \
        "$binary" -timeout="$timeout" -rss_limit_mb="$rss_mb" \
        -artifact_prefix="$findings/" -print_final_stats=1 "${extra[@]}" "$work/corpus" \
        >"$work/log" 2>&1 || status=$?

    done_line=$(grep -Eo 'Done [0-9]+ runs in [0-9]+ second\(s\)' "$work/log" | tail -1 || true)
    if [ "$status" -eq 0 ]; then
        echo "fuzz_$target: ${done_line:-no summary}"
    else
        cp "$work/log" "$findings/last.log"
        echo "fuzz_$target: FAILED (exit $status); log and input in $findings" >&2
        grep -E 'ERROR|SUMMARY|property failed|runtime error|Test unit written' "$work/log" | head -20 >&2 || true
        failed+=("$target")
    fi
done

if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzz: findings in ${failed[*]}" >&2
    exit 1
fi
