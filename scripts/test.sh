#!/usr/bin/env bash
# Sets up, builds and runs every test: once plainly, once under
# AddressSanitizer and UndefinedBehaviorSanitizer. LeakSanitizer stays off
# for the suites that load the host (they have the host's audit); the unit
# suites and the allocation sweep turn it on for themselves.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
jobs=$(nproc)

cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j"$jobs"
(cd build && ctest -j"$jobs" --output-on-failure)

cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Debug -DZEL_SANITIZE=ON -DZEL_BENCHMARKS=OFF
cmake --build build-asan -j"$jobs"
(cd build-asan && ASAN_OPTIONS=detect_leaks=0:allocator_may_return_null=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest -j"$jobs" --output-on-failure)
