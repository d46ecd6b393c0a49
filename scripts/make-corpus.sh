#!/usr/bin/env bash
# Makes the starting inputs of the fuzz target for the reader from the test files: the smallest
# whole files of each format version, and damaged copies that lead straight to the checks which
# random changes seldom reach.
#
#   scripts/make-corpus.sh [FOLDER]          default: fuzz/corpus/reader
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

folder=${1:-fuzz/corpus/reader}
page=4096 # bytes; Jet 4
mkdir -p "$folder"

for name in overflowTestV1997 delColTestV2000 fixedNumericTestV2000 overflowTestV2000; do
    cp "tests/data/$name.mdb" "$folder/$name.mdb"
done

# put FILE OFFSET BYTES: overwrites bytes of a file in place; BYTES as printf escapes.
put() {
    printf '%b' "$3" | dd of="$1" bs=1 seek="$2" conv=notrunc status=none
}
# damaged NAME: starts a damaged copy and prints its path.
damaged() {
    cp tests/data/delColTestV2000.mdb "$folder/$1.mdb"
    echo "$folder/$1.mdb"
}

# The catalog's definition (page 2) names itself as its own continuation.
put "$(damaged definition-loop)" $((2 * page + 4)) '\x02\x00\x00\x00'
# ... claims more rows, and more columns, than any file holds.
put "$(damaged row-count)" $((2 * page + 16)) '\xff\xff\xff\xff'
put "$(damaged column-count)" $((2 * page + 45)) '\xff\xff'
# ... has an owned-pages map that lies outside the file.
put "$(damaged map-outside)" $((2 * page + 55)) '\x00\xff\xff\xff'
# The first page's format version is one that does not exist.
put "$(damaged version)" 20 '\x7f'
# The file ends inside a page, and after its first one.
truncate --size=$((20 * page + 1000)) "$(damaged cut-inside-page)"
truncate --size=$page "$(damaged one-page)"
