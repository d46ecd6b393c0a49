#!/usr/bin/env bash
# Makes the pictures of docs/images anew from the running program, without a display.
#
#   scripts/make-pictures.sh BUILD_FOLDER
#
# The tests that look at windows keep what they see in the folder that KV_SCREENSHOTS names; the
# studio leaves its own with --screenshot; other windows and the tutorial are gone through by keys.
# A picture that nobody makes any more is an error.
set -euo pipefail
build=$(cd "${1:?usage: make-pictures.sh BUILD_FOLDER}" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/.."

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 KV_SCREENSHOTS=$folder

picture_tests() {
    local program=$1 filter=$2
    "$build/bin/$program" --gtest_brief=1 --gtest_filter="$filter" >"$folder/log" 2>&1 || {
        cat "$folder/log" >&2
        exit 1
    }
}
picture_tests archive_dialog_test '*Look*'
picture_tests trend_dialog_test '*Look*'
picture_tests options_dialog_test '*NoTextIsCutOff*'
picture_tests help_test 'HelpWindowTest.*'
picture_tests report_test 'ReportTest.*'
picture_tests alone/addin_test 'EditorLayoutTest.Looks*:EditorProjectTableTest.Looks*'

for language in de:1031 en:1033; do
    registry=$folder/${language%:*}.reg
    {
        printf 'Windows Registry Editor Version 5.00\r\n\r\n'
        printf '[HKEY_LOCAL_MACHINE\\SOFTWARE\\Brantor GmbH\\Korvala\\4.0]\r\n'
        printf '"LCID"=dword:%08x\r\n' "${language#*:}"
    } >"$registry"
    XDG_STATE_HOME=$folder "$build/bin/kvstudio" --registry "$registry" \
        --screenshot "$folder/studio-${language%:*}.png" examples/Brauerei.kvs 2>/dev/null
done

scripts/window-pictures.sh "$build" "$folder"
scripts/tutorial-pictures.sh "$build" "$folder"

# What docs/images shows of all that.
missing=0
for picture in docs/images/*.png; do
    name=$(basename "$picture")
    if [[ -f $folder/$name ]]; then
        cp "$folder/$name" "$picture"
    else
        echo "make-pictures: nothing makes $picture" >&2
        missing=1
    fi
done
[[ $missing -eq 0 ]] || exit 1
echo "docs/images: $(find docs/images -name '*.png' | wc -l) pictures made"
