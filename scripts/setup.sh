#!/usr/bin/env bash
# Installs what a fresh Debian machine lacks for building and testing Tavlet.
# A second run finds everything present and installs nothing.
#   setup.sh [test|demo|bench]
set -euo pipefail
purpose=${1:-test}

packages=(g++ cmake ninja-build googletest
          mingw-w64 g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix
          wine wine64 xvfb xauth fonts-wqy-microhei)
case "$purpose" in
  test) packages+=(clang libclang-rt-14-dev) ;;
  demo) packages+=(imagemagick) ;;
  bench) packages+=(libbenchmark-dev libstb-dev libpugixml-dev wine wine64) ;;
  *) echo "usage: setup.sh [test|demo|bench]" >&2; exit 2 ;;
esac

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
  [ "$status" = "install ok installed" ] || missing+=("$package")
done
if [ ${#missing[@]} -eq 0 ]; then
  echo "setup: everything needed is installed"
  exit 0
fi

echo "setup: installing ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update
$sudo apt-get install -y --no-install-recommends "${missing[@]}"
