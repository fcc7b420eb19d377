#!/usr/bin/env bash
# Tries the project as a new user would, on a bare Debian 12 root that holds
# only make, git and ca-certificates: clones this checkout's committed HEAD
# into it with ../shared beside it, then runs `make run`, `make test` and the
# package and integration steps inside it. Every tool those steps need must
# be installed by the project's own files, so the check fails on any error
# and on any step or test that reports itself skipped. Last, `make run` in a
# second clone without ../shared, now that the tools are there: the time a
# user with the build tools installed waits. Needs root.
#   scripts/fresh-machine-check.sh [--keep]
set -euo pipefail
cd "$(dirname "$0")/.."
REPO=$PWD
SHARED=$(realpath -m ../shared)
KEEP=${1:-}

if [ ! -f "$SHARED/corpus/MANIFEST.tsv" ]; then
  echo "SKIPPED: no ../shared beside the checkout; the fresh machine needs it as the project does"
  exit 0
fi
[ "$(id -u)" = 0 ] || { echo "FAILED: a fresh root needs root (mmdebstrap, chroot, mount)"; exit 1; }
scripts/ensure-tools.sh fresh

FRESH=$(mktemp -d "${TMPDIR:-/var/tmp}/nbtext-fresh.XXXXXX")
LOG=$FRESH/check.log
mounted=()
cleanup() {
  local m
  for ((i = ${#mounted[@]} - 1; i >= 0; i--)); do umount -l "${mounted[i]}" 2>/dev/null || true; done
  if [ -n "$KEEP" ]; then echo "Kept the root at $FRESH"; return; fi
  # Never remove through a mount that is still there: it could reach the host.
  if findmnt -rn -o TARGET | grep -q "^$FRESH"; then
    echo "Left $FRESH in place: something is still mounted in it"
  else
    rm -rf --one-file-system "$FRESH"
  fi
}
trap cleanup EXIT
bind() { # bind SOURCE TARGET [ro]
  mkdir -p "$2"
  mount --bind "$1" "$2"
  mounted+=("$2")
  [ -z "${3:-}" ] || mount -o remount,bind,ro "$2"
}

echo "=== a bare Debian 12 root in $FRESH"
start=$SECONDS
mmdebstrap --quiet --variant=apt --include=make,git,ca-certificates bookworm "$FRESH"
echo "made in $((SECONDS - start)) s"
git clone -q "$REPO" "$FRESH/work/nbtext"
bind "$SHARED" "$FRESH/work/shared" ro
bind /proc "$FRESH/proc"
bind /sys "$FRESH/sys"
bind /dev "$FRESH/dev"
bind /dev/pts "$FRESH/dev/pts"
cp /etc/resolv.conf "$FRESH/etc/resolv.conf"

# One step inside the root, in CHECKOUT, timed (into TOOK), its output shown
# and kept for the scan.
CHECKOUT=/work/nbtext
inside() {
  local what=$1 begin=$SECONDS status=0
  shift
  echo "=== $what (inside the fresh root)"
  chroot "$FRESH" /usr/bin/env -i HOME=/root TERM=dumb LANG=C.UTF-8 \
    PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
    /bin/bash -c "cd $CHECKOUT && $*" 2>&1 | tee -a "$LOG" || status=$?
  [ "$status" = 0 ] || { echo "FAILED: $what exited with status $status"; exit 1; }
  TOOK=$((SECONDS - begin))
  echo "$what: $TOOK s"
}
: >"$LOG"
inside "make run" make run
bare_run=$TOOK
inside "make test" make test
inside "package and integration steps" .ci/package-and-integration.sh
CHECKOUT=/opt/again/nbtext
git clone -q "$REPO" "$FRESH$CHECKOUT"
inside "make run in a new clone without ../shared, the tools installed" make run

# ctest marks a skipped test "***Skipped" or "Not Run"; our scripts print SKIPPED.
if grep -nE 'SKIPPED|\*\*\*Skipped|Not Run|\(Skipped\)' "$LOG"; then
  echo "FAILED: a step or test was skipped on the fresh machine"
  exit 1
fi
echo "make run: $bare_run s on the bare machine (installing the build tools), $TOOK s with them installed"
echo "fresh machine: every step ran, none skipped ($((SECONDS - start)) s)"
