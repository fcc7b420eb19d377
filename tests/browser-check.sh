#!/usr/bin/env bash
# Opens the "-html" page of a control-rich notebook in a real browser and
# checks that the browser shows the notebook's text and builds its controls:
# the page's text as the browser parsed it must hold the given phrases, and
# every input, select and table of the page must have become an element
# (markup that escaped into the text would not). A screenshot is left for a
# person to look at.
#
#   tests/browser-check.sh [nbtext [notebook [screenshot.png [phrase...]]]]
#
# Without a browser, and none can be installed, it says so and exits 0.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
nbtext=${1:-$root/build/nbtext}
notebook=${2:-$("$root/scripts/corpus-dir.sh")/015-demo-author-attractor-checkboxes.nb}
shot=${3:-$root/build/browser-check.png}
shift $(($# < 3 ? $# : 3))
phrases=("$@")
if [ ${#phrases[@]} -eq 0 ]; then
  phrases=("Lorenz Attractor" "The Lorenz attractor, originating in atmospheric science" "Rob Morris" "butterfly")
fi

find_browser() {
  for name in chromium chromium-browser; do
    if command -v "$name" >/dev/null 2>&1; then
      command -v "$name"
      return 0
    fi
  done
  return 1
}

skip() {
  echo "browser-check: skipped: $*"
  exit 0
}

if ! browser=$(find_browser); then
  "$root/scripts/ensure-tools.sh" browser || true
  browser=$(find_browser) || skip "no browser here and none could be installed"
fi
[ -x "$nbtext" ] || { echo "browser-check: no converter at $nbtext (build first)" >&2; exit 1; }
[ -r "$notebook" ] || skip "no notebook at $notebook"

work=$(mktemp -d "${TMPDIR:-/tmp}/nbtext-browser-XXXXXX")
trap 'rm -rf "$work"' EXIT
page=$work/page.html
"$nbtext" -html "$notebook" >"$page" 2>"$work/stderr" ||
  { echo "browser-check: nbtext -html failed on $notebook" >&2; cat "$work/stderr" >&2; exit 1; }

flags=(--headless --no-sandbox --disable-gpu --disable-background-networking --disable-component-update
       --disable-sync --no-first-run --user-data-dir="$work/profile")
timeout 180 "$browser" "${flags[@]}" --dump-dom "file://$page" >"$work/dom.html" 2>"$work/browser.log" ||
  { echo "browser-check: the browser failed to load the page" >&2; tail -20 "$work/browser.log" >&2; exit 1; }
mkdir -p "$(dirname "$shot")"
rm -f "$shot"
timeout 180 "$browser" "${flags[@]}" --window-size=1024,1400 --screenshot="$shot" "file://$page" \
  >>"$work/browser.log" 2>&1 || true

status=0
fail() {
  echo "browser-check: FAIL: $*" >&2
  status=1
}

# The text the browser shows: the parsed document without its tags, with
# the entities that the page writes turned back into characters.
sed -e 's/<[^>]*>/ /g' -e 's/&nbsp;/ /g; s/&lt;/</g; s/&gt;/>/g; s/&quot;/"/g; s/&amp;/\&/g' \
  "$work/dom.html" >"$work/text.txt"
for phrase in "${phrases[@]}"; do
  grep -qF -- "$phrase" "$work/text.txt" || fail "the page does not show \"$phrase\""
done

count() { { grep -o "<$1[ >/]" "$2" || true; } | wc -l; }
for element in input select option table div a; do
  written=$(count "$element" "$page")
  parsed=$(count "$element" "$work/dom.html")
  [ "$written" -eq "$parsed" ] ||
    fail "$written <$element> written but the browser built $parsed"
done
[ "$(count input "$page")" -gt 0 ] || fail "the page has no controls: pick a notebook with some"

if [ -s "$shot" ] && [ "$(wc -c <"$shot")" -gt 4000 ]; then
  echo "browser-check: screenshot in $shot"
else
  fail "no screenshot was made"
fi
[ $status -eq 0 ] && echo "browser-check: OK: $notebook"
exit $status
