#!/usr/bin/env bash
# CI after the builds: the manual page renders cleanly; the Debian package
# builds, passes lintian without an error or a warning, holds no build path,
# installs with dpkg, runs on the sample and removes cleanly; Recoll and omindex index the corpus through nbtext; the
# batch jobs convert the corpus as nbtext does alone.
set -euo pipefail
cd "$(dirname "$0")/.."

echo "=== manual page"
scripts/ensure-tools.sh package
warnings=$(MANWIDTH=80 man --warnings -l docs/nbtext.1 2>&1 >/dev/null)
[ -z "$warnings" ] || { echo "$warnings"; echo "FAILED: docs/nbtext.1 renders with warnings"; exit 1; }

echo "=== Debian package"
make deb
deb=$(ls build-deb/nbtext_*.deb)
version=$(sed -n 's/^project(nbtext VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
for field in "Package: nbtext" "Version: $version" "Section: text" "Depends: .*libc6"; do
  dpkg-deb -f "$deb" | grep -q "^$field" || { dpkg-deb -f "$deb"; echo "FAILED: no '$field' in $deb"; exit 1; }
done
unpacked=$(mktemp -d)
dpkg-deb -x "$deb" "$unpacked"
if grep -rlF "$PWD" "$unpacked"; then echo "FAILED: $deb holds the build path $PWD"; exit 1; fi
rm -rf "$unpacked"
# Errors and warnings fail; the informational tags are shown.
lintian --fail-on error,warning --display-info "$deb" ||
  { echo "FAILED: lintian found errors or warnings in $deb"; exit 1; }

if [ "$(id -u)" != 0 ]; then
  echo "SKIPPED: installing $deb needs root"
elif dpkg -s nbtext >/dev/null 2>&1; then
  echo "SKIPPED: an nbtext package is installed already; not replacing it"
else
  trap 'dpkg -r nbtext >/dev/null 2>&1 || true' EXIT
  dpkg -i "$deb"
  [ "$(command -v nbtext)" = /usr/bin/nbtext ] || { echo "FAILED: nbtext is not on the PATH"; exit 1; }
  for file in /usr/share/man/man1/nbtext.1.gz /usr/share/doc/nbtext/copyright /usr/share/doc/nbtext/changelog.gz; do
    dpkg -L nbtext | grep -qx "$file" || { echo "FAILED: the package lacks $file"; exit 1; }
  done
  # dpkg may be told to leave manual pages out (a minimal image does).
  [ ! -e /usr/share/man/man1/nbtext.1.gz ] || man -w nbtext >/dev/null
  nbtext samples/sample.nb >build-deb/sample.txt 2>build-deb/sample.err
  [ -s build-deb/sample.txt ] && grep -qx "Converting samples/sample.nb" build-deb/sample.err ||
    { echo "FAILED: the installed nbtext did not convert samples/sample.nb"; exit 1; }
  dpkg -r nbtext
  trap - EXIT
  [ ! -e /usr/bin/nbtext ] || { echo "FAILED: dpkg -r left /usr/bin/nbtext"; exit 1; }
  echo "installed, ran and removed $deb"
fi

echo "=== Recoll"
tests/integration/recoll.sh
echo "=== Xapian Omega (omindex)"
tests/integration/omindex.sh
echo "=== batch jobs: Dask and GNU parallel"
tests/integration/batch.sh
