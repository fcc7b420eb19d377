# Shared by the indexer tests (sourced): where things are, skipping,
# installing the indexer, choosing the words and timing the indexing.
set -euo pipefail
ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
NBTEXT=${NBTEXT:-$ROOT/build/nbtext}
CORPUS=$("$ROOT/scripts/corpus-dir.sh")
WORDS="python3 $ROOT/tests/integration/corpus_words.py"

skip() { echo "SKIPPED: $*"; exit 0; }
fail() { echo "FAILED: $*"; exit 1; }

# need SET COMMAND...: installs scripts/ensure-tools.sh's SET when it lacks
# something, and skips the test when a command is still missing.
need() {
  local set=$1 command
  shift
  "$ROOT/scripts/ensure-tools.sh" "$set" || skip "scripts/ensure-tools.sh could not install the $set tools"
  for command; do
    command -v "$command" >/dev/null 2>&1 || skip "$command is missing after installing the $set tools"
  done
}

# Converts the corpus, links its notebooks into $WORK/docs and picks the words.
prepare_words() {
  [ -x "$NBTEXT" ] || fail "$NBTEXT is not built (run make test first)"
  [ -f "$CORPUS/MANIFEST.tsv" ] || skip "no corpus at $CORPUS"
  need native python3
  WORK=$(mktemp -d "${TMPDIR:-/tmp}/nbtext-index.XXXXXX")
  [ -n "${KEEP_WORK:-}" ] && echo "Work folder: $WORK" || trap 'rm -rf "$WORK"' EXIT
  $WORDS prepare "$NBTEXT" "$CORPUS" "$WORK" || fail "could not choose the words"
}

# timed WHAT LOG COMMAND...: runs the command, its output to LOG, and reports its time.
timed() {
  local what=$1 log=$2 start=$EPOCHREALTIME; shift 2
  "$@" >"$log" 2>&1 || { tail -20 "$log"; fail "$what exited with status $?"; }
  echo "$what: $(ls "$WORK/docs" | wc -l) notebooks in $(python3 -c "print(f'{$EPOCHREALTIME - $start:.1f}')") s"
}
