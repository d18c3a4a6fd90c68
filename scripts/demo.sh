#!/usr/bin/env bash
# The main job: builds the module (Tavlet.arx) and the demo host for Windows and
# runs the demo script under Wine: four drawings, the bar docked on the left, at
# the top and beside the command line, a switch by a click on a cell, and a check
# of each screenshot's pixels. Screenshots, the step log and the host's command
# line transcript are left in out/demo/; the i686 shipping build runs the same
# script under 32-bit Wine into out/demo/i686/ when 32-bit Wine is installed.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh demo
root=$(pwd)
out="$root/out/demo"
rm -rf "$out"; mkdir -p "$out"

# One build, one Wine environment and one run of the script.
#   run_demo PRESET OUTPUT_FOLDER
run_demo() {
  local preset=$1 folder=$2 build="$root/build/$1"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" --target demohost Tavlet
  bash cmake/wine-env.sh start "$build" >/dev/null
  local status=0
  mkdir -p "$folder"
  TAVLET_BUILD_DIR="$build" bash cmake/wine-run.sh "$build/demohost.exe" --script apps/demohost/demo.script \
      --out "$folder" >"$folder/run.txt" 2>&1 || status=$?
  bash cmake/wine-env.sh stop "$build"
  # The host's text is code page 936.
  iconv -c -f GBK -t UTF-8 "$folder/run.txt" >"$folder/transcript.txt" && rm -f "$folder/run.txt"
  cat "$folder/transcript.txt" | sed -n '1,/^---- transcript/p'
  return $status
}

status=0
run_demo win64 "$out" || status=$?
if [ "$(dpkg-query -W -f='${Status}' wine32:i386 2>/dev/null || true)" = "install ok installed" ]; then
  run_demo win32 "$out/i686" || status=$?
else
  echo "demo: 32-bit Wine is not installed (see the setup's message above): the i686 run was SKIPPED."
fi
echo
ls "$out"
if [ $status -ne 0 ]; then
  echo "demo: FAILED (status $status); see $out/transcript.txt"
  exit $status
fi
echo "demo: screenshots, the step log and the command-line transcript are in $out"
