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
# A 32-bit program (PE machine 0x014c) needs the 32-bit loader.
machine=""
if [ -f "$1" ]; then
  pe=$(od -An -tu4 -j60 -N4 "$1" 2>/dev/null | tr -d ' ')
  [ -n "$pe" ] && machine=$(od -An -tx2 -j$((pe + 4)) -N2 "$1" 2>/dev/null | tr -d ' ')
fi
if [ "$machine" = "014c" ]; then
  [ -x /usr/lib/wine/wine ] || { echo "wine-run: $1 is a 32-bit program and 32-bit Wine is not installed" >&2; exit 1; }
  wine=/usr/lib/wine/wine
elif [ -x /usr/lib/wine/wine64 ]; then wine=/usr/lib/wine/wine64; else wine=$(command -v wine); fi
exec "$wine" "$@"
