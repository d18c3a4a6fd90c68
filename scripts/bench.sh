#!/usr/bin/env bash
# Builds the benchmarks in Release and runs them all, natively and (for the
# comparisons with the platform's own functions) under Wine; prints the figures.
#   scripts/bench.sh [Google Benchmark flags]
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
bash scripts/setup.sh bench
cmake --preset bench >/dev/null
cmake --build --preset bench
for b in build/bench/bench/bench_*; do
  [ -x "$b" ] || continue
  echo "==== $(basename "$b")"
  "$b" "$@"
done

# The capture and the area reduction beside Pillow, measured in the same run.
bash bench/run_capture.sh

win=build/bench-win64
cmake --preset win64 -B "$win" -DTAVLET_TESTS=OFF -DTAVLET_BENCH=ON -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$win" -j2 >/dev/null
bash cmake/wine-env.sh start "$win" >/dev/null
trap 'bash cmake/wine-env.sh stop "$win"' EXIT
for b in "$win"/bench/bench_*.exe; do
  [ -f "$b" ] || continue
  echo "==== $(basename "$b") (under Wine)"
  TAVLET_BUILD_DIR="$root/$win" bash cmake/wine-run.sh "$b"
done
