#!/usr/bin/env bash
# Xapian Omega's omindex with nbtext as the filter for *.nb: indexes the
# corpus once as plain text and once with -html as HTML, then queries with
# quest. omindex appends the file name to the command and reads its output.
# With HTML it also shows each notebook's title and author.
. "$(dirname "$0")/common.sh"
need omindex omindex quest
prepare_words

# index_and_check MODE OUTPUT-TYPE [NBTEXT-OPTION]
index_and_check() {
  local db=$WORK/omega-$1
  timed "omindex ($1)" "$WORK/omindex-$1.log" omindex --db "$db" --url /notebooks/ --follow \
    --mime-type=nb:application/x-notebook \
    "--filter=application/x-notebook,$2:$(printf %q "$NBTEXT") ${3:-}" "$WORK/docs"
  xapian-delve "$db" | grep 'number of documents' || true
  # -s none: no stemming, so a word finds itself and nothing else.
  local status=0
  $WORDS check "$WORK" "$1" quest -d "$db" -s none -m 1000 || status=1
  # Every notebook (the boolean term of its type) with its stored fields.
  if [ "$1" = html ]; then
    $WORDS heads "$WORK" omega quest -d "$db" -m 1000 -b type:T type:application/x-notebook || status=1
  fi
  return $status
}

status=0
index_and_check text text/plain || status=1
index_and_check html text/html -html || status=1
[ $status = 0 ] || fail "omindex found the wrong notebooks"
