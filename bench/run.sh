#!/usr/bin/env bash
# Whole-process benchmarks of nbtext on notebooks built from the shared
# corpus, with the figures that the README's Performance section quotes:
#   1. a 100 MB notebook: nbtext (text and -html) against `wc -w`, the floor
#      of work done once per character;
#   2. a 10 KB notebook of the corpus: nbtext against `cat`, for the
#      start-up cost;
#   3. peak resident memory and time per megabyte at 1, 10 and 100 MB.
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
command -v hyperfine >/dev/null 2>&1 || need+=(hyperfine)
[ -x /usr/bin/time ] || need+=(time)
command -v python3 >/dev/null 2>&1 || need+=(python3)
if [ ${#need[@]} -gt 0 ]; then
  echo "Installing: ${need[*]}" >&2
  SUDO=""
  [ "$(id -u)" = 0 ] || SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${need[@]}" >/dev/null
fi

mkdir -p "$DATA"
notebook() { # notebook MEGABYTES: the path of a notebook of that size
  local file="$DATA/notebook-$1MB.nb"
  if [ ! -s "$file" ]; then
    python3 bench/make-notebook.py "$file" "$1" >&2
    "$NBTEXT" "$file" >/dev/null 2>&1 || { echo "bench: nbtext cannot convert $file" >&2; exit 1; }
  fi
  echo "$file"
}
# The generator's smallest output is one corpus notebook's cells (200 KB):
# the small file is a real notebook of the corpus, read in place.
SMALL="$(python3 bench/make-notebook.py --corpus)/077-doc-reference-symbol-page.nb"
MB1=$(notebook 1)
MB10=$(notebook 10)
MB100=$(notebook 100)

# median SECONDS of each command in a hyperfine JSON export, one per line
medians() { python3 -c 'import json,sys; [print(r["median"]) for r in json.load(open(sys.argv[1]))["results"]]' "$1"; }
ratio() { python3 -c 'import sys; print(f"{float(sys.argv[1]) / float(sys.argv[2]):.2f}")' "$1" "$2"; }
# megabytes (10^6 bytes) of FILE per SECONDS
rate() { python3 -c 'import os,sys; print(f"{os.path.getsize(sys.argv[1]) / 1e6 / float(sys.argv[2]):.0f}")' "$1" "$2"; }
peak() { /usr/bin/time -f %M "$@" 2>&1 >/dev/null | tail -n 1; } # KB
# hyperfine's own notes (a slow first run) would only clutter the figures
bench() { hyperfine -N --style basic --export-json "$JSON" "$@" >/dev/null 2>&1 || { echo "bench: hyperfine $* failed" >&2; exit 1; }; }
JSON=$(mktemp)
trap 'rm -f "$JSON"' EXIT

echo "== machine: $(nproc) cores, load $(cut -d' ' -f1-3 /proc/loadavg)"
echo
echo "== 1. Throughput on $(basename "$MB100") ($(stat -c %s "$MB100") bytes)"
bench --warmup 1 --runs 5 "wc -w $MB100" "$NBTEXT $MB100" "$NBTEXT -html $MB100"
{ read -r wc; read -r text; read -r html; } < <(medians "$JSON")
printf '%-12s %8.3f s %6s MB/s\n' "wc -w" "$wc" "$(rate "$MB100" "$wc")" \
  "nbtext" "$text" "$(rate "$MB100" "$text")" "nbtext -html" "$html" "$(rate "$MB100" "$html")"
echo "text / wc -w:  $(ratio "$text" "$wc")   (target <= 1.5)"
echo "html / text:   $(ratio "$html" "$text")   (target <= 1.3)"
echo
echo "== 2. Start-up on $(basename "$SMALL") ($(stat -c %s "$SMALL") bytes)"
bench --warmup 20 --runs 300 "cat $SMALL" "$NBTEXT $SMALL"
{ read -r cat; read -r small; } < <(medians "$JSON")
printf '%-12s %8.2f ms\n' "cat" "$(python3 -c "print($cat * 1e3)")" "nbtext" "$(python3 -c "print($small * 1e3)")"
echo "nbtext / cat:  $(ratio "$small" "$cat")   (target <= 3)"
echo
echo "== 3. Memory and time per megabyte"
printf '%-22s %12s %10s %10s %10s\n' notebook bytes "peak KB" "peak/size" "ms/MB"
for file in "$MB1" "$MB10" "$MB100"; do
  size=$(stat -c %s "$file")
  kb=$(peak "$NBTEXT" "$file")
  bench --warmup 1 --runs 5 "$NBTEXT $file"
  seconds=$(medians "$JSON")
  printf '%-22s %12d %10d %10s %10.1f\n' "$(basename "$file")" "$size" "$kb" \
    "$(ratio "$((kb * 1024))" "$size")" "$(python3 -c "print($seconds * 1e3 / ($size / 1e6))")"
done
echo "(targets: peak/size <= 3 at 100 MB; ms/MB within 20% from 1 to 100 MB)"
