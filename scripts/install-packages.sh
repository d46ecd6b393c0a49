#!/usr/bin/env bash
# Installs the Debian 12 packages that a task needs and this machine lacks.
#
#   scripts/install-packages.sh GROUP...     install what is missing of these groups
#   scripts/install-packages.sh --list       print the groups with their packages
#
# Nothing missing: no word, no apt call. Works as root or through sudo.
set -euo pipefail

groups=(build run wayland pictures test windows format tidy bench package package-test)
declare -A packages=(
    # Compiler, linker, build tools, libraries with their headers (the presets build tests and
    # benchmarks).
    [build]="g++ lld cmake ninja-build qt6-base-dev qt6-svg-dev libchm-dev libicu-dev libxlsxwriter-dev
             libzip-dev libexpat1-dev libgtest-dev libgmock-dev libbenchmark-dev"
    # A bare machine has no font, and without one every text is a row of boxes. Qt's own German
    # texts (buttons of boxes and file choosers) are a package apart.
    [run]="fonts-dejavu-core qt6-translations-l10n"
    # Qt's platform for a desktop that offers Wayland and no X.
    [wayland]="qt6-wayland"
    # A screen that nobody sees, and hands for it: the tutorial's pictures.
    [pictures]="xvfb openbox xdotool imagemagick"
    # The second opinion on every dumped table, and the second compiler with its run-times for
    # sanitizers and fuzzing; llvm has the symbolizer that puts function names into their reports.
    [test]="mdbtools python3 python3-pyatspi dbus xvfb openbox clang-16 libclang-rt-16-dev llvm"
    # The compiler for Windows, GoogleTest's sources for it, and what runs its programs.
    [windows]="g++-mingw-w64-x86-64-posix googletest wine64"
    [format]="clang-format"
    [tidy]="clang-tidy python3"
    [bench]="mdbtools time"
    # Builds the packages, and says what is wrong with them.
    [package]="debhelper dpkg-dev fakeroot lintian desktop-file-utils appstream"
    # A bare system to install them in.
    [package-test]="mmdebstrap"
)

if [[ ${1-} == --list ]]; then
    for group in "${groups[@]}"; do
        printf '%-8s %s\n' "$group" "$(tr -s ' \n' ' ' <<<"${packages[$group]}")"
    done
    exit 0
fi

wanted=()
for group in "$@"; do
    if [[ -z ${packages[$group]-} ]]; then
        echo "install-packages: no group '$group' (there are: ${groups[*]})" >&2
        exit 2
    fi
    read -r -d '' -a names <<<"${packages[$group]}" || true
    wanted+=("${names[@]}")
done

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    echo "install-packages: this is not a Debian system; it needs the counterparts of:" \
        "${wanted[*]}" >&2
    exit 0
fi

missing=()
for name in "${wanted[@]}"; do
    state=$(dpkg-query --show --showformat='${db:Status-Status}' "$name" 2>/dev/null || true)
    [[ $state == installed || " ${missing[*]-} " == *" $name "* ]] || missing+=("$name")
done
[[ ${#missing[@]} -gt 0 ]] || exit 0

as_root=()
if [[ $(id -u) -ne 0 ]]; then
    if ! command -v sudo >/dev/null; then
        echo "install-packages: missing: ${missing[*]}" >&2
        echo "install-packages: installing them needs root or sudo, and this is neither." \
            "As root: apt-get install ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
fi

echo "Installing Debian packages, which may take some minutes: ${missing[*]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
apt() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get --quiet --quiet \
        -o Dpkg::Use-Pty=0 "$@"
}
# A bare machine has no package lists, an old one has outdated lists. An update that fails does
# no harm where the lists are good enough.
apt update >"$log" 2>&1 || sed 's/^/    /' "$log" >&2
if ! apt install --yes --no-install-recommends "${missing[@]}" >"$log" 2>&1; then
    sed 's/^/    /' "$log" >&2
    echo "install-packages: apt-get could not install: ${missing[*]}" >&2
    exit 1
fi
