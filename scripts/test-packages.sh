#!/usr/bin/env bash
# Installs the packages in a bare Debian 12 system, uses them and removes them again.
#
#   scripts/test-packages.sh FOLDER
#
# FOLDER holds the packages. The system is made for it and is gone afterwards; whoever is not root
# needs user namespaces. What is done in it is in scripts/packages-inside.sh.
set -euo pipefail
folder=$(cd "${1:?usage: test-packages.sh FOLDER}" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/.."

log=$folder/test.log
hooks=(--customize-hook='mkdir "$1/packages"')
for file in "$folder"/*.deb "$PWD/scripts/packages-inside.sh"; do
    hooks+=(--customize-hook="copy-in '$file' /packages")
done
hooks+=(--customize-hook='chroot "$1" bash /packages/packages-inside.sh >&2')
if ! mmdebstrap --variant=apt --include=ca-certificates "${hooks[@]}" bookworm /dev/null \
    >"$log" 2>&1; then
    tail -n 40 "$log" >&2
    echo "test-packages: failed; the whole output is in $log" >&2
    exit 1
fi
sed -n 's/^== //p' "$log"
