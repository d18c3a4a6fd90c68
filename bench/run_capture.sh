#!/usr/bin/env bash
# The capture's figures beside Pillow's in one run: our reduction (box and area
# paths) and the whole capture (host picture to stored thumbnail) from Google
# Benchmark, then Pillow's BOX resize and reduce of the same sizes through the
# system's Python (Debian python3-pil, installed by scripts/setup.sh bench).
# Medians of real time; on a busy machine compare the ratios, not the absolutes.
#   bench/run_capture.sh [repetitions]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
reps=${1:-9}
cd "$root"
cmake --preset bench >/dev/null
cmake --build --preset bench --target bench_raster bench_capture >/dev/null
build="$root/build/bench/bench"
"$build/bench_raster" --benchmark_filter='^Reduce_Ours|^Read_Source' --benchmark_repetitions="$reps" \
  --benchmark_report_aggregates_only=true --benchmark_format=json >"$build/reduce.json"
"$build/bench_capture" --benchmark_repetitions="$reps" --benchmark_report_aggregates_only=true \
  --benchmark_format=json >"$build/capture.json"
/usr/bin/python3 - "$build/reduce.json" "$build/capture.json" "$reps" <<'PY'
import json, statistics, sys, time
from PIL import Image

def medians(path, field):
    data = json.load(open(path))
    return {b["run_name"]: b[field] / 1000.0 for b in data["benchmarks"]
            if b.get("aggregate_name") == "median"}

ours, oursCpu = medians(sys.argv[1], "real_time"), medians(sys.argv[1], "cpu_time")
capture, captureCpu = medians(sys.argv[2], "real_time"), medians(sys.argv[2], "cpu_time")
reps = int(sys.argv[3])

def picture(w, h):
    # A drawing-like picture: dark background, a line every 37 columns and 29 rows.
    row = bytearray(w * 3)
    for x in range(0, w, 37):
        row[3 * x:3 * x + 3] = b"\xff\xc8\x28"
    line = b"\xff\xc8\x28" * w
    return Image.frombytes("RGB", (w, h), b"".join(line if y % 29 == 0 else bytes(row) for y in range(h)))

def pillow(action):
    """Median real and processor time of one call, in ms."""
    action()
    real, cpu = [], []
    for _ in range(max(reps, 5) * 20):
        start, startCpu = time.perf_counter(), time.process_time()
        action()
        real.append(time.perf_counter() - start)
        cpu.append(time.process_time() - startCpu)
    return statistics.median(real) * 1000.0, statistics.median(cpu) * 1000.0

big, full = picture(2560, 1440), picture(1920, 1080)
rows = [
    ("2560x1440 -> 213x120 (area)", "Reduce_Ours/2", lambda: big.resize((213, 120), Image.BOX), "BOX"),
    ("1920x1080 -> 160x90 (box)", "Reduce_Ours/0", lambda: full.reduce(12), "reduce"),
    ("1920x1080 -> 160x90 (box)", "Reduce_Ours/0", lambda: full.resize((160, 90), Image.BOX), "BOX"),
]
print("reduction, medians in ms: real (processor)")
for label, name, action, how in rows:
    real, cpu = pillow(action)
    mine, mineCpu = ours[name], oursCpu[name]
    print(f"  {label:30s} ours {mine:5.2f} ({mineCpu:5.2f})  Pillow {how:6s} {real:5.2f} ({cpu:5.2f})"
          f"  Pillow/ours {real / mine:4.2f} ({cpu / mineCpu:4.2f})")
print(f"  reading the 2560x1440 source once   {ours['Read_Source/2']:5.2f} ({oursCpu['Read_Source/2']:5.2f})")
print("whole capture, host picture to stored thumbnail, dark background, ms: real (processor)")
for i, label in enumerate(["1920x1080 -> 160x90", "2560x1440 -> 213x120"]):
    name = f"Capture/{i}"
    print(f"  {label:30s} {capture[name]:5.2f} ({captureCpu[name]:5.2f})  target 3.00")
PY
