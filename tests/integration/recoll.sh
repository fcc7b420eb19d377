#!/usr/bin/env bash
# Recoll with nbtext as its exec filter for *.nb: indexes the corpus once as
# text/plain and once with -html as text/html, then queries with recollq;
# with HTML it also shows each notebook's title and author.
. "$(dirname "$0")/common.sh"
need recoll recollindex
prepare_words

# index_and_check MODE OUTPUT-TYPE [NBTEXT-OPTION]
index_and_check() {
  local config=$WORK/recoll-$1
  mkdir -p "$config"
  cat >"$config/recoll.conf" <<CONF
topdirs = $WORK/docs
followLinks = 1
noaspell = 1
CONF
  echo '.nb = application/x-notebook' >"$config/mimemap"
  printf '[index]\napplication/x-notebook = exec "%s" %s;mimetype=%s;charset=utf-8\n' \
    "$NBTEXT" "${3:-}" "$2" >"$config/mimeconf"
  timed "recollindex ($1)" "$config/index.log" recollindex -c "$config"
  grep -E '^(filesdone|fileerrors) ' "$config/idxstatus.txt" | tr '\n' ' '; echo
  # -s "": no stem expansion, so a word finds itself and nothing else.
  local status=0
  $WORDS check "$WORK" "$1" recollq -c "$config" -b -s "" || status=1
  # Every notebook with the fields that a result list shows.
  if [ "$1" = html ]; then
    $WORDS heads "$WORK" recoll recollq -c "$config" -n 1000 -F "filename title author" \
      -q mime:application/x-notebook || status=1
  fi
  return $status
}

status=0
index_and_check text text/plain || status=1
index_and_check html text/html -html || status=1
[ $status = 0 ] || fail "recoll found the wrong notebooks"
