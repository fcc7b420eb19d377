#!/usr/bin/env bash
# The textconv setup of docs/git.md, taken from that page, in a real git
# repository: a changed word of a text cell shows in git diff, git show and
# git log -p as the old and new words, and a refused notebook as it is.
#   git-diff.sh NBTEXT [EMULATOR...]
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/../.." && pwd)
command -v git >/dev/null 2>&1 || { echo "SKIPPED: git is missing"; exit 77; }
fail() { echo "FAILED: $*"; exit 1; }
WORK=$(mktemp -d "${TMPDIR:-/tmp}/nbtext-git.XXXXXX")
[ -n "${KEEP_WORK:-}" ] && echo "Work folder: $WORK" || trap 'rm -rf "$WORK"' EXIT
# The documented lines call nbtext by name: put this build first on the PATH.
mkdir "$WORK/bin"
printf '#!/bin/sh\nexec %s "$@"\n' "${*:2} $(realpath "$1")" >"$WORK/bin/nbtext"
chmod +x "$WORK/bin/nbtext"
export PATH="$WORK/bin:$PATH" HOME="$WORK" GIT_CONFIG_NOSYSTEM=1

cd "$WORK" && git init -q repo && cd repo
git config user.name Tester && git config user.email tester@example.org
grep -x '\*\.nb diff=notebook' "$ROOT/docs/git.md" >.gitattributes || fail "no attribute line in docs/git.md"
setup=$(grep '^git config diff\.notebook\.' "$ROOT/docs/git.md") || fail "no git config lines in docs/git.md"
eval "$setup"

cat >lesson.nb <<'NB'
Notebook[{
Cell["Squares of numbers", "Section"],
Cell["The quick brown fox squares every number it meets.", "Text"],
Cell[BoxData[RowBox[{"f", "[", RowBox[{"x_", "]", ":=", SuperscriptBox["x", "2"]}]}]], "Input"]
}, WindowSize -> {800, 600}]
NB
printf 'not a notebook\n' >notes.nb
git add . && git commit -qm "Add the lesson"
sed -i 's/quick brown fox/slow red fox/' lesson.nb
printf 'still not a notebook\n' >notes.nb
git commit -qam "Change a word"

for view in "git diff HEAD~1" "git show" "git log -p -1"; do
  out=$($view) || fail "$view failed"
  grep -qx -- '-The quick brown fox squares every number it meets\.' <<<"$out" || fail "$view lacks the old words"
  grep -qx -- '+The slow red fox squares every number it meets\.' <<<"$out" || fail "$view lacks the new words"
  ! grep -q 'Cell\[' <<<"$out" || fail "$view shows the raw expression"
  grep -qx -- '+still not a notebook' <<<"$out" || fail "$view lacks the change of the refused file"
done
echo "git shows notebook changes as text"
