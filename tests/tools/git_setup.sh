#!/usr/bin/env bash
# git compares and merges projects by kvs after kvs git-setup.
#
#   git_setup.sh KVS PROJECT
set -euo pipefail

kvs=$(realpath "${1:?}") project=$(realpath "${2:?}")
command -v git >/dev/null || { echo "skipped: git is not installed"; exit 77; }

# A user without settings of his own, and folders whose names need quotes.
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
export HOME=$root GIT_CONFIG_NOSYSTEM=1 GIT_CONFIG_GLOBAL=/dev/null XDG_CONFIG_HOME=$root
export GIT_AUTHOR_NAME=a GIT_AUTHOR_EMAIL=a@b GIT_COMMITTER_NAME=a GIT_COMMITTER_EMAIL=a@b
mkdir "$root/it's here"
cp "$kvs" "$root/it's here/kvs"
kvs="$root/it's here/kvs"
cd "$root/it's here"

fail() { echo "$*" >&2; exit 1; }
change() { "$kvs" set plant.kvs "$@" >/dev/null; }
commit() { git add --all && git commit --quiet -m "$1"; }
trend() { # name: a trend with a text of its own, under the IDs that come next
    printf 'Name,ArchiveID,TextID\r\n%s,1,%s\r\n' "$1" 243 | "$kvs" load plant.kvs TchrTrends - >/dev/null
    printf 'Name,ParentID,L1031\r\nIdx%s,2,%s\r\n' "$1" "$1" | "$kvs" load plant.kvs TidxTexts - >/dev/null
}

if "$kvs" git-setup "$root" 2>/dev/null; then fail "set up where no repository is"; fi
git init --quiet --initial-branch=mine plant
cd plant
"$kvs" git-setup >out
grep -q 'commit it' out || fail "$(cat out)"
"$kvs" git-setup | grep -q 'commit it' && fail "the attributes are there already"
[[ $(wc -l <.gitattributes) == 1 ]] || fail "the attributes are there twice"
ls .git | grep '^kvs-' && fail "something has been left in .git"
rm out
cp "$project" plant.kvs
commit base

# Both sides change fields of one row and add a trend under the same ID.
git checkout --quiet -b theirs
change TchrTrends 'ID = 5' Maximum=12
trend Theirs
commit theirs
git checkout --quiet mine
change TchrTrends 'ID = 5' Comment=mine
trend Mine
commit mine

git diff mine~1 theirs >out
grep -q '^plant.kvs:$' out && grep -q '  Maximum: "14" -> "12"' out || fail "git diff: $(cat out)"
git show --no-ext-diff mine >out
grep -q '^+.*"Mine"' out || fail "git show: $(cat out)"
rm out
[[ $("$kvs" diff /dev/null plant.kvs | grep -c '^trend .*: new$') == 229 ]] ||
    fail "a new project does not show its trends"

joined() {
    # Into files: a pipe whose reader has found its line is a failure of the writer at times.
    "$kvs" dump plant.kvs TchrTrends >"$root/trends"
    "$kvs" dump plant.kvs TidxTexts >"$root/texts"
    grep -q '^5,.*,12,.*,mine' "$root/trends" || fail "$1: a field is lost"
    for name in Mine Theirs; do
        text=$(sed -n "s/^[0-9]*,$name,1,\([0-9]*\),.*/\1/p" "$root/trends")
        grep -q "^$text,2,Idx$name,.*$name" "$root/texts" ||
            fail "$1: the trend $name is lost, or has another's text"
    done
    "$kvs" check plant.kvs >"$root/faults" || fail "$1: $(cat "$root/faults")"
    [[ -z $(git status --porcelain) ]] || fail "$1 leaves $(git status --porcelain)"
}
git checkout --quiet -b merged mine
# Temporary files are made beside the project, not where there may be no room.
TMPDIR=/nowhere git merge --quiet --no-edit theirs || fail "git merge has failed"
joined merge
git checkout --quiet -b rebased mine
git rebase --quiet theirs >/dev/null || fail "git rebase has failed"
joined rebase

# A field that both have changed is a conflict, with a sound file that holds mine.
git checkout --quiet -b other theirs
change TchrTrends 'ID = 5' Comment=other
commit other
git checkout --quiet -b conflict mine
if git merge --no-edit other >"$root/out" 2>&1; then fail "a conflict has been passed over"; fi
grep -q 'theirs: "other"' "$root/out" || fail "the conflict is not told: $(cat "$root/out")"
[[ $(git status --porcelain plant.kvs) == "UU plant.kvs" ]] || fail "the conflict is not marked"
"$kvs" check plant.kvs || fail "the file of a conflict is not sound"
"$kvs" dump plant.kvs TchrTrends >"$root/trends"
grep -q '^5,.*,12,.*,mine' "$root/trends" || fail "the conflict has lost mine"
git merge --abort

# Both sides add the project.
git checkout --quiet --orphan apart
git checkout --quiet other -- plant.kvs .gitattributes
change TchrTrends 'ID = 6' Comment=apart
commit apart
git merge --quiet --no-edit --allow-unrelated-histories rebased >"$root/out" 2>&1 || true
"$kvs" dump plant.kvs TchrTrends >"$root/trends"
grep -q '^6,.*,apart' "$root/trends" && grep -q ',Mine,' "$root/trends" ||
    fail "a project that both have added has lost a side: $(cat "$root/out")"
