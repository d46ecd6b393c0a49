#!/usr/bin/env bash
# Installs a build into a new folder and tries the programs there on a project.
#
#   installed_programs.sh CMAKE BUILD_FOLDER PROJECT
set -euo pipefail

cmake=${1:?} build=${2:?} project=${3:?}
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
unset KV_ADDINS

"$cmake" --install "$build" --prefix "$prefix" >"$prefix/install.log"
"$prefix/bin/kvs" tables "$project" >/dev/null

# The studio goes on without its add-in, so what it says decides.
"$prefix/bin/kvstudio" --screenshot "$prefix/studio.png" "$project" 2>"$prefix/messages"
if grep '^kvstudio:' "$prefix/messages" || [[ ! -s $prefix/studio.png ]]; then
    echo "The installed studio does not show the project." >&2
    exit 1
fi
