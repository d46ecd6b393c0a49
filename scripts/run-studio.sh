#!/usr/bin/env bash
# Starts the studio with a project; without a display leaves a picture of it instead.
#
#   scripts/run-studio.sh BUILD_FOLDER PROJECT
set -euo pipefail

build=${1:?usage: run-studio.sh BUILD_FOLDER PROJECT}
project=${2:?usage: run-studio.sh BUILD_FOLDER PROJECT}
studio=$build/bin/kvstudio

# The examples belong to the tests as well: what is worked on is a copy, made once.
if [[ $project == examples/*.kvs && -f $project ]]; then
    copy=$(dirname "$build")/examples/$(basename "$project")
    mkdir -p "$(dirname "$copy")"
    [[ -e $copy ]] || cp "$project" "$copy"
    project=$copy
fi

if [[ -n ${DISPLAY-} || -n ${WAYLAND_DISPLAY-} ]]; then
    exec "$studio" "$project"
fi

picture=$(dirname "$build")/screenshot.png
echo "There is no display here (neither DISPLAY nor WAYLAND_DISPLAY is set)."
# What Qt says about the missing desktop is no concern of the user's.
QT_QPA_PLATFORM=offscreen "$studio" --screenshot "$picture" "$project" \
    2> >(grep -vE 'XDG_RUNTIME_DIR|propagateSizeHints' >&2)
echo "A picture of the studio with $project is in $picture"
