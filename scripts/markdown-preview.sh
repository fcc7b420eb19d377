#!/usr/bin/env bash
# Shows a notebook's Markdown as a Markdown reader would: nbtext -markdown,
# its front matter taken off, rendered by cmark-gfm (GitHub's extensions, raw
# HTML left out) into a minimal page, and that page shot by headless Chromium.
# The page stays beside the picture as OUT.html.
#   [NBTEXT=PATH] scripts/markdown-preview.sh NOTEBOOK OUT.png [WIDTH,HEIGHT]
# NBTEXT: the converter (default: nbtext on the PATH, else this checkout's
# build/nbtext). WIDTH,HEIGHT: the window, 1000,1600 unless given.
# Exit status: 0 with the picture written, 1 when a step failed.
set -euo pipefail
[ $# -ge 2 ] || { sed -n '2,9s/^# \{0,1\}//p' "$0" >&2; exit 1; }
notebook=$1 out=$(realpath -m "$2") size=${3:-1000,1600}
here=$(cd "$(dirname "$0")" && pwd)
die() { echo "markdown-preview: $*" >&2; exit 1; }

NBTEXT=${NBTEXT:-$(command -v nbtext || echo "$(dirname "$here")/build/nbtext")}
[ -x "$NBTEXT" ] || die "no nbtext at $NBTEXT: build it (make run) or set NBTEXT=PATH"
command -v cmark-gfm >/dev/null || die "cmark-gfm is missing: $here/ensure-tools.sh native installs it"
browser=$(command -v chromium || command -v chromium-browser) ||
  die "Chromium is missing: $here/ensure-tools.sh browser installs it"

page=${out%.png}.html
markdown=$("$NBTEXT" -markdown "$notebook" 2>/dev/null) || die "nbtext -markdown $notebook exited with status $?"
{
  printf '<!DOCTYPE html>\n<html><head><meta charset="utf-8">\n<title>%s</title>\n' "$(basename "$notebook")"
  printf '<style>body { max-width: 60em; margin: 1em auto; font-family: sans-serif; }\n'
  printf 'pre { background: #f4f4f4; padding: 0.5em; } table { border-collapse: collapse; }\n'
  printf 'th, td { border: 1px solid #ccc; padding: 0.2em 0.5em; }</style>\n</head><body>\n'
  # The front matter is the block between a first line "---" and the next "---".
  printf '%s\n' "$markdown" |
    awk 'NR == 1 && $0 == "---" { skip = 1; next } skip && $0 == "---" { skip = 0; next } !skip' |
    cmark-gfm --extension table --extension autolink --extension strikethrough --to html
  printf '</body></html>\n'
} >"$page"

profile=$(mktemp -d "${TMPDIR:-/tmp}/markdown-preview.XXXXXX")
trap 'rm -rf "$profile"' EXIT
rm -f "$out"
"$browser" --headless --no-sandbox --disable-gpu --hide-scrollbars --user-data-dir="$profile" \
  --screenshot="$out" --window-size="$size" "file://$page" >"$profile/log" 2>&1 || true
[ -s "$out" ] || { tail -5 "$profile/log" >&2; die "Chromium wrote no picture"; }
echo "$out (page: $page)"
