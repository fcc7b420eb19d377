#!/usr/bin/env bash
# Converts every *.nb under INPUT_DIR with GNU parallel on this machine, one
# nbtext process per notebook: OUTPUT_DIR/<path>.txt (or .html with -html)
# holds what nbtext wrote, OUTPUT_DIR/<path>.log its log lines, and
# OUTPUT_DIR/joblog one line per job with its exit value (255: refused).
# Run again, it converts only the notebooks whose job failed or never ran.
# Extra arguments go to parallel (-j N, --sshloginfile FILE, ...).
#   scripts/nbtext-parallel.sh INPUT_DIR OUTPUT_DIR [-html] [parallel options]
# Exit status: parallel's, the number of failed jobs (refused notebooks count).
set -euo pipefail
[ $# -ge 2 ] || { sed -n '2,9s/^# \{0,1\}//p' "$0" >&2; exit 2; }
input=$1
OUT=$(realpath -m "$2")
shift 2
EXT=txt OPT=
if [ "${1:-}" = -html ]; then EXT=html OPT=-html; shift; fi
NBTEXT=${NBTEXT:-nbtext}
export OUT EXT OPT NBTEXT
mkdir -p "$OUT"
cd "$input"
find . -name '*.nb' -type f -print0 | sort -z |
  parallel -0 --will-cite --joblog "$OUT/joblog" --resume-failed "$@" \
    'mkdir -p "$OUT"/{//} && $NBTEXT $OPT {} >"$OUT"/{}.$EXT 2>"$OUT"/{}.log'
