#!/usr/bin/env bash
# Starts and stops the Wine environment of one build directory: a private Wine
# prefix (made once, never the user's own) and a virtual X server for the run.
#   wine-env.sh start BUILD_DIR | stop BUILD_DIR
set -euo pipefail
action=$1
state="$(cd "$2" && pwd)/wine"
mkdir -p "$state"
export WINEPREFIX="$state/prefix"
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="
export LANG=zh_CN.UTF-8 LC_ALL=zh_CN.UTF-8

wine_bin() {
  if [ -x /usr/lib/wine/wine64 ]; then echo /usr/lib/wine/wine64; else command -v wine; fi
}

case "$action" in
start)
  if [ -f "$state/xvfb.pid" ] && kill -0 "$(cat "$state/xvfb.pid")" 2>/dev/null; then
    kill "$(cat "$state/xvfb.pid")" || true
  fi
  display=""
  for n in $(seq 90 140); do
    if [ ! -e "/tmp/.X$n-lock" ] && [ ! -e "/tmp/.X11-unix/X$n" ]; then display=$n; break; fi
  done
  [ -n "$display" ] || { echo "wine-env: no free X display" >&2; exit 1; }
  Xvfb ":$display" -screen 0 1280x1024x24 -nolisten tcp >"$state/xvfb.log" 2>&1 &
  echo $! >"$state/xvfb.pid"
  for _ in $(seq 1 50); do [ -e "/tmp/.X11-unix/X$display" ] && break; sleep 0.1; done
  [ -e "/tmp/.X11-unix/X$display" ] || { echo "wine-env: Xvfb did not start:" >&2; cat "$state/xvfb.log" >&2; exit 1; }
  echo ":$display" >"$state/display"
  export DISPLAY=":$display"
  if [ ! -f "$WINEPREFIX/system.reg" ]; then
    echo "wine-env: creating the Wine prefix $WINEPREFIX"
    "$(wine_bin)" wineboot --init >"$state/wineboot.log" 2>&1 || { cat "$state/wineboot.log" >&2; exit 1; }
  fi
  wineserver -w
  # Prove that Wine runs at all: a broken Wine must fail the run, not skip it.
  out=$("$(wine_bin)" cmd /c echo wine-ok 2>&1 | tr -d '\r') || true
  case "$out" in *wine-ok*) echo "wine-env: ready on :$display" ;;
    *) echo "wine-env: Wine cannot run programs: $out" >&2; exit 1 ;; esac
  ;;
stop)
  wineserver -k 2>/dev/null || true
  if [ -f "$state/xvfb.pid" ]; then kill "$(cat "$state/xvfb.pid")" 2>/dev/null || true; rm -f "$state/xvfb.pid"; fi
  rm -f "$state/display"
  ;;
*) echo "usage: wine-env.sh start|stop BUILD_DIR" >&2; exit 2 ;;
esac
