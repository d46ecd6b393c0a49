#!/usr/bin/env bash
# Walks through docs/tutorial.md in the running program, key by key, and takes its pictures.
#
#   scripts/tutorial-pictures.sh BUILD_FOLDER FOLDER
#
# What the walk must find is asked of the project on the way: a step that does something else than the
# text says ends with an error.
set -euo pipefail
build=$(cd "${1:?usage: tutorial-pictures.sh BUILD_FOLDER FOLDER}" && pwd)
pictures=$(cd "${2:?usage: tutorial-pictures.sh BUILD_FOLDER FOLDER}" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/screen.sh
source scripts/screen.sh

# What is stored: `archives` or `trends`.
stored() {
    "$build/bin/kvs" export --sheet "$1" --language en --separator comma "$folder/brewery.kvs"
}

cp examples/Brauerei.kvs "$folder/brewery.kvs"
start_screen 1060x680
start_studio "$folder/brewery.kvs" 1033 1040 640

# A first archive
keys Down F8
picture tutorial-start
keys F9
window '^Archive$'
text 'Water treatment'
keys alt+y Down ctrl+Tab alt+i
text water
keys alt+g d alt+b
text 30
picture tutorial-archive
keys Return
stored archives | grep -q 'Water treatment.*Continuation File.*water' || give_up "the archive is another"

# A first trend
keys F6 F8
text 'Fresh water flow'
keys Tab space
window 'Choose variable'
text frischwasser
keys Down Down
picture tutorial-variable
keys Return

# Three more at once
keys ctrl+F8
window 'Trends by pattern'
text 'Feed water {temperature|pressure|pH}'
keys Tab
text 'Dampf.Speisewasser.{Temperatur|Druck|pH}'
keys Tab
text 'Speisewasser {Temperatur|Druck|pH}'
keys Tab
text 'Feed water {temperature|pressure|pH}'
picture tutorial-pattern
keys alt+m
[[ $(stored trends | grep -c '^[^,]*,Water treatment,') -eq 4 ]] || give_up "there are not four trends"
keys ctrl+z
[[ $(stored trends | grep -c '^[^,]*,Water treatment,') -eq 1 ]] || give_up "the step was not taken back"
keys ctrl+y
picture tutorial-trends

# What the check finds
keys F4
picture tutorial-findings
