# Shared by the indexer tests (sourced): where things are, skipping,
# installing the indexer, choosing the words and timing the indexing.
set -euo pipefail
ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
NBTEXT=${NBTEXT:-$ROOT/build/nbtext}
CORPUS=${CORPUS:-$ROOT/../shared/corpus}
WORDS="python3 $ROOT/tests/integration/corpus_words.py"

skip() { echo "SKIPPED: $*"; exit 0; }
fail() { echo "FAILED: $*"; exit 1; }

# need COMMAND PACKAGE...: installs the packages when COMMAND is missing.
need() {
  local command=$1; shift
  command -v "$command" >/dev/null 2>&1 && return 0
  command -v apt-get >/dev/null 2>&1 || skip "$command is missing and there is no apt-get to install $*"
  [ "$(id -u)" = 0 ] || skip "$command is missing and installing $* needs root"
  echo "Installing $*"
  export DEBIAN_FRONTEND=noninteractive
  { apt-get update -qq && apt-get install -y -qq --no-install-recommends "$@" >/dev/null; } ||
    skip "apt-get could not install $*"
  command -v "$command" >/dev/null 2>&1 || skip "$* did not bring $command"
}

# Converts the corpus, links its notebooks into $WORK/docs and picks the words.
prepare_words() {
  [ -x "$NBTEXT" ] || fail "$NBTEXT is not built (run make test first)"
  [ -f "$CORPUS/MANIFEST.tsv" ] || skip "no corpus at $CORPUS"
  need python3 python3
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
