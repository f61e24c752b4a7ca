#!/usr/bin/env bash
# The XML layer against the events it carries, in the same run, on one
# generated PE file of 20,000 strings and on the largest Wine file when wine64
# is installed: `extract -o F.xlf` against `extract --events`, and
# `merge F.xlf` against `merge --events` (both through the writer, untranslated,
# into de-DE). Prints the mean times and their ratios.
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
files=("$work/strings.dll")
wine=/usr/lib/x86_64-linux-gnu/wine/x86_64-windows
[ -d "$wine" ] && files+=("$wine/$(ls -S "$wine" | head -1)")

ns() { date +%s%N; }
runs=${RUNS:-3}
# Mean microseconds of runs of a command.
mean() {
  local start
  start=$(ns)
  for ((i = 0; i < runs; i++)); do "$@" >/dev/null 2>&1; done
  echo $((($(ns) - start) / runs / 1000))
}
ratio() { awk "BEGIN { printf \"%.2f\", $1 / $2 }"; }
for file in "${files[@]}"; do
  t=$build/tervane
  "$t" extract --events -o "$work/events" "$file"
  "$t" extract -o "$work/doc.xlf" "$file"
  events=$(mean "$t" extract --events -o "$work/e" "$file")
  xliff=$(mean "$t" extract -o "$work/x.xlf" "$file")
  direct=$(mean "$t" merge --events "$work/events" --source "$file" --lang de-DE -o "$work/a.dll")
  merged=$(mean "$t" merge "$work/doc.xlf" --lang de-DE -o "$work/b.dll")
  echo "$(basename "$file") ($(stat -c %s "$file") bytes, $(grep -c '<trans-unit' "$work/doc.xlf") units)"
  echo "  extract --events: ${events} us   extract -o .xlf: ${xliff} us   ratio: $(ratio "$xliff" "$events")"
  echo "  merge --events:   ${direct} us   merge .xlf:      ${merged} us   ratio: $(ratio "$merged" "$direct")"
done
