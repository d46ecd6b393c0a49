#!/usr/bin/env bash
# Runs accessible_task.py on a display, a window manager and a session bus of its own.
set -euo pipefail

here=$(dirname "$(readlink -f "$0")")
# The system's own Python is the one that has its libraries.
for tool in Xvfb openbox dbus-run-session; do
    command -v "$tool" >/dev/null || { echo "accessible_task: skipped, there is no $tool"; exit 77; }
done
/usr/bin/python3 -c 'import gi; gi.require_version("Atspi", "2.0"); from gi.repository import Atspi' \
    2>/dev/null || { echo "accessible_task: skipped, Python has no Atspi"; exit 77; }
ls /usr/share/dbus-1/services/org.a11y.Bus.service >/dev/null 2>&1 ||
    { echo "accessible_task: skipped, there is no at-spi2-core"; exit 77; }

folder=$(mktemp -d)
started=()
cleanup() {
    for program in "${started[@]}"; do kill "$program" 2>/dev/null || true; done
    rm -rf "$folder"
}
trap cleanup EXIT
Xvfb -displayfd 3 -screen 0 1024x600x24 -nolisten tcp 3>"$folder/display" 2>/dev/null &
started+=($!)
for _ in $(seq 300); do [[ -s $folder/display ]] && break; sleep 0.1; done
DISPLAY=:$(cat "$folder/display")
export DISPLAY QT_QPA_PLATFORM=xcb QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
export XDG_RUNTIME_DIR=$folder
openbox --config-file /dev/null >/dev/null 2>&1 &
started+=($!)
dbus-run-session -- /usr/bin/python3 "$here/accessible_task.py" "$@"
