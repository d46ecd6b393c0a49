#!/usr/bin/env bash
# Runs compare_with_mdb_reader.mjs where there is a node to run it.
#
#   compare_with_mdb_reader.sh KVS FILE...
set -euo pipefail

command -v node >/dev/null || { echo "SKIPPED: node is not here"; exit 77; }
exec node "$(dirname "${BASH_SOURCE[0]}")/compare_with_mdb_reader.mjs" "$@"
