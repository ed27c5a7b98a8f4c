#!/usr/bin/env bash
# Runs the libFuzzer targets of tests/fuzz for real, one after the other:
#   scripts/fuzz.sh [SECONDS] [TARGET...]      (default 60 seconds, every target)
# Each target starts from its checked-in seeds and keeps what it finds in
# build-fuzz/corpus/<target>; crashes go to build-fuzz/crashes/. Prints the
# executions and seconds per target. Set FUZZ_JOBS to build with more jobs,
# FUZZ_RUNS=N to stop each target after N executions (SECONDS still caps it),
# FUZZ_BUILD=0 to use the targets already built (for runs side by side).
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
shift || true
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  targets=($(sed -n 's/^set(ZEL_FUZZ_TARGETS \(.*\))$/\1/p' tests/fuzz/CMakeLists.txt))
fi

if [ "${FUZZ_BUILD:-1}" != 0 ]; then
  bash scripts/setup.sh fuzz
  cmake -S . -B build-fuzz -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZEL_FUZZ=ON -DZEL_BENCHMARKS=OFF >/dev/null
  cmake --build build-fuzz -j"${FUZZ_JOBS:-2}" --target "${targets[@]/#/fuzz_}"
fi

mkdir -p build-fuzz/crashes
summary=()
status=0
for t in "${targets[@]}"; do
  corpus=build-fuzz/corpus/$t
  mkdir -p "$corpus"
  log=build-fuzz/fuzz_$t.log
  max_len=4096
  echo "== $t: $seconds s"
  if ! UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 build-fuzz/fuzz_"$t" "$corpus" tests/fuzz/corpus/"$t" \
      -max_total_time="$seconds" -runs="${FUZZ_RUNS:--1}" -max_len=$max_len -timeout=10 -rss_limit_mb=1536 -print_final_stats=1 \
      -artifact_prefix=build-fuzz/crashes/"$t"- >"$log" 2>&1; then
    status=1
    echo "   FAILED: see $log and build-fuzz/crashes/"
  fi
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  took=$(sed -n 's/.*Done \([0-9]*\) runs in \([0-9]*\) second.*/\2/p' "$log" | tail -1)
  summary+=("$(printf '%-10s %12s executions %6s s  corpus %s' "$t" "${runs:-?}" "${took:-$seconds}" \
    "$(ls "$corpus" | wc -l)")")
done
printf '%s\n' "${summary[@]}"
exit $status
