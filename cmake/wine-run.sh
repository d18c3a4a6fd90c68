#!/usr/bin/env bash
# The cross-compiling emulator: runs one Windows program under the build
# directory's Wine prefix and X display, with code page 936.
set -euo pipefail
build_dir=${TAVLET_BUILD_DIR:?TAVLET_BUILD_DIR is not set}
state="$build_dir/wine"
export WINEPREFIX="$state/prefix"
export WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES="mscoree,mshtml="
export LANG=zh_CN.UTF-8 LC_ALL=zh_CN.UTF-8
if [ -f "$state/display" ]; then export DISPLAY=$(cat "$state/display"); fi
if [ ! -f "$WINEPREFIX/system.reg" ]; then
  echo "wine-run: no Wine prefix in $state; the wine environment was not started" >&2
  exit 1
fi
if [ -x /usr/lib/wine/wine64 ]; then wine=/usr/lib/wine/wine64; else wine=$(command -v wine); fi
exec "$wine" "$@"
