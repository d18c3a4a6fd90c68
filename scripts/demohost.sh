#!/usr/bin/env bash
# Runs the demo host under Wine with its own virtual X display and Wine prefix
# (building it first): scripts/demohost.sh [--script FILE] [--out FOLDER] [DRAWING...]
# With TAVLET_USE_DISPLAY=1 it uses $DISPLAY instead, for an interactive session.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
build="$root/build/${TAVLET_PRESET:-win64}"
cmake --preset "${TAVLET_PRESET:-win64}" >/dev/null
cmake --build --preset "${TAVLET_PRESET:-win64}" --target demohost Tavlet >/dev/null
bash cmake/wine-env.sh start "$build" >/dev/null
trap 'bash cmake/wine-env.sh stop "$build"' EXIT
if [ "${TAVLET_USE_DISPLAY:-0}" = 1 ] && [ -n "${DISPLAY:-}" ]; then echo "$DISPLAY" >"$build/wine/display"; fi
status=0
TAVLET_BUILD_DIR="$build" bash cmake/wine-run.sh "$build/demohost.exe" "$@" || status=$?
exit $status
