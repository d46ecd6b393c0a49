#!/usr/bin/env bash
# What `kvs --completion` prints completes words in the shells themselves. A shell that this machine
# has not is named and left out.
#
#   completions.sh KVS
set -euo pipefail

kvs=${1:?}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
for shell in bash zsh fish; do "$kvs" --completion $shell >"$folder/$shell"; done
export PATH=$folder:$PATH HOME=$folder
ln -s "$kvs" "$folder/kvs"

in_bash() {
    bash --norc -c 'source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _kvs
        echo "${COMPREPLY[@]}"' "$folder/bash" "$@"
}
in_zsh() {
    # The line editor itself is asked, in a terminal of its own.
    zsh -f "$(dirname "${BASH_SOURCE[0]}")/complete.zsh" "$folder/zsh" "$*"
}
in_fish() {
    fish --no-config -c "source $folder/fish; complete -C '$*'" | cut -f1 | tr '\n' ' '
}

failed=0
# expect SHELL WANTED WORD...: the last word is the one that is completed.
expect() {
    local shell=$1 wanted=$2 found
    shift 2
    found=$("in_$shell" "$@" | tr -s ' ' '\n' | LC_ALL=C sort -u | xargs)
    [[ $found == "$wanted" ]] || {
        echo "$shell: '$*' gives '$found', not '$wanted'" >&2
        failed=1
    }
}
for shell in bash zsh fish; do
    if ! command -v $shell >/dev/null; then
        echo "$shell is not here, its completion is not tried"
        continue
    fi
    expect $shell "tables" kvs ta
    expect $shell "compact" kvs comp
    expect $shell "csv json" kvs dump a.kvs TchrTrends --format ''
    expect $shell "--dry-run" kvs load a.kvs --dr
done
expect bash "csv" kvs dump --format = c
expect bash "--update" kvs load a.kvs --dry-run --u
exit $failed
