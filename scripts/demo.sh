#!/usr/bin/env bash
# The main job. The demo host is not built yet, so for now this builds the
# Windows command-line tools and runs them under Wine on sample drawings,
# leaving their pictures and a transcript of everything they printed in out/demo/.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh demo
root=$(pwd)
out="$root/out/demo"
rm -rf "$out"; mkdir -p "$out"

cmake --preset win64 >/dev/null
cmake --build --preset win64 --target dwgthumb
bash cmake/wine-env.sh start build/win64 >/dev/null
trap 'bash cmake/wine-env.sh stop build/win64' EXIT
export TAVLET_BUILD_DIR="$root/build/win64"
run() { bash cmake/wine-run.sh "$@"; }

drawings=()
for dir in "$root/samples" "$root/../shared/testdata/dwg"; do
  [ -d "$dir" ] && while IFS= read -r -d '' f; do drawings+=("$f"); done \
    < <(find "$dir" -maxdepth 1 -name '*.dwg' -print0 | sort -z)
done
transcript="$out/transcript.txt"
{
  echo "\$ dwgthumb info (${#drawings[@]} drawings)"
  run build/win64/dwgthumb.exe info "${drawings[@]}" 2>&1 | tr -d '\r' || true
  for f in "${drawings[@]}"; do
    name=$(basename "$f" .dwg)
    echo "\$ dwgthumb extract $name.dwg"
    run build/win64/dwgthumb.exe extract "$f" -d "$out" 2>&1 | tr -d '\r' || true
  done
} | tee "$transcript"
echo "Pictures and transcript are in $out"
