#!/usr/bin/env bash
# Fails and names the C++ files that are not as clang-format writes them.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

mapfile -t files < <(scripts/sources.sh)
bad=0
for file in "${files[@]}"; do
    if ! clang-format "$file" | cmp -s - "$file"; then
        echo "$file"
        bad=$((bad + 1))
    fi
done
if [[ $bad -gt 0 ]]; then
    echo "check-format: $bad of ${#files[@]} files are not formatted; run: make format" >&2
    exit 1
fi
echo "Format: ${#files[@]} C++ files, all as clang-format writes them."
