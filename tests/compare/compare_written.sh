#!/usr/bin/env bash
# Changes a copy of the brewery with kvs, and lets other readers read what came of it, before and
# after it is compacted and repaired; the same for a file whose map of free pages begins behind its
# pages.
#
#   compare_written.sh KVS BREWERY WORKS
set -euo pipefail

kvs=$1
brewery=$2
works=$3
command -v mdb-export >/dev/null || { echo "SKIPPED: mdbtools is not here"; exit 77; }
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
# The same name: the comparison knows the cells of this file that mdb-export reads wrongly.
project=$folder/Brauerei.kvs
cp "$brewery" "$project"
chmod u+w "$project"

# Rows are added, grow until they have to move, shrink, and go.
long=$(printf 'Kommentar mit Umläuten äöüß %.0s' 1 2 3 4 5 6)
"$kvs" dump "$project" TidxTexts | awk -F, 'NR == 1 { print; next }
    { $1 += 1000; print $1 "," $2 "," $3 ",," $5 "," $6 }' >"$folder/texts.csv"
"$kvs" load "$project" TidxTexts "$folder/texts.csv"
"$kvs" set "$project" TchrTrends "ArchiveID = 2 OR ArchiveID = 9" "Comment=$long"
"$kvs" set "$project" TchrTrends "ArchiveID = 9" "Comment=kurz" "VMax=12.75"
"$kvs" delete "$project" TchrTrends "ArchiveID = 6"
"$kvs" delete "$project" TidxTexts "ID > 1100"
"$kvs" set "$project" TalmClasses "ID = 1" "Description=$long$long$long$long" "Since=2026-11-21T10:20:30"
# U+FEFF in front must not be taken for the mark of a compressed text.
mark=$'\xEF\xBB\xBF'
"$kvs" set "$project" TalmClasses "ID = 2" "Description=$mark$mark"
"$kvs" set "$project" TchrTrends "ArchiveID = 3" "Comment=${mark}Größe" "Unit=${mark}°C"
"$kvs" check "$project" | grep '^error' && exit 1
compare() {
    python3 "$here/compare_with_mdbtools.py" "$kvs" "$1"
    # The third reader is not on every machine.
    "$here/compare_with_mdb_reader.sh" "$kvs" "$1" || [ $? = 77 ]
}
compare "$project"
"$kvs" compact "$project"
"$kvs" check "$project" | grep . && exit 1
compare "$project"

# The map of free pages and all usage maps of the system's tables are gone.
mkdir "$folder/repaired"
for page in 1 6; do
    dd if=/dev/zero of="$project" bs=4096 seek=$page count=1 conv=notrunc status=none
done
"$kvs" repair "$project" --to "$folder/repaired/Brauerei.kvs"
"$kvs" check "$folder/repaired/Brauerei.kvs" | grep . && exit 1
compare "$folder/repaired/Brauerei.kvs"

project=$folder/$(basename "$works")
cp "$works" "$project"
chmod u+w "$project"
"$kvs" set "$project" TchrTrends "" "Comment=$long"
"$kvs" delete "$project" TidxGroups ""
"$kvs" check "$project" | grep '^error' && exit 1
compare "$project"
