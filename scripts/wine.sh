#!/usr/bin/env bash
# Runs a program for Windows, as tests and the build do; the settings of Wine lie in the build folder
# and are nobody's own.
#
#   scripts/wine.sh PROGRAM [ARGUMENT]...
set -euo pipefail

export WINEPREFIX=${KV_WINEPREFIX:-$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)/build/wine}
# No windows, no sound, no words about what it does without.
export WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES='mscoree,mshtml,winemenubuilder.exe='
unset DISPLAY WAYLAND_DISPLAY

wine=/usr/lib/wine/wine64
[[ -x $wine ]] || wine=$(command -v wine64 || command -v wine)
mkdir -p "$WINEPREFIX"
# Two programs at once would both make the settings.
if [[ ! -e $WINEPREFIX/system.reg ]]; then
    exec 9>"$WINEPREFIX/lock"
    flock 9
    [[ -e $WINEPREFIX/system.reg ]] || "$wine" wineboot --init 9>&- </dev/null >/dev/null 2>&1 || true
    flock -u 9
    exec 9>&-
fi
exec "$wine" "$@"
