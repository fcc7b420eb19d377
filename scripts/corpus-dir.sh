#!/bin/sh
# Prints the folder of the shared notebook corpus for the scripts: $CORPUS
# when set, else the NBTEXT_CORPUS_DIR that the build tree was configured
# with (BUILD_DIR, default build/), else that variable's default, the
# corpus of ../shared beside the checkout.
#   scripts/corpus-dir.sh [BUILD_DIR]
root=$(cd "$(dirname "$0")/.." && pwd)
if [ -n "${CORPUS:-}" ]; then
  echo "$CORPUS"
  exit 0
fi
dir=$(sed -n 's/^NBTEXT_CORPUS_DIR:PATH=//p' "${1:-$root/build}/CMakeCache.txt" 2>/dev/null)
echo "${dir:-$root/../shared/corpus}"
