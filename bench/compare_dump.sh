#!/usr/bin/env bash
# Times `kvs dump FILE TABLE` beside `mdb-export FILE TABLE`: both write CSV of the same table to
# nowhere, in turns, after one run each that brings the file into the system's cache.
#
#   bench/compare_dump.sh FILE [TABLE]       default table: TchrTrends
#
# Environment: KVS (build/optimised/bin/kvs), REPEATS (11).
# Elapsed time counts from the start of the process to its end; processor time is user and system,
# and can be compared on a busy machine too; memory is the peak resident set.
set -euo pipefail

file=${1:?usage: compare_dump.sh FILE [TABLE]}
table=${2:-TchrTrends}
kvs=${KVS:-$(dirname "${BASH_SOURCE[0]}")/../build/optimised/bin/kvs}
repeats=${REPEATS:-11}

for tool in mdb-export /usr/bin/time "$kvs"; do
    command -v "$tool" >/dev/null || { echo "compare_dump: no $tool here" >&2; exit 1; }
done

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

ours=("$kvs" dump "$file" "$table")
theirs=(mdb-export -b hex "$file" "$table")

# once NAME COMMAND...: appends the elapsed microseconds to NAME.us, and the milliseconds of the
# processor to NAME.ms. bash starts the program the same way for both, so what that costs weighs on
# the faster one.
TIMEFORMAT='%3U %3S'
once() {
    local name=$1 start
    shift
    start=${EPOCHREALTIME/./}
    { time "$@" >/dev/null; } 2>"$scratch/time"
    echo $((${EPOCHREALTIME/./} - start)) >>"$scratch/$name.us"
    awk '{ print 1000 * ($1 + $2) }' "$scratch/time" >>"$scratch/$name.ms"
}

# measure_memory NAME COMMAND...: the peak in KiB, from a run of its own that is not timed.
measure_memory() {
    local name=$1
    shift
    /usr/bin/time --format=%M --output="$scratch/$name.kib" "$@" >/dev/null
}

measure_memory ours "${ours[@]}"
measure_memory theirs "${theirs[@]}"
for ((i = 0; i < repeats; ++i)); do
    once ours "${ours[@]}"
    once theirs "${theirs[@]}"
done

median() { sort -n "$scratch/$1" | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
rows=$("$kvs" tables "$file" | awk -F '\t' -v t="$table" '$1 == t { print $2 }')
our_us=$(median ours.us)
their_us=$(median theirs.us)

printf '%s, table %s: %s rows, %s KiB file; median of %d runs\n' "$(basename "$file")" "$table" \
    "${rows:-?}" "$(($(stat --format=%s "$file") / 1024))" "$repeats"
awk -v a="$our_us" -v b="$their_us" -v c="$(median ours.ms)" -v d="$(median theirs.ms)" -v m="$(<"$scratch/ours.kib")" \
    -v n="$(<"$scratch/theirs.kib")" 'BEGIN {
    printf "%-12s %12s %12s %14s\n", "", "elapsed", "processor", "peak memory"
    printf "%-12s %9.2f ms %9.0f ms %10.1f MiB\n", "kvs dump", a / 1000, c, m / 1024
    printf "%-12s %9.2f ms %9.0f ms %10.1f MiB\n", "mdb-export", b / 1000, d, n / 1024
    printf "kvs dump is %.1f times as fast", b / a
    if (c > 0) printf ", in processor time %.1f times", d / c
    print ""
}'
