#!/usr/bin/env bash
# Converts every *.nb under INPUT_DIR with GNU parallel on this machine, one
# nbtext process per notebook: OUTPUT_DIR/<path>.txt (.html with -html, .md
# with -markdown) holds what nbtext wrote, OUTPUT_DIR/<path>.log its log
# lines, and OUTPUT_DIR/joblog one line per job with its exit value (255:
# refused).
# Run again, it converts only the notebooks whose job failed or never ran.
# Extra arguments go to parallel (-j N, --sshloginfile FILE, ...).
#   [NBTEXT=PATH] scripts/nbtext-parallel.sh INPUT_DIR OUTPUT_DIR [-html | -markdown] [parallel options]
# NBTEXT: the converter (default: nbtext on the PATH, else this checkout's build/nbtext).
# Exit status: parallel's, the number of failed jobs (refused notebooks
# count); 255 when it cannot start (no nbtext or parallel, bad arguments).
set -euo pipefail
usage() { sed -n '2,12s/^# \{0,1\}//p' "$0" >&2; exit 255; }
die() { echo "nbtext-parallel: $*" >&2; exit 255; }
[ $# -ge 2 ] || usage
[ -d "$1" ] || die "$1 is not a folder"
input=$1
OUT=$(realpath -m "$2")
shift 2
EXT=txt OPT=
case ${1:-} in
  -html) EXT=html OPT=-html; shift ;;
  -markdown) EXT=md OPT=-markdown; shift ;;
esac

# Everything is checked before the first job: a converter that cannot run
# would otherwise fail every job, with the reasons only in the per-file logs.
here=$(cd "$(dirname "$0")" && pwd)
command -v parallel >/dev/null 2>&1 ||
  die "GNU parallel is missing; install it with (as root): $here/ensure-tools.sh batch"
if [ -z "${NBTEXT:-}" ]; then
  NBTEXT=$(command -v nbtext || true)
  [ -n "$NBTEXT" ] || NBTEXT=$(dirname "$here")/build/nbtext
  [ -x "$NBTEXT" ] || die "no nbtext on the PATH nor at $NBTEXT: build it (make run), install it, or set NBTEXT=PATH"
fi
# The jobs run in INPUT_DIR: a relative path would no longer name it there.
case $NBTEXT in
  */*) [ -x "$NBTEXT" ] && NBTEXT=$(realpath "$NBTEXT") || die "NBTEXT=$NBTEXT is not an executable file" ;;
  *) found=$(command -v "$NBTEXT") || die "NBTEXT=$NBTEXT: no such command on the PATH"
     NBTEXT=$found ;;
esac
probe=$(printf 'Notebook[{Cell["nbtext-parallel", "Text"]}]\n' | "$NBTEXT" 2>&1 >/dev/null) ||
  die "NBTEXT=$NBTEXT does not convert a one-cell notebook (status $?)${probe:+: $probe}"

export OUT EXT OPT NBTEXT
mkdir -p "$OUT"
cd "$input"
find . -name '*.nb' -type f -print0 | sort -z |
  parallel -0 --will-cite --joblog "$OUT/joblog" --resume-failed "$@" \
    'mkdir -p "$OUT"/{//} && "$NBTEXT" $OPT {} >"$OUT"/{}.$EXT 2>"$OUT"/{}.log'
