#!/usr/bin/env bash
# Prints the project's C++ files, one a line: all of them, or those below the folders given.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
[[ $# -gt 0 ]] || set -- src include report studio tools examples tests bench fuzz
find "$@" -type f \( -name '*.cpp' -o -name '*.h' \) | LC_ALL=C sort
