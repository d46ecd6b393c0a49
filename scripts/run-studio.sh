#!/usr/bin/env bash
# Starts the studio with a project; without a display leaves a picture of it instead.
#
#   scripts/run-studio.sh BUILD_FOLDER PROJECT
set -euo pipefail

build=${1:?usage: run-studio.sh BUILD_FOLDER PROJECT}
project=${2:?usage: run-studio.sh BUILD_FOLDER PROJECT}
studio=$build/bin/kvstudio

if [[ -n ${DISPLAY-} || -n ${WAYLAND_DISPLAY-} ]]; then
    exec "$studio" "$project"
fi

picture=$(dirname "$build")/screenshot.png
echo "There is no display here (neither DISPLAY nor WAYLAND_DISPLAY is set)."
QT_QPA_PLATFORM=offscreen "$studio" --screenshot "$picture" "$project"
echo "A picture of the studio with $project is in $picture"
