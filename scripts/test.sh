#!/usr/bin/env bash
# Installs what is missing, builds every preset and runs every test:
# native (with AddressSanitizer and UBSan), Windows x64 under Wine, the 32-bit
# shipping build, and the fuzzers. Exits non-zero when anything fails.
set -uo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh test || { echo "setup failed" >&2; exit 1; }

failed=()
step() {
  local name=$1; shift
  echo "==== $name: $*"
  if ! "$@"; then failed+=("$name"); return 1; fi
}

for preset in linux win64; do
  step "configure $preset" cmake --preset "$preset" >/dev/null &&
    step "build $preset" cmake --build --preset "$preset" &&
    step "test $preset" ctest --preset "$preset"
done
step "configure win32" cmake --preset win32 >/dev/null && step "build win32" cmake --build --preset win32 &&
  step "package" bash scripts/package.sh --no-build
# The suites that cross the host port (the module loaded as a DLL into real
# windows, and start-up through the window system) on the i686 build, where
# __stdcall matters, under 32-bit Wine.
if [ "$(dpkg-query -W -f='${Status}' wine32:i386 2>/dev/null || true)" = "install ok installed" ]; then
  step "configure win32-test" cmake --preset win32-test >/dev/null &&
    step "build win32-test" cmake --build --preset win32-test --target test_win32 test_startup &&
    step "test win32-test" ctest --preset win32-test -R '^(wine\.|win32$|startup$)'
else
  echo "==== 32-bit Wine is not installed (see the setup's message): the i686 test runs were SKIPPED"
fi
step "configure fuzz" cmake --preset fuzz >/dev/null && step "build fuzz" cmake --build --preset fuzz &&
  step "fuzz" ctest --preset fuzz --verbose

echo
if [ ${#failed[@]} -gt 0 ]; then
  echo "FAILED: ${failed[*]}"
  exit 1
fi
echo "All builds and tests passed."
