#!/usr/bin/env bash
# Builds the Debian packages from a copy of the tree, so that nothing is left in it.
#
#   scripts/make-package.sh FOLDER
#
# The packages, and what dpkg says of them, are in FOLDER then; what was there is removed.
set -euo pipefail
folder=${1:?usage: make-package.sh FOLDER}
cd "$(dirname "${BASH_SOURCE[0]}")/.."

version=$(dpkg-parsechangelog --show-field Version)
program=$(sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
if [[ $version != "$program" ]]; then
    echo "make-package: debian/changelog is at $version, CMakeLists.txt at $program" >&2
    exit 1
fi

rm -rf "$folder"
copy=$folder/korvala-studio-$program
mkdir -p "$copy"
tar --create --exclude-vcs --exclude=./build --exclude=./.cache . | tar --extract -C "$copy"
# debhelper gives the build a home of its own, in which a cache would be empty.
if [[ -z ${CCACHE_DIR-} ]] && command -v ccache >/dev/null; then
    CCACHE_DIR=$(ccache --get-config cache_dir)
    export CCACHE_DIR
fi
log=$folder/build.log
if ! (cd "$copy" && dpkg-buildpackage --build=binary --unsigned-changes --unsigned-buildinfo) \
    >"$log" 2>&1; then
    tail -n 40 "$log" >&2
    echo "make-package: failed; the whole output is in $log" >&2
    exit 1
fi
rm -rf "$copy"
ls "$folder"/*.deb
