#!/usr/bin/env bash
# Builds respcore and runs every test. Usage: scripts/test.sh [BUILD_DIR]
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build}"
bash scripts/deps.sh
export OPENBLAS_NUM_THREADS=1
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$build" -j2
ctest --test-dir "$build" --output-on-failure -j2
