#!/usr/bin/env bash
# Runs clang-tidy over the product's code with the flags of a build; fails when it finds anything.
#
#   scripts/tidy.sh BUILD_FOLDER
set -euo pipefail
build=$(cd "${1:?usage: tidy.sh BUILD_FOLDER}" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/.."

log=$(mktemp)
trap 'rm -f "$log"' EXIT
status=0
run-clang-tidy -quiet -p "$build" -j "$(nproc)" "^$PWD/(src|studio|tools)/.*\.cpp$" \
    >"$log" 2>/dev/null || status=$?

# run-clang-tidy prints its command lines in between.
findings=$(sed -E 's/\x1b\[[0-9;]*m//g; /^clang-tidy[-0-9]* /d; /^$/d' "$log")
if [[ $status -ne 0 || -n $findings ]]; then
    printf '%s\n' "$findings"
    echo "tidy: clang-tidy has findings" >&2
    exit 1
fi
echo "clang-tidy: no finding"
