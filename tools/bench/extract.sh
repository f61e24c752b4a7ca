#!/usr/bin/env bash
# The forward conversion against the MinGW resource decompiler, in the same
# run, on one generated PE file of 20,000 strings in 1,250 string blocks:
# `tervane extract` writes the whole tagged document, `windres -i` writes the
# whole .rc script. Prints both times (mean of several runs) and their ratio,
# after the same for a PE file that holds one RCDATA resource only (start-up).
# --no-scan: the conversion alone is timed, as the peer asks no scanner
# (tools/bench/scan.sh times the scan).
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${BUILD_DIR:-$root/build-bench}
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j2 --target tervane >/dev/null

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
{
  echo "STRINGTABLE"
  echo "BEGIN"
  for ((id = 0; id < 20000; id++)); do
    case $((id % 4)) in
      0) echo "  $id \"Save the file %s before closing?\"" ;;
      1) echo "  $id \"Line %d of %d:\\r\\nnot found\"" ;;
      2) echo "  $id \"&Open the folder in a new window\"" ;;
      3) echo "  $id \"100%% done, %1 copied to %2\"" ;;
    esac
  done
  echo "END"
} > "$work/strings.rc"
x86_64-w64-mingw32-windres --preprocessor=cpp "$work/strings.rc" -O coff -o "$work/strings.o"
x86_64-w64-mingw32-ld -shared -e 0 "$work/strings.o" -o "$work/strings.dll"
echo '1 RCDATA { 1 }' > "$work/empty.rc"
x86_64-w64-mingw32-windres --preprocessor=cpp "$work/empty.rc" -O coff -o "$work/empty.o"
x86_64-w64-mingw32-ld -shared -e 0 "$work/empty.o" -o "$work/empty.dll"
strings=$("$build/tervane" extract --no-scan "$work/strings.dll" | grep -c '<string id=')
echo "$strings strings, $(stat -c %s "$work/strings.dll") bytes"

ns() { date +%s%N; }
runs=${RUNS:-5}
# Mean microseconds of one run of each over a file: ours, then the peer's.
time_both() {
  local start
  start=$(ns)
  for ((i = 0; i < runs; i++)); do "$build/tervane" extract --no-scan -o "$work/out.txt" "$1"; done
  ours=$((($(ns) - start) / runs / 1000))
  start=$(ns)
  for ((i = 0; i < runs; i++)); do
    x86_64-w64-mingw32-windres -i "$1" -O rc -o "$work/out.rc"
  done
  peer=$((($(ns) - start) / runs / 1000))
}
time_both "$work/empty.dll"
echo "start-up: tervane extract: ${ours} us   windres -i: ${peer} us"
time_both "$work/strings.dll"
echo "tervane extract: ${ours} us   windres -i: ${peer} us   ratio: $(awk "BEGIN { printf \"%.2f\", $ours / $peer }")"
