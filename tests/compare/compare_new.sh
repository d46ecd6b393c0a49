#!/usr/bin/env bash
# Fills a new project with the rows of the brewery, and lets other readers read it.
#
#   compare_new.sh KVS BREWERY
set -euo pipefail

kvs=$1
brewery=$2
command -v mdb-export >/dev/null || { echo "SKIPPED: mdbtools is not here"; exit 77; }
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
# The same name: the comparison knows the cells of this file that mdb-export reads wrongly.
project=$folder/Brauerei.kvs
"$kvs" new "$project" --lcid 1031 --lcid 1033
tables="TchrArchives TchrTrends TidxTexts TidxGroups TpdbStructs TpdbVars TcfgLanguages"
[ "$(mdb-tables "$project" | xargs)" = "$tables" ] || { echo "mdb-tables lists others"; exit 1; }

for table in $tables; do
    "$kvs" dump "$brewery" "$table" >"$folder/there.csv"
    # The languages are there from the beginning, and the group above all others.
    cp "$folder/there.csv" "$folder/rows.csv"
    [ "$table" != TidxGroups ] || sed -i 2d "$folder/rows.csv"
    [ "$table" = TcfgLanguages ] || "$kvs" load "$project" "$table" "$folder/rows.csv"
    "$kvs" dump "$project" "$table" | cmp - "$folder/there.csv"
done
"$kvs" check "$project" | grep . && exit 1
python3 "$here/compare_with_mdbtools.py" "$kvs" "$project"

# So many languages that a definition needs several pages.
many=$folder/many.kvs
# shellcheck disable=SC2046
"$kvs" new "$many" $(seq -f '--lcid %g' 1 251)
"$kvs" check "$many" | grep . && exit 1
python3 "$here/compare_with_mdbtools.py" "$kvs" "$many"
# The third reader is not on every machine.
"$here/compare_with_mdb_reader.sh" "$kvs" "$project" "$many" || [ $? = 77 ]
