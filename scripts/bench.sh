#!/usr/bin/env bash
# Builds the library and its benchmarks (32-bit, -O2) and prints one table per
# area: each row a median ratio to a baseline measured in the same run, with
# the spread of the rounds (q1–q3) and whether the row's target holds.
#   scripts/bench.sh                 all areas
#   scripts/bench.sh hashmap files   some of hashmap buffers streams files host
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
jobs=$(nproc)

cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZEL_BENCHMARKS=ON > /dev/null
areas=("$@")
[ ${#areas[@]} -eq 0 ] && areas=(hashmap buffers streams files host)
targets=()
for area in "${areas[@]}"; do targets+=("bench_$area"); done
[[ " ${areas[*]} " == *" host "* ]] && targets+=(ncl zel_tools bench_load_only)
cmake --build build -j"$jobs" --target "${targets[@]}" > /dev/null

echo "## $(date -u '+%Y-%m-%d %H:%M UTC'): $(grep -m1 'model name' /proc/cpuinfo | cut -d: -f2 | sed 's/^ //'), $(nproc) cores, load $(cut -d' ' -f1-3 /proc/loadavg)"
for area in "${areas[@]}"; do
  # Only the table: Google Benchmark's own report goes to the log.
  build/bench_"$area" --benchmark_out=build/bench_"$area".json --benchmark_out_format=json \
    2> build/bench_"$area".log | sed -n '/^### /,$p'
done
