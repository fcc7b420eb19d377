#!/usr/bin/env bash
# The batch jobs over the corpus: scripts/nbtext-batch.py on a local Dask
# cluster of two worker processes (whole, with a worker killed while it works,
# resumed after failures, refused notebooks retried, with the notebooks sent
# to the workers, in HTML and in Markdown), on a running cluster started with
# dask scheduler and dask worker, and the GNU parallel recipe (text and
# Markdown); every output must be what nbtext writes on its own. Both stop
# before any work when nbtext or a module is missing.
. "$(dirname "$0")/common.sh"
[ -x "$NBTEXT" ] || fail "$NBTEXT is not built (run make test first)"
[ -f "$CORPUS/MANIFEST.tsv" ] || skip "no corpus at $CORPUS"
"$ROOT/scripts/ensure-tools.sh" batch
BATCH="$ROOT/scripts/nbtext-batch.py"
CHECK="/usr/bin/python3 $ROOT/tests/integration/batch_check.py"
WORK=$(mktemp -d "${TMPDIR:-/tmp}/nbtext-batch.XXXXXX")
trap 'rm -rf "$WORK"' EXIT
# A copy of the corpus, so that a notebook can be touched.
cp -r "$CORPUS" "$WORK/in"
files=$(find "$WORK/in" -name '*.nb' | wc -l)
refused=$(awk -F'\t' '$3 == "ancient"' "$CORPUS/MANIFEST.tsv" | wc -l)

# expect_refusal STATUS MESSAGE OUTPUT_DIR COMMAND...: the command exits with
# STATUS, says MESSAGE, and leaves no OUTPUT_DIR behind.
expect_refusal() {
  local expected=$1 message=$2 out=$3 status=0
  shift 3
  "$@" >"$WORK/refusal.log" 2>&1 || status=$?
  [ "$status" = "$expected" ] && grep -qF "$message" "$WORK/refusal.log" && [ ! -e "$out" ] || {
    cat "$WORK/refusal.log"
    fail "$* exited with $status (expected $expected, saying '$message', no $out)"
  }
}

echo "--- no nbtext anywhere, no Dask: both jobs stop before any work"
# A copy of the script outside the checkout finds no build/nbtext beside it.
# The PATH holds only the commands the scripts need before they look for nbtext.
mkdir -p "$WORK/lone/scripts" "$WORK/path"
cp "$BATCH" "$ROOT/scripts/nbtext-parallel.sh" "$WORK/lone/scripts/"
for command in bash dirname realpath sed parallel; do ln -s "$(command -v $command)" "$WORK/path/"; done
expect_refusal 2 "no nbtext on the PATH nor at $WORK/lone/build/nbtext" "$WORK/none" \
  env PATH="$WORK/path" /usr/bin/python3 "$WORK/lone/scripts/nbtext-batch.py" "$WORK/in" "$WORK/none"
expect_refusal 2 "$ROOT/scripts/ensure-tools.sh batch" "$WORK/none" \
  /usr/bin/python3 -S "$BATCH" "$WORK/in" "$WORK/none" --nbtext "$NBTEXT"
expect_refusal 255 "no nbtext on the PATH nor at $WORK/lone/build/nbtext" "$WORK/none" \
  env PATH="$WORK/path" "$WORK/lone/scripts/nbtext-parallel.sh" "$WORK/in" "$WORK/none"

echo "--- Dask, every conversion failing, then resumed with nbtext"
# A stand-in that converts the check made before the run but exits 127 on
# every notebook, as a broken installation could.
cat >"$WORK/failing-nbtext" <<WRAP
#!/bin/sh
[ \$# -gt 0 ] && exit 127
exec "$NBTEXT"
WRAP
chmod +x "$WORK/failing-nbtext"
status=0
"$BATCH" "$WORK/in" "$WORK/retried" --workers 2 --nbtext "$WORK/failing-nbtext" --quiet || status=$?
[ "$status" = 1 ] || fail "a run where every conversion failed exited with $status, expected 1"
$CHECK summary "$WORK/retried" files="$files" converted=0 refused=0 failed="$files" ||
  fail "the summary of the failing run is wrong"
"$BATCH" "$WORK/in" "$WORK/retried" --workers 2 --nbtext "$NBTEXT" --quiet || fail "the resumed run failed"
$CHECK summary "$WORK/retried" up_to_date=0 converted=$((files - refused)) refused="$refused" failed=0 ||
  fail "the resumed run did not convert the failed notebooks again"
$CHECK records "$NBTEXT" "$WORK/in" "$WORK/retried" || fail "the records after the failures are wrong"

echo "--- Dask, refused notebooks kept, then tried again with --retry-refused"
"$BATCH" "$WORK/in" "$WORK/retried" --workers 2 --nbtext "$NBTEXT" --quiet || fail "the third run failed"
$CHECK summary "$WORK/retried" up_to_date="$files" converted=0 refused=0 || fail "refused notebooks were tried again"
"$BATCH" "$WORK/in" "$WORK/retried" --workers 2 --nbtext "$NBTEXT" --retry-refused --quiet ||
  fail "the run with --retry-refused failed"
$CHECK summary "$WORK/retried" up_to_date=$((files - refused)) converted=0 refused="$refused" ||
  fail "--retry-refused did not try the refused notebooks again, or tried more"
$CHECK records "$NBTEXT" "$WORK/in" "$WORK/retried" || fail "the records after --retry-refused are wrong"

echo "--- Dask, 2 workers: $files notebooks"
"$BATCH" "$WORK/in" "$WORK/out" --workers 2 --nbtext "$NBTEXT" --quiet || fail "the batch job failed"
$CHECK records "$NBTEXT" "$WORK/in" "$WORK/out" || fail "the batch job's records are wrong"
$CHECK summary "$WORK/out" files="$files" refused="$refused" failed=0 up_to_date=0 ||
  fail "the summary is wrong"

echo "--- resumed: nothing to convert, then one touched notebook"
"$BATCH" "$WORK/in" "$WORK/out" --workers 2 --nbtext "$NBTEXT" --quiet || fail "the second run failed"
$CHECK summary "$WORK/out" up_to_date="$files" converted=0 refused=0 || fail "the second run converted again"
touch "$WORK/in/$(awk -F'\t' '$3 == "recent" { print $1; exit }' "$CORPUS/MANIFEST.tsv")"
"$BATCH" "$WORK/in" "$WORK/out" --workers 2 --nbtext "$NBTEXT" --quiet || fail "the third run failed"
$CHECK summary "$WORK/out" up_to_date=$((files - 1)) converted=1 || fail "the touched notebook was not converted alone"
$CHECK records "$NBTEXT" "$WORK/in" "$WORK/out" || fail "the records after resuming are wrong"

echo "--- a run stopped while writing: what it did not account for goes"
shards=("$WORK"/out/part-*.jsonl)
printf '{"path": "cut sh' >>"${shards[0]}"
echo '{"path": "never accounted for"}' >"$WORK/out/part-orphan.jsonl"
"$BATCH" "$WORK/in" "$WORK/out" --workers 2 --nbtext "$NBTEXT" --quiet || fail "the run after a stop failed"
$CHECK summary "$WORK/out" up_to_date="$files" converted=0 || fail "the run after a stop converted again"
[ ! -e "$WORK/out/part-orphan.jsonl" ] || fail "a shard that no record accounts for was kept"
$CHECK records "$NBTEXT" "$WORK/in" "$WORK/out" || fail "the records after a stop are wrong"
echo "--- a shard cut short: its notebooks are converted again"
lost=$(wc -l <"${shards[0]}")
truncate -s -1 "${shards[0]}"
"$BATCH" "$WORK/in" "$WORK/out" --workers 2 --nbtext "$NBTEXT" --quiet || fail "the run after a lost line failed"
$CHECK summary "$WORK/out" up_to_date=$((files - lost)) failed=0 ||
  fail "the $lost notebooks of a shard cut short were not converted again, or others were"
$CHECK records "$NBTEXT" "$WORK/in" "$WORK/out" || fail "the records after a lost line are wrong"

echo "--- Dask, 2 workers, one killed while it converts"
# Each conversion goes through a wrapper that waits a little first, so that a
# worker is surely busy when its process is killed: the wrapper's parent.
cat >"$WORK/slow-nbtext" <<WRAP
#!/bin/sh
sleep 0.05
exec "$NBTEXT" "\$@"
WRAP
chmod +x "$WORK/slow-nbtext"
"$BATCH" "$WORK/in" "$WORK/killed" --workers 2 --nbtext "$WORK/slow-nbtext" --batch-files 4 --quiet &
job=$!
victim=
# Only a conversion (the wrapper with a file argument, not the probe that
# runs it bare) in a worker (a python process that is not the client) will
# do; the wrapper may end between the look and the kill.
for _ in $(seq 400); do
  wrapper=$(pgrep -f -n "^/bin/sh $WORK/slow-nbtext ." || true)
  if [ -n "$wrapper" ]; then
    victim=$(ps -o ppid= -p "$wrapper" 2>/dev/null | tr -d ' ' || true)
    if [ -n "$victim" ] && grep -q python "/proc/$victim/cmdline" 2>/dev/null &&
      ! grep -q nbtext-batch "/proc/$victim/cmdline" 2>/dev/null && kill -9 "$victim" 2>/dev/null; then
      break
    fi
    victim=
  fi
  sleep 0.02
done
wait $job || fail "the batch job failed after a worker was killed"
[ -n "$victim" ] || fail "no worker was seen converting, none was killed"
echo "killed worker process $victim"
$CHECK records "$NBTEXT" "$WORK/in" "$WORK/killed" || fail "the records are wrong after a worker was killed"

echo "--- Dask, a notebook over the timeout: recorded as failed, the run goes on"
mkdir -p "$WORK/late"
cp "$CORPUS/$(awk -F'\t' '$3 == "recent" { print $1; exit }' "$CORPUS/MANIFEST.tsv")" "$WORK/late/stuck.nb"
cp "$CORPUS/$(awk -F'\t' '$3 == "recent" { print $1 }' "$CORPUS/MANIFEST.tsv" | sed -n 2p)" "$WORK/late/fine.nb"
# The wrapper hangs on one notebook in a child of its own, which must die too.
cat >"$WORK/stuck-nbtext" <<WRAP
#!/bin/sh
case "\$1" in *stuck.nb) sleep 60 ;; esac
exec "$NBTEXT" "\$@"
WRAP
chmod +x "$WORK/stuck-nbtext"
status=0
started=$SECONDS
"$BATCH" "$WORK/late" "$WORK/late-out" --workers 1 --nbtext "$WORK/stuck-nbtext" --timeout 1 --quiet || status=$?
[ "$status" = 1 ] || fail "a run with a notebook over the timeout exited with $status, expected 1"
[ $((SECONDS - started)) -lt 30 ] || fail "the notebook over the timeout was not stopped"
$CHECK summary "$WORK/late-out" files=2 converted=1 failed=1 || fail "the summary of the run with a timeout is wrong"
grep -q '"log": "nbtext took over 1 s"' "$WORK"/late-out/part-*.jsonl || fail "the timeout is not recorded"

echo "--- Dask, HTML, notebooks sent to the workers"
"$BATCH" "$WORK/in" "$WORK/html" --html --send-files --workers 2 --nbtext "$NBTEXT" --quiet ||
  fail "the HTML batch job failed"
$CHECK records "$NBTEXT" "$WORK/in" "$WORK/html" -html || fail "the HTML records are wrong"

echo "--- Dask, Markdown; not into a folder of text records"
"$BATCH" "$WORK/in" "$WORK/markdown" --markdown --workers 2 --nbtext "$NBTEXT" --quiet ||
  fail "the Markdown batch job failed"
$CHECK records "$NBTEXT" "$WORK/in" "$WORK/markdown" -markdown || fail "the Markdown records are wrong"
status=0
"$BATCH" "$WORK/in" "$WORK/out" --markdown --workers 2 --nbtext "$NBTEXT" --quiet >"$WORK/mixed.log" 2>&1 ||
  status=$?
[ "$status" = 2 ] && grep -qF "holds text records; write markdown to another folder" "$WORK/mixed.log" ||
  { cat "$WORK/mixed.log"; fail "Markdown into a folder of text records exited with $status"; }

echo "--- Dask, a running cluster: dask scheduler and dask worker, as docs/scale-out.md starts them"
port=$(/usr/bin/python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
(cd "$WORK" && exec dask scheduler --host 127.0.0.1 --port "$port" --no-dashboard >"$WORK/scheduler.log" 2>&1) &
scheduler=$!
(cd "$WORK" && exec dask worker "tcp://127.0.0.1:$port" --nworkers 2 --nthreads 1 --no-dashboard >"$WORK/worker.log" 2>&1) &
workers=$!
trap 'kill $scheduler $workers 2>/dev/null || true; wait; rm -rf "$WORK"' EXIT
"$BATCH" "$WORK/in" "$WORK/cluster" --scheduler "tcp://127.0.0.1:$port" --nbtext "$NBTEXT" --quiet ||
  { tail "$WORK/scheduler.log" "$WORK/worker.log"; fail "the batch job on a running cluster failed"; }
$CHECK records "$NBTEXT" "$WORK/in" "$WORK/cluster" || fail "the records from a running cluster are wrong"
kill $workers $scheduler
wait $workers $scheduler || true

echo "--- GNU parallel, 2 jobs"
status=0
NBTEXT=$NBTEXT "$ROOT/scripts/nbtext-parallel.sh" "$WORK/in" "$WORK/parallel" -j 2 || status=$?
[ "$status" = "$refused" ] || fail "parallel exited with $status, expected $refused (the refused notebooks)"
$CHECK files "$NBTEXT" "$WORK/in" "$WORK/parallel" txt || fail "the parallel recipe's texts are wrong"
[ "$(awk 'NR > 1 && $7 == 255' "$WORK/parallel/joblog" | wc -l)" = "$refused" ] ||
  fail "the job log does not record the refused notebooks"

echo "--- GNU parallel, Markdown"
status=0
NBTEXT=$NBTEXT "$ROOT/scripts/nbtext-parallel.sh" "$WORK/in" "$WORK/parallel-md" -markdown -j 2 || status=$?
[ "$status" = "$refused" ] || fail "parallel -markdown exited with $status, expected $refused"
$CHECK files "$NBTEXT" "$WORK/in" "$WORK/parallel-md" md -markdown || fail "the parallel recipe's Markdown is wrong"
echo "batch jobs ok"
