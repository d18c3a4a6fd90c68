#!/usr/bin/env bash
# Builds the 32-bit shipping preset and makes the release archive that a user
# installs from: out/package/tavlet-VERSION-win32.zip with the module, its side
# .ini, a sample worksets file and the install note (packaging/), then checks it
# with scripts/check-package.sh.
#   scripts/package.sh [--no-build]
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
build="$root/build/win32"
if [ "${1:-}" != "--no-build" ]; then
  bash scripts/setup.sh
  cmake --preset win32 >/dev/null
  cmake --build --preset win32 --target Tavlet
fi
version=$(sed -n 's/^#define TAVLET_VERSION "\(.*\)"$/\1/p' "$build/generated/tavlet_version.h")
[ -n "$version" ] || { echo "package: no version in $build/generated/tavlet_version.h" >&2; exit 1; }
out="$root/out/package"
zip="$out/tavlet-$version-win32.zip"
mkdir -p "$out"
rm -f "$zip"
# The texts are for Windows: code page 936, CRLF line ends.
python3 - "$zip" "$version" "$build/Tavlet.arx" "$root/packaging" <<'PY'
import sys, time, zipfile
zip_path, version, module, folder = sys.argv[1:5]
def text(name):
    data = open(f"{folder}/{name}", encoding="utf-8").read().replace("@VERSION@", version)
    return data.replace("\r\n", "\n").replace("\n", "\r\n").encode("gbk")
# One fixed date for every entry, so the same build gives the same archive.
stamp = (2026, 1, 1, 0, 0, 0)
with zipfile.ZipFile(zip_path, "w", zipfile.ZIP_DEFLATED) as z:
    def add(name, data):
        info = zipfile.ZipInfo(name, stamp)
        info.compress_type = zipfile.ZIP_DEFLATED
        info.external_attr = 0o644 << 16
        z.writestr(info, data)
    add("Tavlet.arx", open(module, "rb").read())
    for name in ("Tavlet.ini", "Sample.worksets", "INSTALL.txt"):
        add(name, text(name))
PY
echo "package: $zip"
bash scripts/check-package.sh "$zip"
