#!/usr/bin/env bash
# Runs clang-tidy over the product's code with the flags of a build; fails when it finds anything.
# Files that were changed last come first, so that their findings are seen at once.
#
#   scripts/tidy.sh BUILD_FOLDER [BASE]
#
# BASE: the commit since which a file counts as changed; default is the last one.
set -euo pipefail
usage="usage: tidy.sh BUILD_FOLDER [BASE]"
build=$(cd "${1:?$usage}" && pwd)
base=${2:-HEAD~1}
cd "$(dirname "${BASH_SOURCE[0]}")/.."

mapfile -t all < <(scripts/sources.sh src report studio tools | grep '\.cpp$')
changed=$(git diff --name-only "$base" -- '*.cpp' 2>/dev/null || true)
first=()
rest=()
for file in "${all[@]}"; do
    if grep -qxF "$file" <<<"$changed"; then first+=("$file"); else rest+=("$file"); fi
done

# Plugins and tables that are made at build time are not among them, nor is what this build leaves
# out: clang-tidy would guess their flags.
known() {
    local file
    for file in "$@"; do
        grep -qF "\"$PWD/$file\"" "$build/compile_commands.json" && printf '%s\0' "$file"
    done || true
}

log=$(mktemp)
trap 'rm -f "$log"' EXIT
count=0
for part in first rest; do
    declare -n files=$part
    [[ ${#files[@]} -gt 0 ]] || continue
    status=0
    known "${files[@]}" |
        xargs -0 -n 4 -P "$(nproc)" clang-tidy --quiet -p "$build" >"$log" 2>/dev/null || status=$?
    if [[ $status -ne 0 || -s $log ]]; then
        sed -E 's/\x1b\[[0-9;]*m//g' "$log"
        echo "tidy: clang-tidy has findings" >&2
        exit 1
    fi
    count=$((count + ${#files[@]}))
done
echo "clang-tidy: $count files, no finding"
