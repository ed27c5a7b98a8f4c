#!/usr/bin/env bash
# Sets up, builds, lists the library and runs the tour through the runtime host.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
cmake --build build -j"$(nproc)" --target zel_tools zel_system ncl
build/ncl list build/工具.ncl
ZELCLS_PATHS=build build/ncl run examples/tour.zs
