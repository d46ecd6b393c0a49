#!/usr/bin/env bash
# Takes pictures of windows that no test keeps any of, in both languages, from the running program.
#
#   scripts/window-pictures.sh BUILD_FOLDER FOLDER
set -euo pipefail
build=$(cd "${1:?usage: window-pictures.sh BUILD_FOLDER FOLDER}" && pwd)
pictures=$(cd "${2:?usage: window-pictures.sh BUILD_FOLDER FOLDER}" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/screen.sh
source scripts/screen.sh

# LANGUAGE LCID, and parts of titles: variables, patterns, replacing.
take() {
    local language=$1
    cp examples/Brauerei.kvs "$folder/Brauerei.kvs"
    start_studio "$folder/Brauerei.kvs" "$2" 1040 640
    # The first archive, and its trends.
    keys Down Down F6
    keys F4
    picture "findings-$language" active
    keys F4
    keys Tab space
    window "$3"
    picture "variables-$language" active
    keys Escape
    keys ctrl+F8
    window "$4"
    text 'Tank {1..3} {Temperatur|Druck}'
    keys Tab
    text 'PLC.T{01..03}.{TI|PI}'
    picture "patterns-$language" active
    keys Escape
    keys ctrl+h
    window "$5"
    text bottich
    keys Tab Tab
    text kessel
    picture "replace-$language" active
    keys Escape
    stop_studio
}

start_screen 1060x680
take en 1033 'Choose variable' 'Trends by pattern' 'Find and replace'
take de 1031 'Variable ausw' 'Trends nach Muster' 'Suchen und Ersetzen'
