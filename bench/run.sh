#!/usr/bin/env bash
# Whole-process benchmarks of nbtext on notebooks built from the shared
# corpus, with the figures that the README's Performance section quotes:
#   1. a 100 MB notebook: nbtext (text and -html) against `wc -w`, the floor
#      of work done once per character;
#   2. a 10 KB notebook of the corpus: nbtext against `cat`, for the
#      start-up cost;
#   3. peak resident memory at 1, 10 and 100 MB;
#   4. linearity: one 1 MB notebook's cells repeated 10 and 100 times, so
#      that the same material is measured at both sizes.
# Usage: bench/run.sh [BUILD_DIR]   (default: build; run `make build` first)
# The notebooks go to BUILD_DIR/bench-data (or $NBTEXT_BENCH_DATA) and are
# reused by later runs. Timings are wall-clock medians: run it on a quiet
# machine (check `uptime`).
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD=${1:-build}
NBTEXT=$(realpath "$BUILD/nbtext")
DATA=${NBTEXT_BENCH_DATA:-$BUILD/bench-data}

[ -x "$NBTEXT" ] || { echo "bench: $NBTEXT is missing; run make build first" >&2; exit 2; }
need=()
[ -x /usr/bin/time ] || need+=(time)
command -v python3 >/dev/null 2>&1 || need+=(python3)
if [ ${#need[@]} -gt 0 ]; then
  echo "Installing: ${need[*]}" >&2
  SUDO=""
  [ "$(id -u)" = 0 ] || SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${need[@]}" >/dev/null
fi

SHARED=${NBTEXT_SHARED:-../shared}
GENERATOR=$SHARED/tools/make-big-notebook.py
[ -f "$GENERATOR" ] || { echo "bench: no generator at $GENERATOR (set NBTEXT_SHARED)" >&2; exit 2; }
mkdir -p "$DATA"
converts() { "$NBTEXT" "$1" >/dev/null 2>&1 || { echo "bench: nbtext cannot convert $1" >&2; exit 1; }; }
notebook() { # notebook MEGABYTES: the path of a notebook of that size, from the generator
  local file="$DATA/notebook-$1MB.nb"
  [ -s "$file" ] || { python3 "$GENERATOR" "$file" "$1" >&2 && converts "$file"; }
  echo "$file"
}
repeated() { # repeated TIMES: the 1 MB notebook's cells TIMES over, in one notebook
  local file="$DATA/repeat-$1x1MB.nb"
  [ -s "$file" ] || { python3 - "$MB1" "$file" "$1" <<'PY'
import sys
text = open(sys.argv[1], encoding="utf-8", errors="surrogateescape", newline="").read()
head, tail = "Notebook[{\n", "\n}]\n"          # the generator's frame around its cells
assert text.startswith(head) and text.endswith(tail), "unexpected generator output"
cells = text[len(head):-len(tail)]
with open(sys.argv[2], "w", encoding="utf-8", errors="surrogateescape", newline="") as f:
    f.write(head + ",\n".join([cells] * int(sys.argv[3])) + tail)
PY
  converts "$file"; }
  echo "$file"
}
# The generator's smallest output is one corpus notebook's cells (200 KB):
# the small file is a real notebook of the corpus, read in place.
SMALL="$SHARED/corpus/077-doc-reference-symbol-page.nb"
MB1=$(notebook 1)
MB10=$(notebook 10)
MB100=$(notebook 100)
REP10=$(repeated 10)
REP100=$(repeated 100)

ratio() { python3 -c 'import sys; print(f"{float(sys.argv[1]) / float(sys.argv[2]):.2f}")' "$1" "$2"; }
# megabytes (10^6 bytes) of FILE per SECONDS
rate() { python3 -c 'import os,sys; print(f"{os.path.getsize(sys.argv[1]) / 1e6 / float(sys.argv[2]):.0f}")' "$1" "$2"; }
peak() { /usr/bin/time -f %M "$@" 2>&1 >/dev/null | tail -n 1; } # KB
# interleaved RUNS COMMAND...: the median wall-clock SECONDS of each command,
# one per line, with the commands run in turn, RUNS rounds after one warm-up
# round, in a new order each round. A virtual machine's speed drifts from one
# second to the next, and a run that follows one which freed much memory pays
# more for its own page faults; taking the commands in turn, in shuffled
# order, lets both fall on all of them alike, so that their ratios hold where
# consecutive batches of runs of one command would not.
interleaved() {
  python3 - "$@" <<'PY'
import os, random, shlex, statistics, sys, time
runs, commands = int(sys.argv[1]), [shlex.split(c) for c in sys.argv[2:]]
order = random.Random(1)
null = os.open(os.devnull, os.O_WRONLY)
times = [[] for _ in commands]
for round in range(runs + 1):
    for i in order.sample(range(len(commands)), len(commands)):
        argv = commands[i]
        start = time.perf_counter()
        pid = os.posix_spawnp(argv[0], argv, os.environ, file_actions=[
            (os.POSIX_SPAWN_DUP2, null, 1), (os.POSIX_SPAWN_DUP2, null, 2)])
        _, status = os.waitpid(pid, 0)
        if round:
            times[i].append(time.perf_counter() - start)
        if os.waitstatus_to_exitcode(status) != 0:
            sys.exit(f"bench: {shlex.join(argv)} failed")
for t in times:
    print(statistics.median(t))
PY
}

echo "== machine: $(nproc) cores, load $(cut -d' ' -f1-3 /proc/loadavg)"
echo
echo "== 1. Throughput on $(basename "$MB100") ($(stat -c %s "$MB100") bytes)"
{ read -r wc; read -r text; read -r html; } < <(interleaved 7 "wc -w $MB100" "$NBTEXT $MB100" "$NBTEXT -html $MB100")
printf '%-12s %8.3f s %6s MB/s\n' "wc -w" "$wc" "$(rate "$MB100" "$wc")" \
  "nbtext" "$text" "$(rate "$MB100" "$text")" "nbtext -html" "$html" "$(rate "$MB100" "$html")"
echo "text / wc -w:  $(ratio "$text" "$wc")   (target <= 3)"
echo "html / text:   $(ratio "$html" "$text")   (target <= 1.3)"
echo
echo "== 2. Start-up on $(basename "$SMALL") ($(stat -c %s "$SMALL") bytes)"
{ read -r cat; read -r small; } < <(interleaved 300 "cat $SMALL" "$NBTEXT $SMALL")
printf '%-12s %8.2f ms\n' "cat" "$(python3 -c "print($cat * 1e3)")" "nbtext" "$(python3 -c "print($small * 1e3)")"
echo "nbtext / cat:  $(ratio "$small" "$cat")   (target <= 3)"
echo
echo "== 3. Peak memory"
printf '%-22s %12s %10s %10s\n' notebook bytes "peak KB" "peak/size"
for file in "$MB1" "$MB10" "$MB100"; do
  size=$(stat -c %s "$file")
  kb=$(peak "$NBTEXT" "$file")
  printf '%-22s %12d %10d %10s\n' "$(basename "$file")" "$size" "$kb" "$(ratio "$((kb * 1024))" "$size")"
done
echo "(target: peak/size <= 2 at 100 MB)"
echo
echo "== 4. Linearity: the same 1 MB of cells, 10 and 100 times"
{ read -r t10; read -r t100; } < <(interleaved 7 "$NBTEXT $REP10" "$NBTEXT $REP100")
ms10=$(python3 -c "print($t10 * 1e3 / ($(stat -c %s "$REP10") / 1e6))")
ms100=$(python3 -c "print($t100 * 1e3 / ($(stat -c %s "$REP100") / 1e6))")
printf '%-22s %10.1f ms/MB\n' "$(basename "$REP10")" "$ms10" "$(basename "$REP100")" "$ms100"
echo "100x / 10x:    $(ratio "$ms100" "$ms10")   (target: within 20 %, 0.8 to 1.2)"
