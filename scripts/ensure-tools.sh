#!/usr/bin/env bash
# The project's one installer: installs with apt-get (as root, else through
# sudo) the Debian packages of each named set whose commands are missing,
# and says what it installs before it starts. Every other script calls it.
# Usage: scripts/ensure-tools.sh [SET...]   (default: native)
#   native   the build and the test suite: cmake, g++, make, bison, GoogleTest, python3,
#            cmark-gfm and html5lib (the Markdown and HTML checks over the corpus)
#   cross    the armhf cross build and qemu-arm for its tests
#   package  make deb and its checks: dpkg-dev, file, man-db, lintian
#   batch    scripts/nbtext-batch.py (Dask, tqdm) and scripts/nbtext-parallel.sh
#   recoll, omindex, browser   the indexer and browser checks
#   bench    bench/run.py
#   fresh    scripts/fresh-machine-check.sh: mmdebstrap
# Exit status: 0 when every tool is there afterwards, 1 when something could
# not be installed, 2 on an unknown set.
set -euo pipefail

need=()
want() { # want COMMAND PACKAGE...
  local command=$1
  shift
  command -v "$command" >/dev/null 2>&1 || need+=("$@")
}
for what in "${@:-native}"; do
  case "$what" in
    native)
      want cmake cmake
      want g++ g++
      want make make
      want bison bison
      [ -f /usr/src/googletest/CMakeLists.txt ] || need+=(googletest)
      want python3 python3    # checks the committed name tables against the generator
      want cmark-gfm cmark-gfm  # renders the Markdown of the corpus for its checks
      # The strict HTML5 parser of the page checks, for Debian's own Python.
      want /usr/bin/python3 python3
      /usr/bin/python3 -c 'import html5lib' >/dev/null 2>&1 || need+=(python3-html5lib)
      ;;
    cross)
      want arm-linux-gnueabihf-g++ g++-arm-linux-gnueabihf libc6-dev-armhf-cross
      want qemu-arm qemu-user
      ;;
    package)
      want dpkg-shlibdeps dpkg-dev
      want file file          # cpack's Debian generator reads binaries with it
      want man man-db
      want lintian lintian
      ;;
    batch)
      # The batch job runs on Debian's own Python with its Dask and tqdm.
      want /usr/bin/python3 python3
      /usr/bin/python3 -c 'import distributed, tqdm' >/dev/null 2>&1 ||
        need+=(python3-distributed python3-tqdm)
      want parallel parallel
      want pgrep procps       # the integration test finds a worker to kill with it
      ;;
    recoll) want recollindex recollcmd; want python3 python3 ;;
    omindex) want omindex xapian-omega; want quest xapian-tools; want python3 python3 ;;
    browser) command -v chromium-browser >/dev/null 2>&1 || want chromium chromium ;;
    bench) want /usr/bin/time time ;;   # bench/run.py's peak memory
    fresh) want mmdebstrap mmdebstrap ;;
    *) echo "ensure-tools: unknown set '$what'" >&2; exit 2 ;;
  esac
done
[ ${#need[@]} -eq 0 ] && exit 0

echo "Installing with apt-get: ${need[*]}" >&2
SUDO=""
[ "$(id -u)" = 0 ] || SUDO="sudo"
command -v apt-get >/dev/null 2>&1 || { echo "ensure-tools: no apt-get here to install ${need[*]}" >&2; exit 1; }
export DEBIAN_FRONTEND=noninteractive
# Recommended packages stay out: Dask alone would bring pandas and numpy.
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${need[@]}" >/dev/null
