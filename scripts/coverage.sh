#!/usr/bin/env bash
# Builds with --coverage, runs the whole suite and prints line and branch
# coverage per folder (gcovr; branches that only throw exceptions and branches
# the compiler proved unreachable are left out). The gcovr JSON summary stays
# in build-coverage/coverage.json. Set COVERAGE_JOBS to build with more jobs.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh coverage
jobs=${COVERAGE_JOBS:-2}

# A fresh build: the notes of objects no longer built would stop gcovr.
rm -rf build-coverage
# -m32 must stay: flags given here replace the ones the project starts with.
# Counters are updated atomically: tests that run threads would otherwise
# tear the 64-bit counts on this target and gcov would refuse them.
cov="--coverage -fprofile-update=atomic"
cmake -S . -B build-coverage -DCMAKE_BUILD_TYPE=Debug -DZEL_BENCHMARKS=OFF \
  "-DCMAKE_C_FLAGS=-m32 $cov" "-DCMAKE_CXX_FLAGS=-m32 $cov" \
  "-DCMAKE_EXE_LINKER_FLAGS=-m32 --coverage" "-DCMAKE_SHARED_LINKER_FLAGS=-m32 --coverage" \
  "-DCMAKE_MODULE_LINKER_FLAGS=-m32 --coverage" >/dev/null
cmake --build build-coverage -j"$jobs"
# The SDK test builds a library outside this build against the installed
# archive, whose objects here need the coverage runtime: it is left out.
(cd build-coverage && ctest -j"$jobs" --output-on-failure -E '^sdk[.]') || echo "coverage: some tests failed; figures follow anyway" >&2

# Only this build's data: other build folders in the tree may hold notes too.
gcovr -r . build-coverage --object-directory build-coverage -j "$jobs" \
  --exclude-throw-branches --exclude-unreachable-branches \
  --filter 'runtime/' --filter 'support/' --filter 'classes/' --filter 'io/' --filter 'host/' --filter 'include/' \
  --exclude-directories 'build-coverage/CMakeFiles/[0-9]' \
  --json-summary build-coverage/coverage.json --json-summary-pretty --json build-coverage/coverage-detail.json >/dev/null

python3 - build-coverage/coverage.json <<'PY'
import json, sys
files = json.load(open(sys.argv[1]))["files"]
library = ("runtime", "support", "classes", "io")
totals = {}
for f in files:
    folder = f["filename"].split("/")[0]
    if folder == "include":
        folder = "include/zel"
    for group in (folder, "library" if folder in library else None):
        if group:
            t = totals.setdefault(group, [0, 0, 0, 0])
            t[0] += f["line_covered"]; t[1] += f["line_total"]
            t[2] += f["branch_covered"]; t[3] += f["branch_total"]
def pct(a, b): return f"{100.0 * a / b:6.1f} %" if b else "     - "
print(f"{'folder':<12} {'lines':>22} {'branches':>22}")
for group in (*library, "library", "include/zel", "host"):
    if group in totals:
        lc, lt, bc, bt = totals[group]
        print(f"{group:<12} {pct(lc, lt)} {lc:>6}/{lt:<6} {pct(bc, bt)} {bc:>6}/{bt:<6}")
PY
