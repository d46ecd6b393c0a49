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

# What a shell and a desktop read.
for file in share/bash-completion/completions/kvs share/zsh/site-functions/_kvstudio \
    share/fish/vendor_completions.d/kvs.fish share/man/de/man1/kvs.1 share/man/man1/kvstudio.1 \
    share/applications/kvstudio.desktop share/mime/packages/korvala-studio.xml; do
    [[ -s $prefix/$file ]] || { echo "$file is not installed" >&2; exit 1; }
done

# The example of an add-in, with nothing but what is installed.
{
    "$cmake" -S "$prefix/share/doc/korvala-addin-dev/examples/addin" -B "$prefix/notes" \
        -DCMAKE_PREFIX_PATH="$prefix" && "$cmake" --build "$prefix/notes" &&
        "$cmake" --install "$prefix/notes" --prefix "$prefix"
} >"$prefix/notes.log" 2>&1 || { cat "$prefix/notes.log" >&2; exit 1; }

# The studio goes on without its add-in, so what it says decides.
"$prefix/bin/kvstudio" --screenshot "$prefix/studio.png" "$project" 2>"$prefix/messages"
if grep '^kvstudio:\|not loaded' "$prefix/messages" || [[ ! -s $prefix/studio.png ]]; then
    echo "The installed studio does not show the project." >&2
    exit 1
fi
