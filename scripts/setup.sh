#!/usr/bin/env bash
# Installs what a fresh Debian machine lacks for building and testing Tavlet.
# A second run finds everything present and installs nothing.
#   setup.sh [test|demo|bench]
set -euo pipefail
purpose=${1:-test}

packages=(g++ cmake ninja-build ccache googletest locales
          mingw-w64 g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix
          wine wine64 xvfb xauth fonts-wqy-microhei python3-pyftpdlib)
case "$purpose" in
  test) packages+=(clang libclang-rt-14-dev) ;;
  demo) packages+=(imagemagick) ;;
  bench) packages+=(libbenchmark-dev libstb-dev libpugixml-dev wine wine64) ;;
  *) echo "usage: setup.sh [test|demo|bench]" >&2; exit 2 ;;
esac

# Wine takes its ANSI code page (936) from LANG, which needs the locale to exist.
ensure_locale() {
  if ! locale -a 2>/dev/null | grep -qi '^zh_CN\.utf-\?8$'; then
    echo "setup: generating the zh_CN.UTF-8 locale"
    $sudo localedef -i zh_CN -f UTF-8 zh_CN.UTF-8
  fi
}

sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
  [ "$status" = "install ok installed" ] || missing+=("$package")
done
if [ ${#missing[@]} -eq 0 ]; then
  echo "setup: everything needed is installed"
else
  echo "setup: installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  $sudo apt-get update
  $sudo apt-get install -y --no-install-recommends "${missing[@]}"
fi
ensure_locale
