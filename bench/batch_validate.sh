#!/usr/bin/env bash
# Times 'ct600 validate' over a folder of many returns: COUNT copies of the
# fullest sample return, validated by JOBS worker processes.
#
#   bench/batch_validate.sh [COUNT [JOBS]]     (defaults: 10000 returns, 2 jobs)
#
# CT600 names the command to time (default: build/tools/ct600 of this tree).
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
count=${1:-10000}
jobs=${2:-2}
ct600=${CT600:-$root/build/tools/ct600}
sample=$root/examples/full-return.json

[ -x "$ct600" ] || { echo "no ct600 at $ct600: build it first (cmake --build build --target ct600_cli)" >&2; exit 2; }

work=$(mktemp -d "${TMPDIR:-/tmp}/ct600-batch-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/returns" "$work/temp"

# Copies in folders of a thousand, as an accountant's tree of clients might
# be; written by the shell itself, as a process per copy takes minutes.
text=$(<"$sample")
for ((i = 0; i < count; i++)); do
    folder=$work/returns/$((i / 1000))
    [ -d "$folder" ] || mkdir "$folder"
    printf '%s\n' "$text" >"$folder/return-$i.json"
done

# The sample validates clean on this date; the log and worked files stay in the bench's own folder.
export CT600_TODAY=2018-06-30 CT600_TEMP_DIR=$work/temp

start=$(date +%s.%N)
status=0
"$ct600" validate --jobs "$jobs" "$work/returns" >"$work/out.txt" 2>"$work/err.txt" || status=$?
end=$(date +%s.%N)
times >"$work/times.txt"  # the shell's, then its children's: user and system time

tail -n 1 "$work/err.txt"
if [ "$status" -ne 0 ]; then
    echo "ct600 validate exited $status; first lines of its output:" >&2
    head -n 5 "$work/out.txt" "$work/err.txt" >&2
fi
awk -v s="$start" -v e="$end" -v n="$count" -v j="$jobs" \
    'BEGIN { t = e - s; printf "%d returns, %d jobs: %.2f s elapsed, %.0f returns/s\n", n, j, t, n / t }'
echo "processor time of the run (user, system): $(tail -n 1 "$work/times.txt")"
exit "$status"
