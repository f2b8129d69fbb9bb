#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: fuzz.sh [HARNESS [SECONDS]]
# Builds the fuzzing programs, makes the seeds, and runs one harness, or all in turn, for SECONDS each (10). Prints how
# many inputs each tried. The corpus stays in build/fuzz/corpus/HARNESS, an input that failed in
# build/fuzz/failed/HARNESS; the script then ends with 1. QUILLBOX_FUZZ_BUILT=1 skips the build.
set -eu
cd "$(dirname "$0")/.."
all="hive hive_change hive_log reg_text command_line text rule store mbox mail_header contact_book creg"
harnesses=${1:-$all}
seconds=${2:-10}

if ! command -v clang++ >/dev/null; then
  echo "clang is missing; fuzz/debian-packages.txt lists what fuzzing needs." >&2
  exit 1
fi
if [ -z "${QUILLBOX_FUZZ_BUILT:-}" ]; then
  cmake --preset fuzz >/dev/null
  cmake --build --preset fuzz
fi
build=build/fuzz
"$build/bin/make_fuzz_seeds" "$build/seeds"

# How many inputs a run's log says it has tried.
executions() {
  sed -n 's/^stat::number_of_executed_units: *//p' "$1" | tail -n 1
}

failed=0
for harness in $harnesses; do
  corpus=$build/corpus/$harness
  faults=$build/failed/$harness
  log=$build/$harness.log
  mkdir -p "$corpus" "$faults"
  dictionary=
  [ ! -f "fuzz/$harness.dict" ] || dictionary=-dict=fuzz/$harness.dict
  result="no fault"
  # shellcheck disable=SC2086 # the dictionary's option or nothing
  "$build/bin/fuzz_$harness" $dictionary -max_total_time="$seconds" -timeout=20 -rss_limit_mb=3000 \
    -malloc_limit_mb=1000 -print_final_stats=1 -artifact_prefix="$faults/" "$corpus" "$build/seeds/$harness" \
    >"$log" 2>&1 || result="FAILED, see $log"
  count=$(executions "$log")
  echo "$harness: ${count:-?} inputs in $seconds s, $(find "$corpus" -type f | wc -l) kept: $result"
  [ "$result" = "no fault" ] || failed=1
done
exit $failed
