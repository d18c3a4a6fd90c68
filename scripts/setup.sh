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
  bench) packages+=(libbenchmark-dev libstb-dev libpugixml-dev python3-pil wine wine64) ;;
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
export DEBIAN_FRONTEND=noninteractive
updated=""
update_indexes() {
  [ -n "$updated" ] && return 0
  updated=1
  # An index that fails (a mirror in the middle of a sync) must not stop the
  # install of what the other indexes offer.
  if ! $sudo apt-get update 2>&1 | tee /tmp/tavlet-apt-update.log; then :; fi
  if grep -q '^E:' /tmp/tavlet-apt-update.log; then
    echo "setup: some package indexes could not be downloaded; going on with the others"
  fi
}

if [ ${#missing[@]} -eq 0 ]; then
  echo "setup: everything needed is installed"
else
  echo "setup: installing ${missing[*]}"
  update_indexes
  $sudo apt-get install -y --no-install-recommends "${missing[@]}"
fi
ensure_locale

# 32-bit Wine runs the i686 shipping build (demo and the Win32 suites). Debian's
# wine32 needs the i386 architecture; when its index can't be had, or its
# packages can't be installed beside the 64-bit ones, everything else still runs
# and the 32-bit runs are skipped.
if [ "$purpose" != bench ]; then
  if [ "$(dpkg-query -W -f='${Status}' wine32:i386 2>/dev/null || true)" = "install ok installed" ]; then
    echo "setup: 32-bit Wine is installed"
  else
    if ! dpkg --print-foreign-architectures | grep -qx i386; then
      echo "setup: enabling the i386 architecture for 32-bit Wine"
      $sudo dpkg --add-architecture i386
      updated=""
    fi
    update_indexes
    if $sudo apt-get install -y --no-install-recommends wine32:i386 >/tmp/tavlet-wine32.log 2>&1; then
      echo "setup: 32-bit Wine installed"
    else
      echo "setup: 32-bit Wine could not be installed; the 32-bit (i686) runs will be SKIPPED."
      if grep -q 'i386.*Packages' /tmp/tavlet-apt-update.log 2>/dev/null; then
        echo "setup: the i386 package index did not download (a mirror in the middle of a sync?), so the i386"
        echo "setup: libraries wine32 needs can't be matched to the 64-bit ones already installed:"
        grep -E '^E:.*i386' /tmp/tavlet-apt-update.log | head -3 | sed 's/^/setup:   /'
      fi
      echo "setup: apt said:"
      grep -E '^(E:|W:| )' /tmp/tavlet-wine32.log | head -8 | sed 's/^/setup:   /'
    fi
  fi
fi
