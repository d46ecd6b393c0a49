#!/usr/bin/env bash
# Runs every fuzz target of a build for some seconds, as many at once as there are processors; a
# finding ends the run.
#
#   scripts/run-fuzz.sh BUILD_FOLDER SECONDS
#
# Inputs that reach new code are collected in BUILD_FOLDER/corpus/TARGET; the input that fails
# lands in BUILD_FOLDER/findings. To see it again: BUILD_FOLDER/bin/TARGET FINDING
set -euo pipefail

usage="usage: run-fuzz.sh BUILD_FOLDER SECONDS"
build=$(cd "${1:?$usage}" && pwd)
seconds=${2:?$usage}
mkdir -p "$build/findings"

# fuzz TARGET FOLDER...: runs one target from the inputs in the folders.
fuzz() {
    local target=$1 log=$build/$1.log runs edges
    shift
    mkdir -p "$build/corpus/$target"
    # The page cache and one row stay far below the limit for a single allocation; memory in all
    # includes the inputs collected so far and what the sanitizers themselves need.
    if ! "$build/bin/$target" -max_total_time="$seconds" -timeout=10 -malloc_limit_mb=32 \
        -rss_limit_mb=2048 -print_final_stats=1 -artifact_prefix="$build/findings/" \
        "$build/corpus/$target" "$@" >"$log" 2>&1 </dev/null; then
        tail -n 60 "$log" >&2
        echo "$target: failed; the whole output is in $log" >&2
        return 1
    fi
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    edges=$(sed -n 's/.* cov: \([0-9]*\) .*/\1/p' "$log" | tail -n 1)
    echo "$target: ${runs:-0} inputs in $seconds s, ${edges:-0} edges reached, no finding"
    # A target that ran nothing proves nothing.
    [[ ${runs:-0} -gt 0 ]]
}

count=0
running=0
failed=0
# Waits for one of the targets that run.
reap() {
    wait -n || failed=1
    running=$((running - 1))
}
while IFS=$'\t' read -r target folders; do
    [[ $running -lt $(nproc) ]] || reap
    [[ $failed -eq 0 ]] || break
    IFS=$'\t' read -r -a corpus <<<"$folders"
    fuzz "$target" "${corpus[@]}" &
    running=$((running + 1))
    count=$((count + 1))
done <"$build/fuzz/targets.txt"
while [[ $running -gt 0 ]]; do reap; done

if [[ $count -eq 0 ]]; then
    echo "run-fuzz: $build has no fuzz target" >&2
    exit 1
fi
exit "$failed"
