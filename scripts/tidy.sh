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

# clang-tidy would guess the flags of a file that nothing compiles.
files=("${first[@]}" "${rest[@]}")
for file in "${files[@]}"; do
    if ! grep -qF "\"$PWD/$file\"" "$build/compile_commands.json"; then
        echo "tidy: $file belongs to no target of $build" >&2
        exit 1
    fi
done

# Every finding is an error (.clang-tidy), and shown as soon as it is there.
if ! printf '%s\0' "${files[@]}" |
    xargs -0 -n 4 -P "$(nproc)" clang-tidy --quiet -p "$build" 2>/dev/null |
    sed -u -E 's/\x1b\[[0-9;]*m//g'; then
    echo "tidy: clang-tidy has findings" >&2
    exit 1
fi
echo "clang-tidy: ${#files[@]} files, no finding"
