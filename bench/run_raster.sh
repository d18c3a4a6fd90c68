#!/usr/bin/env bash
# Builds and runs the raster benchmarks (Release), then prints our reduction
# against stb_image_resize's box filter size by size, and the pipeline's time.
#   bench/run_raster.sh [extra benchmark flags]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build/pixels-bench"
cmake --preset bench -B "$build" >/dev/null
cmake --build "$build" --target bench_raster -j2 >/dev/null
out="$build/raster.json"
"$build/bench/bench_raster" --benchmark_repetitions=5 --benchmark_report_aggregates_only=true \
  --benchmark_out="$out" --benchmark_out_format=json "$@"
python3 - "$out" <<'PY'
import json, sys
data = json.load(open(sys.argv[1]))
median = {b["run_name"]: b for b in data["benchmarks"] if b.get("aggregate_name") == "median"}
sizes = ["1920x1080 -> 160x90 (box)", "1920x1080 -> 192x108 (box)", "2560x1440 -> 213x120 (area)"]
print("\nreduction, median real time (us)")
worst = 0.0
for i, label in enumerate(sizes):
    ours = median[f"Reduce_Ours/{i}"]["real_time"]
    stb = median[f"Reduce_Stb/{i}"]["real_time"]
    worst = max(worst, ours / stb)
    print(f"  {label:30s} ours {ours:9.1f}  stb {stb:9.1f}  ours/stb {ours / stb:5.2f}"
          f"  allocs/run {median[f'Reduce_Ours/{i}']['allocs_per_run']:.0f}")
print("pipeline (capture -> packed thumbnail, dark background)")
for i, label in enumerate(sizes):
    b = median[f"Pipeline/{i}"]
    print(f"  {label:30s} {b['real_time'] / 1000:6.2f} ms  allocs/run {b['allocs_per_run']:.0f}")
print(f"sharpen 160x90 {median['Sharpen_Thumbnail']['real_time']:.1f} us, "
      f"gamma 160x90 {median['Gamma_Thumbnail']['real_time']:.1f} us")
ok = worst <= 1.0 and median["Pipeline/0"]["real_time"] < 3000
print("targets:", "met" if ok else "NOT met", f"(worst ours/stb {worst:.2f}, pipeline 1920x1080 "
      f"{median['Pipeline/0']['real_time'] / 1000:.2f} ms)")
PY
