#!/usr/bin/env bash
# Runs the libFuzzer targets built by `make fuzz`, one after the other, each
# for SECONDS (default 600) at the lowest priority, so that builds on the
# same machine keep theirs. Usage: scripts/run-fuzzers.sh [SECONDS] [TARGET...]
# with TARGET among escapes, reader, parse, convert_text, convert_html, convert_markdown
# (default: all).
#
# The inputs that each target finds interesting accumulate in
# build-fuzz/corpus/TARGET; it starts from fuzz/seeds, samples/ and, when
# present, the shared notebook corpus next to the (main) checkout. Inputs that
# fail land in build-fuzz/artifacts/TARGET: minimise one with
#   build-fuzz/fuzz/fuzz_TARGET -minimize_crash=1 -runs=10000 FILE
# and keep it in tests/fuzz-regressions/TARGET/, where the test suite
# replays it.
set -euo pipefail
cd "$(dirname "$0")/.."
SECONDS_EACH=${1:-600}
shift || true
TARGETS=("$@")
[ ${#TARGETS[@]} -gt 0 ] || TARGETS=(escapes reader parse convert_text convert_html convert_markdown)

# Limits: an input of at most 64 KB must finish within a second and 256 MB.
# AddressSanitizer's quarantine would fill that alone, so it is kept small.
export ASAN_OPTIONS=${ASAN_OPTIONS:-quarantine_size_mb=16:detect_leaks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
seeds=(fuzz/seeds/notebooks samples)
# The shared corpus stands next to the main checkout, which a worktree's
# parent folder may not be.
main_checkout=$(cd "$(git rev-parse --git-common-dir 2>/dev/null || echo .git)/.." && pwd)
for corpus in "$(scripts/corpus-dir.sh)" "$main_checkout/../shared/corpus"; do
  if [ -d "$corpus" ]; then
    seeds+=("$corpus")
    break
  fi
done

for target in "${TARGETS[@]}"; do
  binary=build-fuzz/fuzz/fuzz_$target
  [ -x "$binary" ] || { echo "$binary is missing: run make fuzz first" >&2; exit 1; }
  mkdir -p "build-fuzz/corpus/$target" "build-fuzz/artifacts/$target"
  echo "=== $target for ${SECONDS_EACH}s"
  # One worker process at a time (-fork=1), so that the run goes on past a
  # timeout: the time limit is wall-clock time, which a busy machine eats.
  # Each timeout is kept and timed again below; a crash or a leak ends the run.
  # The run's log and its CPU time (worker included) are kept, and one line
  # per run is added to build-fuzz/summary.tsv: target, wall seconds, CPU
  # seconds, executions, status.
  log=build-fuzz/logs/$target-$(date +%Y%m%d-%H%M%S).log
  mkdir -p build-fuzz/logs
  status=0
  /usr/bin/time -f '%U %S' -o "$log.cpu" nice -n "${FUZZ_NICE:-19}" "$binary" \
    "build-fuzz/corpus/$target" "${seeds[@]}" \
    -dict=fuzz/notebook.dict -max_len=65536 -timeout=1 -rss_limit_mb=256 \
    -fork=1 -ignore_timeouts=1 -ignore_ooms=0 -ignore_crashes=0 \
    -max_total_time="$SECONDS_EACH" -artifact_prefix="build-fuzz/artifacts/$target/" \
    >"$log" 2>&1 || status=$?
  cpu=$(awk '{ printf "%.0f", $1 + $2 }' "$log.cpu")
  # In fork mode the progress lines read "#EXECUTIONS: cov: ...".
  runs=$(sed -n 's/^#\([0-9]*\):* .*/\1/p' "$log" | tail -n 1)
  printf '%s\t%s\t%s\t%s\t%s\n' "$target" "$SECONDS_EACH" "$cpu" "${runs:-0}" "$status" \
    >>build-fuzz/summary.tsv
  tail -n 5 "$log"
  echo "$target: ${cpu}s of CPU, ${runs:-0} executions, status $status"
  for slow in "build-fuzz/artifacts/$target"/timeout-*; do
    [ -e "$slow" ] || continue
    echo "--- timed again: $slow"
    "$binary" -timeout=1 -rss_limit_mb=256 "$slow" 2>&1 | grep -E 'Executed|ERROR' || true
  done
done
