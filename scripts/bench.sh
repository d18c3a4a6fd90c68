#!/usr/bin/env bash
# Builds the benchmarks in Release and runs them all; prints the figures.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh bench
cmake --preset bench >/dev/null
cmake --build --preset bench
for b in build/bench/bench/bench_*; do
  [ -x "$b" ] || continue
  echo "==== $(basename "$b")"
  "$b" "$@"
done
