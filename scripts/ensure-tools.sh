#!/usr/bin/env bash
# Installs the tools a build needs when the machine lacks them (Debian, as root).
# Usage: scripts/ensure-tools.sh [native] [cross] [package] [batch]
set -euo pipefail

need=()
want() { # want COMMAND PACKAGE
  command -v "$1" >/dev/null 2>&1 || need+=("$2")
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
      ;;
    cross)
      want arm-linux-gnueabihf-g++ g++-arm-linux-gnueabihf
      want qemu-arm qemu-user
      ;;
    package)
      want dpkg-shlibdeps dpkg-dev
      want file file          # cpack's Debian generator reads binaries with it
      want man man-db
      want lintian lintian    # CI checks the package with it
      ;;
    batch)
      # The batch job runs on Debian's own Python with its Dask and tqdm.
      want /usr/bin/python3 python3
      /usr/bin/python3 -c 'import distributed, tqdm' >/dev/null 2>&1 ||
        need+=(python3-distributed python3-tqdm)
      want parallel parallel
      ;;
    *) echo "ensure-tools: unknown set '$what'" >&2; exit 2 ;;
  esac
done
[ ${#need[@]} -eq 0 ] && exit 0

echo "Installing: ${need[*]}" >&2
SUDO=""
[ "$(id -u)" = 0 ] || SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq "${need[@]}" >/dev/null
