#!/usr/bin/env bash
# Walks through docs/tutorial.md in the running program, key by key, and takes its pictures.
#
#   scripts/tutorial-pictures.sh BUILD_FOLDER FOLDER
#
# Needs an X server without a screen, a window manager and the tools that press keys and take
# pictures (install-packages.sh pictures). What the walk must find is asked of the project at its
# end: a step that does something else than the text says ends with an error.
set -euo pipefail
build=$(cd "${1:?usage: tutorial-pictures.sh BUILD_FOLDER FOLDER}" && pwd)
pictures=$(cd "${2:?usage: tutorial-pictures.sh BUILD_FOLDER FOLDER}" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/.."

folder=$(mktemp -d)
started=()
clean_up() {
    for process in "${started[@]}"; do kill "$process" 2>/dev/null || true; done
    wait 2>/dev/null || true
    rm -rf "$folder"
}
trap clean_up EXIT
mkdir -m 700 "$folder/run"
export XDG_CONFIG_HOME=$folder XDG_STATE_HOME=$folder XDG_RUNTIME_DIR=$folder/run LC_ALL=C.UTF-8
unset QT_QPA_PLATFORM WAYLAND_DISPLAY
cp examples/Brauerei.kvs "$folder/brewery.kvs"
printf 'Windows Registry Editor Version 5.00\r\n\r\n%s\r\n"LCID"=dword:00000409\r\n' \
    '[HKEY_LOCAL_MACHINE\SOFTWARE\Brantor GmbH\Korvala\4.0]' >"$folder/english.reg"

# The server chooses a display that is free, and says which when it can be used.
mkfifo "$folder/display"
Xvfb -displayfd 3 -screen 0 1060x680x24 -nolisten tcp 3>"$folder/display" 2>/dev/null &
started+=($!)
read -r number <"$folder/display"
export DISPLAY=:$number
openbox >/dev/null 2>&1 &
started+=($!)

give_up() {
    echo "tutorial-pictures: $1" >&2
    cat "$folder/log" >&2 || true
    exit 1
}
# What starts before the window manager is up stays without a window.
for turn in $(seq 100); do
    [[ $turn -lt 100 ]] || give_up "the window manager does not start"
    ! xdotool get_num_desktops >/dev/null 2>&1 || break
    sleep 0.1
done
# The screen at rest: two pictures one behind the other are the same. They follow each other fast, or
# a blinking cursor would stand between them.
settle() {
    local before='' now='' turn
    for turn in $(seq 100); do
        now=$(import -silent -window root rgb:- | sha256sum)
        [[ $now != "$before" ]] || return 0
        before=$now
        sleep 0.1
    done
    give_up "the screen does not come to rest"
}
window() { timeout 60 xdotool search --sync --onlyvisible --name "$1" >/dev/null || give_up "no window '$1'"; }
keys() {
    local key
    for key in "$@"; do
        xdotool key --clearmodifiers "$key"
        settle
    done
}
text() {
    xdotool type --delay 30 "$1"
    settle
}
picture() { import -window root "$pictures/tutorial-$1.png"; }
trends() { "$build/bin/kvs" export --language en --separator comma "$folder/brewery.kvs"; }

"$build/bin/kvstudio" --new-window --registry "$folder/english.reg" "$folder/brewery.kvs" \
    2>"$folder/log" &
started+=($!)
window 'brewery - Korvala Studio'
xdotool search --sync --onlyvisible --name 'brewery - Korvala Studio' windowsize 1040 640 windowmove 8 24
settle

# A first archive
keys Down F8
picture start
keys F9
window '^Archive$'
text 'Water treatment'
keys alt+y c c ctrl+Tab alt+i
text water
keys alt+g d alt+b
text 30
picture archive
keys Return

# A first trend
keys F6 F8
text 'Fresh water flow'
keys Tab space
window 'Choose variable'
text frischwasser
keys Down Down
picture variable
keys Return

# Three more at once
keys ctrl+F8
window 'Trends by pattern'
text 'Feed water {temperature|pressure|pH}'
keys Tab
text 'Dampf.Speisewasser.{Temperatur|Druck|pH}'
keys Tab
text 'Speisewasser {Temperatur|Druck|pH}'
keys Tab
text 'Feed water {temperature|pressure|pH}'
picture pattern
keys alt+m
[[ $(trends | grep -c '^[^,]*,Water treatment,') -eq 4 ]] || give_up "there are not four trends"
keys ctrl+z
[[ $(trends | grep -c '^[^,]*,Water treatment,') -eq 1 ]] || give_up "the step was not taken back"
keys ctrl+y
picture trends

# What the check finds
keys F4
picture findings
