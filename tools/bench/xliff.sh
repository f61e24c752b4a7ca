#!/usr/bin/env bash
# The XML layer against the events it carries, in the same run, on one
# generated PE file of 20,000 strings and on the largest Wine file when wine64
# is installed: `extract -o F.xlf` against `extract --events`, and
# `merge F.xlf` against `merge --events` (both through the writer, untranslated,
# into de-DE). Both sides run without the scanner (--no-scan), which is the
# same work on both and refuses many of Wine's files. Prints the mean wall
# and CPU times and their ratios; the CPU time holds on a busy machine.
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
# A copy: the merges write their work files beside the source.
if [ -d "$wine" ]; then
  largest=$(ls -S "$wine" | sed -n 1p) # reads all: no SIGPIPE under pipefail
  cp "$wine/$largest" "$work/$largest"
  files+=("$work/$largest")
fi

runs=${RUNS:-3}
# Mean wall and CPU (user + system) microseconds of one run of a command.
TIMEFORMAT='%R %U %S'
measure() {
  { time (for ((i = 0; i < runs; i++)); do "$@" >/dev/null 2>&1; done) ; } 2>&1 |
    awk -v n="$runs" '{ printf "%d %d\n", $1 * 1e6 / n, ($2 + $3) * 1e6 / n }'
}
ratio() { awk "BEGIN { printf \"%.2f\", $1 / $2 }"; }
for file in "${files[@]}"; do
  t=$build/tervane
  "$t" extract --no-scan --events -o "$work/events" "$file"
  "$t" extract --no-scan -o "$work/doc.xlf" "$file"
  read -r events events_cpu < <(measure "$t" extract --no-scan --events -o "$work/e" "$file")
  read -r xliff xliff_cpu < <(measure "$t" extract --no-scan -o "$work/x.xlf" "$file")
  read -r direct direct_cpu < <(measure "$t" merge --no-scan --events "$work/events" \
    --source "$file" --lang de-DE -o "$work/a.dll")
  read -r merged merged_cpu < <(measure "$t" merge --no-scan "$work/doc.xlf" --lang de-DE \
    -o "$work/b.dll")
  echo "$(basename "$file") ($(stat -c %s "$file") bytes, $(grep -c '<trans-unit' "$work/doc.xlf") units)"
  echo "  extract --events: ${events} us (${events_cpu} CPU)   extract -o .xlf: ${xliff} us" \
    "(${xliff_cpu} CPU)   ratio: $(ratio "$xliff" "$events") wall, $(ratio "$xliff_cpu" "$events_cpu") CPU"
  echo "  merge --events:   ${direct} us (${direct_cpu} CPU)   merge .xlf:      ${merged} us" \
    "(${merged_cpu} CPU)   ratio: $(ratio "$merged" "$direct") wall, $(ratio "$merged_cpu" "$direct_cpu") CPU"
done
