#!/usr/bin/env bash
# Converts every notebook of the corpus with two builds of nbtext and
# reports each output that differs: in text mode, with -html, and with
# -markdown when OLD_NBTEXT lists it in its --help (NEW_NBTEXT must then
# accept it too). Standard output and the exit status are compared byte for
# byte; the log lines on standard error carry the time and are not.
#   scripts/compare-outputs.sh OLD_NBTEXT NEW_NBTEXT [CORPUS_DIR]
# CORPUS_DIR: default what scripts/corpus-dir.sh prints.
# Exit status: 0 when every output is identical, 1 when some differ, 255
# when it cannot run (a converter or the corpus missing).
set -euo pipefail
usage() { sed -n '2,11s/^# \{0,1\}//p' "$0" >&2; exit 255; }
die() { echo "compare-outputs: $*" >&2; exit 255; }
[ $# -ge 2 ] && [ $# -le 3 ] || usage
old=$1 new=$2
corpus=${3:-$("$(dirname "$0")/corpus-dir.sh")}
for nbtext in "$old" "$new"; do
  [ -x "$nbtext" ] || die "$nbtext is not an executable"
done
[ -d "$corpus" ] || die "no corpus folder $corpus"
shopt -s nullglob
notebooks=("$corpus"/*.nb)
[ ${#notebooks[@]} -gt 0 ] || die "no notebook in $corpus"

modes=(text -html)
if "$old" --help 2>&1 | grep -q -e '-markdown'; then
  "$new" --help 2>&1 | grep -q -e '-markdown' || die "$old writes -markdown and $new does not"
  modes+=(-markdown)
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# One run: standard output to $2, its exit status appended to $2.status.
convert() {
  local nbtext=$1 out=$2 mode=$3 notebook=$4 status=0
  if [ "$mode" = text ]; then
    "$nbtext" "$notebook" >"$out" 2>/dev/null || status=$?
  else
    "$nbtext" "$mode" "$notebook" >"$out" 2>/dev/null || status=$?
  fi
  echo "$status" >"$out.status"
}

compared=0 differing=0
for mode in "${modes[@]}"; do
  for notebook in "${notebooks[@]}"; do
    convert "$old" "$work/old" "$mode" "$notebook"
    convert "$new" "$work/new" "$mode" "$notebook"
    compared=$((compared + 1))
    if ! cmp -s "$work/old" "$work/new" || ! cmp -s "$work/old.status" "$work/new.status"; then
      differing=$((differing + 1))
      echo "differs: $mode $(basename "$notebook") (status $(cat "$work/old.status") -> $(cat "$work/new.status"))"
      cmp "$work/old" "$work/new" 2>&1 | sed 's/^/  /' || true
    fi
  done
done
echo "compare-outputs: ${#notebooks[@]} notebooks, modes ${modes[*]}: $compared outputs compared, $differing differ"
[ "$differing" -eq 0 ]
