#!/usr/bin/env bash
# What test-packages.sh does in the bare system; the packages lie in /packages. Stops at the first
# thing that is not as it should be.
set -euo pipefail
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
trap 'echo "packages-inside: line $LINENO failed: $BASH_COMMAND" >&2' ERR

done_with() { echo "== $*"; }
install() { apt-get install --yes --quiet --no-install-recommends "$@"; }
# is WANTED COMMAND...: the command prints just that.
is() {
    local wanted=$1 found
    shift
    found=$("$@")
    [[ $found == "$wanted" ]] || { echo "'$*' prints '$found', not '$wanted'" >&2; return 1; }
}
# fails STATUS COMMAND...
fails() {
    local wanted=$1 status=0
    shift
    "$@" || status=$?
    [[ $status -eq $wanted ]]
}
ours() {
    find / -xdev \( -path /proc -o -path /sys -o -path /packages -o -path /trial \) -prune -o \
        \( -iname '*korvala*' -o -iname '*kvs*' -o -iname '*kvstudio*' -o -name 'KV*' \) -print
}

# Whoever works with it is not root.
mkdir -p /trial
useradd --create-home --home-dir /trial/user user
user() { su user -s /bin/bash -c "cd && export LC_ALL=C.UTF-8 && $*"; }

apt-get update --quiet
is "" ours
install /packages/kvs_*.deb
is "" bash -c "dpkg-query --show --showformat='\${Package}\n' | grep -i qt || true"
user kvs new plant.kvs
user 'kvs tables plant.kvs && kvs check plant.kvs' >/dev/null
fails 2 user kvs nonsense
is tables bash -c 'source /usr/share/bash-completion/completions/kvs
    COMP_WORDS=(kvs ta) COMP_CWORD=1; _kvs; echo "${COMPREPLY[@]}"'
done_with "kvs alone, without Qt: a new project, its tables, its check"

install /packages/korvala-studio_*.deb
project=/usr/share/doc/korvala-studio/examples/Brauerei.kvs
# The studio goes on without an add-in or a font, so what it says decides.
for lcid in 407 409; do
    printf 'Windows Registry Editor Version 5.00\r\n\r\n%s\r\n"LCID"=dword:00000%s\r\n' \
        '[HKEY_LOCAL_MACHINE\SOFTWARE\Brantor GmbH\Korvala\4.0]' $lcid >/trial/machine.reg
    user "QT_QPA_PLATFORM=offscreen kvstudio --registry /trial/machine.reg \
        --screenshot studio-$lcid.png $project 2>messages"
    user '! grep -v "XDG_RUNTIME_DIR\|propagateSizeHints" messages >&2'
done
user '! cmp --silent studio-407.png studio-409.png'
fails 2 user kvstudio --bla
# A desktop's platform and what is loaded only when it is used.
plugins=$(dirname "$(find /usr/lib -path '*qt6/plugins/platforms/libqxcb.so')")/..
for plugin in "$plugins"/platforms/libqxcb.so "$plugins"/imageformats/libqsvg.so; do
    [[ -f $plugin ]]
    is "" bash -c "ldd '$plugin' | grep 'not found' || true"
done
[[ -f /usr/share/qt6/translations/qtbase_de.qm ]]
done_with "korvala-studio: the brewery opened by its add-ins, without a display"

install shared-mime-info desktop-file-utils libglib2.0-bin
user "cp $project brewery.kvs; cp $project other.mdb; cp $project nameless"
type_of() { user "gio info -a standard::content-type $1 | sed -n 's/.*content-type: //p'"; }
is application/x-korvala-project type_of brewery.kvs
is application/vnd.ms-access type_of other.mdb
is application/vnd.ms-access type_of nameless
user gio mime application/x-korvala-project | grep kvstudio.desktop
done_with "A project is known by its suffix and opened by the studio, other databases are not"

install /packages/korvala-addin-dev_*.deb cmake make g++
user "cp -r /usr/share/doc/korvala-addin-dev/examples/addin . &&
    cmake -S addin -B addin/build && cmake --build addin/build"
user "KV_ADDINS=addin/build QT_QPA_PLATFORM=offscreen \
    kvstudio --registry /trial/machine.reg --screenshot notes.png brewery.kvs 2>messages"
user '! cmp --silent notes.png studio-409.png'
user '! grep "Add-in not loaded" messages >&2'
done_with "korvala-addin-dev: the small add-in built and loaded"

apt-get purge --yes --quiet kvs korvala-studio korvala-addin-dev
is "" ours
done_with "Removed, and nothing left behind"
