#!/usr/bin/env bash
# What is written beside the programs says what they do: manuals in both languages name every command
# and option, the help every command, the package needs what the build needs, and what a desktop reads
# is valid. A tool that this machine has not is named, and what it would check is left out.
#
#   papers.sh PROGRAM...
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
failed=0
complain() {
    echo "$*" >&2
    failed=1
}

for program in "$@"; do
    name=$(basename "$program")
    completion=$("$program" --completion fish)
    for page in "$root/packaging/$name.1" "$root/packaging/de/$name.1"; do
        plain=$(sed 's/\\f.//g; s/\\-/-/g' "$page")
        for command in $(sed -n 's/.* -f -a \([a-z-]*\) .*/\1/p' <<<"$completion"); do
            grep -Eq "^\.B[IR]? \"?$command( |$)" <<<"$plain" || complain "$page: no command $command"
        done
        for option in $(sed -n 's/.* -l \([a-z-]*\) .*/\1/p' <<<"$completion" | sort -u); do
            grep -Eq -- "--$option( |\"|$)" <<<"$plain" || complain "$page: no option --$option"
        done
    done
    # The help has a page for the tool, with all its commands.
    for page in "$root"/help/*/"$name.html"; do
        [[ -e $page ]] || continue
        for command in $(sed -n 's/.* -f -a \([a-z-]*\) .*/\1/p' <<<"$completion"); do
            grep -q "<b>$name $command</b>" "$page" || complain "$page: no command $command"
        done
    done
done

for package in $("$root/scripts/install-packages.sh" --list | sed -n 's/^build //p' | tr ' ' '\n' |
    grep -- '-dev$' | grep -v 'gtest\|gmock\|benchmark'); do
    grep -q "^ *$package\b" "$root/debian/control" || complain "debian/control: no $package"
done

# check TOOL ARGUMENT...
check() {
    command -v "$1" >/dev/null || {
        echo "$1 is not here: ${*: -1} is not looked at"
        return
    }
    "$@" || complain "$1 refuses ${*: -1}"
}
check desktop-file-validate "$root/packaging/kvstudio.desktop"
check appstreamcli validate --no-net "$root/packaging/org.example.korvala.kvstudio.metainfo.xml"
check python3 -c 'import sys, xml.dom.minidom as x; x.parse(sys.argv[1])' \
    "$root/packaging/korvala-studio.xml"
exit $failed
