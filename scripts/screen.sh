#!/usr/bin/env bash
# A screen that nobody sees, with the studio on it, and hands for it; to be sourced by what takes
# pictures of windows. Wants `build`, the build folder, and `pictures`, where pictures go. Needs the
# packages of install-packages.sh pictures. Whoever sources it is in the project's folder.

: "${build:?}" "${pictures:?}"
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

give_up() {
    echo "$(basename "$0"): $1" >&2
    cat "$folder/log" >&2 2>/dev/null || true
    exit 1
}
# WIDTHxHEIGHT. The server chooses a display that is free, and says which when it can be used. What
# starts before the window manager is up stays without a window.
start_screen() {
    local number turn
    mkfifo "$folder/display"
    Xvfb -displayfd 3 -screen 0 "$1x24" -nolisten tcp 3>"$folder/display" 2>/dev/null &
    started+=($!)
    read -r number <"$folder/display"
    export DISPLAY=:$number
    openbox >/dev/null 2>&1 &
    started+=($!)
    for turn in $(seq 100); do
        ! xdotool get_num_desktops >/dev/null 2>&1 || return 0
        sleep 0.1
    done
    give_up "after $turn turns there is no window manager"
}
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
    give_up "after $turn looks the screen is not at rest"
}
# Waits for a window, by a part of its title.
window() {
    timeout 60 xdotool search --sync --onlyvisible --name "$1" >/dev/null || give_up "no window '$1'"
}
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
# Of the screen, or with `active` behind the name of the window that has the keyboard.
picture() {
    local shown=root
    [[ ${2-} != active ]] || shown=$(xdotool getactivewindow)
    import -window "$shown" "$pictures/$1.png"
}
# FILE LCID WIDTH HEIGHT: the studio with that project, in that language.
start_studio() {
    local title
    title="$(basename "$1" .kvs) - Korvala Studio"
    printf 'Windows Registry Editor Version 5.00\r\n\r\n%s\r\n"LCID"=dword:%08x\r\n' \
        '[HKEY_LOCAL_MACHINE\SOFTWARE\Brantor GmbH\Korvala\4.0]' "$2" >"$folder/machine.reg"
    "$build/bin/kvstudio" --new-window --registry "$folder/machine.reg" "$1" 2>"$folder/log" &
    studio=$!
    started+=("$studio")
    window "$title"
    xdotool search --sync --onlyvisible --name "$title" windowsize "$3" "$4" windowmove 8 24
    settle
}
stop_studio() {
    kill "$studio"
    wait "$studio" 2>/dev/null || true
}
