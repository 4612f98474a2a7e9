#!/usr/bin/env bash
# The main job on a fresh Debian machine: install what is missing, build the
# library and the respcore tool, write the demo archive (a steel frame under
# a synthetic earthquake) and ask it for one column's end moment over time,
# as a short table and an SVG plot.
# Usage: scripts/demo.sh [BUILD_DIR] [OUT_DIR]   (defaults: build, BUILD_DIR/demo)
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build}"
out="${2:-$build/demo}"
bash scripts/deps.sh
export OPENBLAS_NUM_THREADS=1
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j2 --target respcore_cli
tool="$build/tools/respcore"
"$tool" demo "$out"
echo
# Ground-storey column 1: bending moment about its local y axis at the base.
"$tool" history "$out/frame" --type beam --item 1 --comp My-i --every 50 \
  --plot "$out/column-moment.svg"
echo
echo "plot written to $out/column-moment.svg"
