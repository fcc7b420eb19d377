#!/usr/bin/env bash
# How whole collections convert on this machine: the corpus repeated to about
# TARGET_MB megabytes (hard links, so it costs no disk), converted by nbtext
# serially (one process per notebook, in a shell loop), by the Dask batch job
# with 1 and 2 local workers, and by the GNU parallel recipe with 2 jobs; then
# the same over many small notebooks, for the cost each tool adds per file.
#   bench/batch-scale.sh [NBTEXT] [TARGET_MB] [SMALL_FILES]
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/.." && pwd)
export NBTEXT=$(realpath "${1:-$ROOT/build/nbtext}")
TARGET_MB=${2:-400}
SMALL_FILES=${3:-2000}
CORPUS=$("$ROOT/scripts/corpus-dir.sh")
[ -f "$CORPUS/MANIFEST.tsv" ] || { echo "SKIPPED: no corpus at $CORPUS"; exit 0; }
"$ROOT/scripts/ensure-tools.sh" batch
WORK=$(mktemp -d "${TMPDIR:-/var/tmp}/nbtext-scale.XXXXXX")
trap 'rm -rf "$WORK"' EXIT

corpus_bytes=$(find "$CORPUS" -name '*.nb' -printf '%s\n' | awk '{ s += $1 } END { print s }')
copies=$(( (TARGET_MB * 1000000 + corpus_bytes - 1) / corpus_bytes ))
for i in $(seq -w "$copies"); do
  mkdir -p "$WORK/big/$i"
  cp -l "$CORPUS"/*.nb "$WORK/big/$i/" 2>/dev/null || cp "$CORPUS"/*.nb "$WORK/big/$i/"
done
# The small notebooks: one short text cell each, all different.
mkdir -p "$WORK/small" "$WORK/out"
for i in $(seq -w "$SMALL_FILES"); do
  printf 'Notebook[{Cell["Note %s: a short text cell.", "Text"]}]\n' "$i" >"$WORK/small/n$i.nb"
done

# loops IN OUT K: nbtext once per notebook from K shell loops at once (the
# notebooks dealt out in turn), each output to its own file as the parallel
# recipe writes them. One loop is the serial baseline; two show how far this
# machine's two cores scale one process per notebook, whatever runs them.
loops() {
  (cd "$1" && find . -type d -exec mkdir -p "$2/{}" \; &&
    find . -name '*.nb' | sort >"$2/list" &&
    for k in $(seq 0 $(($3 - 1))); do
      awk -v k="$k" -v n="$3" 'NR % n == k' "$2/list" | while IFS= read -r f; do
        "$NBTEXT" "$f" >"$2/$f.txt" 2>"$2/$f.log" || true
      done &
    done
    wait)
}

# measure NAME IN COMMAND...: the wall time of one run, as files/s and MB/s.
measure() {
  local name=$1 in=$2 files bytes start seconds
  shift 2
  files=$(find "$in" -name '*.nb' | wc -l)
  bytes=$(find "$in" -name '*.nb' -printf '%s\n' | awk '{ s += $1 } END { print s }')
  sync
  start=$EPOCHREALTIME
  "$@" >/dev/null 2>&1 || true
  seconds=$(awk -v a="$start" -v b="$EPOCHREALTIME" 'BEGIN { print b - a }')
  awk -v n="$name" -v f="$files" -v b="$bytes" -v s="$seconds" 'BEGIN {
    printf "| %-26s | %6d | %8.1f | %7.2f | %8.1f | %6.1f | %7.2f |\n", n, f, b / 1e6, s, f / s, b / 1e6 / s, 1000 * s / f }'
  # The Dask job's summary tells how long the cluster took to start.
  started=0
  [ -f "$WORK/out/summary.json" ] &&
    started=$(/usr/bin/python3 -c 'import json, sys; print(json.load(open(sys.argv[1]))["start_seconds"])' "$WORK/out/summary.json")
  TIMES+=("$seconds $started")
  rm -rf "$WORK/out"
  mkdir -p "$WORK/out"
}

header() {
  echo "| $1 | files | MB | seconds | files/s | MB/s | ms/file |"
  echo "|---|---:|---:|---:|---:|---:|---:|"
}
run_all() { # run_all IN
  TIMES=()
  measure "nbtext, serial" "$1" loops "$1" "$WORK/out" 1
  measure "nbtext, 2 loops at once" "$1" loops "$1" "$WORK/out" 2
  measure "Dask job, 1 worker" "$1" "$ROOT/scripts/nbtext-batch.py" "$1" "$WORK/out" --workers 1 --nbtext "$NBTEXT" --quiet
  measure "Dask job, 2 workers" "$1" "$ROOT/scripts/nbtext-batch.py" "$1" "$WORK/out" --workers 2 --nbtext "$NBTEXT" --quiet
  measure "GNU parallel, -j 2" "$1" "$ROOT/scripts/nbtext-parallel.sh" "$1" "$WORK/out" -j 2
  # Scaling: 2 against 1 of the same kind; for Dask, both with the cluster's
  # start (paid once a run) and without it (the conversion itself).
  awk -v l1="${TIMES[0]}" -v l2="${TIMES[1]}" -v d1="${TIMES[2]}" -v d2="${TIMES[3]}" 'BEGIN {
    split(l1, a); split(l2, b); split(d1, c); split(d2, d)
    printf "\nscaling, 2 against 1: shell loops %.2f x; Dask %.2f x, or %.2f x without starting the cluster (%.2f s and %.2f s)\n",
      a[1] / b[1], c[1] / d[1], (c[1] - c[2]) / (d[1] - d[2]), c[2], d[2] }'
}

echo "$(nproc) cores; the corpus $copies times over"
header "whole corpus, ${TARGET_MB} MB"
run_all "$WORK/big"
echo
header "small notebooks"
run_all "$WORK/small"
echo
# What one process per notebook costs before any conversion: starting and
# ending /bin/true, from one shell loop and from two at once.
spawn() { for _ in $(seq "$1"); do /bin/true; done; }
start=$EPOCHREALTIME; spawn 2000; one=$(awk -v a="$start" -v b="$EPOCHREALTIME" 'BEGIN { print b - a }')
start=$EPOCHREALTIME; spawn 1000 & spawn 1000; wait; two=$(awk -v a="$start" -v b="$EPOCHREALTIME" 'BEGIN { print b - a }')
awk -v a="$one" -v b="$two" 'BEGIN {
  printf "2000 starts of /bin/true: %.2f s from one loop, %.2f s from two at once (%.2f x)\n", a, b, a / b }'
