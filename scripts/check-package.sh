#!/usr/bin/env bash
# Checks a release archive made by scripts/package.sh: exactly its four files,
# the side .ini's [RESOURCES] section, the sample worksets file, the install
# note's registry entries and removal, and a 32-bit module that exports its
# entry and needs no compiler runtime DLL. Under 32-bit Wine the module in the
# archive is also loaded into the i686 demo host; without it that step is skipped.
#   scripts/check-package.sh ZIP
set -uo pipefail
cd "$(dirname "$0")/.."
zip=${1:?usage: check-package.sh ZIP}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "check-package: FAIL: $*" >&2; failures=$((failures + 1)); }

python3 - "$zip" "$work" <<'PY' || failures=$((failures + 1))
import re, sys, zipfile
zip_path, out = sys.argv[1:3]
bad = []
with zipfile.ZipFile(zip_path) as z:
    names = sorted(z.namelist())
    want = sorted(["Tavlet.arx", "Tavlet.ini", "Sample.worksets", "INSTALL.txt"])
    if names != want:
        bad.append(f"the archive holds {names}, not {want}")
    if z.testzip() is not None:
        bad.append("a damaged entry: " + z.testzip())
    z.extractall(out)
def text(name):
    try:
        return open(f"{out}/{name}", "rb").read().decode("gbk")
    except (OSError, UnicodeDecodeError) as e:
        bad.append(f"{name}: {e}")
        return ""
ini = text("Tavlet.ini").split("\r\n")
if "[RESOURCES]" not in ini:
    bad.append("Tavlet.ini has no [RESOURCES] section")
else:
    keys = [l.split("=")[0] for l in ini[ini.index("[RESOURCES]") + 1:] if "=" in l]
    if "*.dwg" not in keys:
        bad.append(f"Tavlet.ini's [RESOURCES] keys are {keys}, without *.dwg")
sections, entries = 0, 0
for line in text("Sample.worksets").split("\r\n"):
    if not line:
        continue
    if re.fullmatch(r"\[[^\]]+\]", line):
        sections += 1
    elif re.fullmatch(r"文件[1-9][0-9]*=[A-Za-z]:\\[^,]+,[01]", line):
        entries += 1
    else:
        bad.append(f"Sample.worksets: not a workset line: {line!r}")
if sections < 1 or entries < 1:
    bad.append(f"Sample.worksets has {sections} worksets and {entries} files")
note = text("INSTALL.txt")
for word in ["APPLOAD", "TLON", r"Applications\MorvaneTavlet", "LOADCTRLS", "LOADER", "DESCRIPTION",
             "Groups", "Commands", "Remove it", "@VERSION@"]:
    present = word in note
    if present != (word != "@VERSION@"):
        bad.append(f"INSTALL.txt {'has' if present else 'lacks'} {word}")
for line in bad:
    print("check-package: FAIL:", line, file=sys.stderr)
sys.exit(1 if bad else 0)
PY

module="$work/Tavlet.arx"
objdump=i686-w64-mingw32-objdump
if [ -f "$module" ]; then
  "$objdump" -f "$module" | grep -q 'file format pei-i386' || fail "Tavlet.arx is not a 32-bit PE file"
  headers=$("$objdump" -p "$module")
  grep -Eq '^[[:space:]]+\[[[:space:]]*[0-9]+\] TavletArxEntry$' <<<"$headers" ||
    fail "Tavlet.arx does not export TavletArxEntry"
  # The user's machine has no compiler runtime: it must be linked in.
  runtime=$(grep -Ei 'DLL Name: (libgcc|libstdc|libwinpthread)' <<<"$headers" || true)
  [ -z "$runtime" ] || fail "Tavlet.arx needs a compiler runtime DLL: $runtime"
fi

version=$(sed -n 's/^Tavlet \([0-9.]*\) - .*/\1/p' "$work/INSTALL.txt" 2>/dev/null | head -n1)
if [ "$(dpkg-query -W -f='${Status}' wine32:i386 2>/dev/null || true)" = "install ok installed" ]; then
  build="$(pwd)/build/win32"
  cmake --build --preset win32 --target demohost >/dev/null || fail "the i686 demo host does not build"
  printf 'wait 500\ncommand TLOFF\nwait 200\nquit\n' >"$work/load.script"
  bash cmake/wine-env.sh start "$build" >/dev/null
  TAVLET_BUILD_DIR="$build" bash cmake/wine-run.sh "$build/demohost.exe" --module "Z:$module" \
      --script "Z:$work/load.script" >"$work/run.txt" 2>&1 || fail "the demo host failed with the packaged module"
  bash cmake/wine-env.sh stop "$build"
  grep -aq "Morvane Tavlet (build $version) LOADED" "$work/run.txt" ||
    fail "the packaged module did not print its banner under 32-bit Wine"
else
  echo "check-package: 32-bit Wine is not installed: loading the packaged module into the demo host was SKIPPED"
fi

if [ "$failures" -gt 0 ]; then
  echo "check-package: $zip: $failures check(s) failed" >&2
  exit 1
fi
echo "check-package: $zip: contents, [RESOURCES], worksets sample, install note and the module's export are right"
