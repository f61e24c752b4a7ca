#!/usr/bin/env bash
# The backward conversion against the forward one, in the same run, on one
# generated PE file of a few thousand resources (string blocks, menus and
# dialogs): `tervane merge` replays the events that `tervane extract --events`
# wrote and writes the translated file. Prints both times (mean of several
# runs), merge time divided by extract time, and the peak memory of each.
# --no-scan: the conversion alone is timed, as the peer asks no scanner
# (tools/bench/scan.sh times the scan).
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${BUILD_DIR:-$root/build-bench}
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j2 --target tervane >/dev/null

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
blocks=${BLOCKS:-1500}
menus=${MENUS:-1000}
dialogs=${DIALOGS:-1000}
{
  echo "STRINGTABLE"
  echo "BEGIN"
  for ((id = 0; id < blocks * 16; id++)); do
    case $((id % 4)) in
      0) echo "  $id \"Save the file %s before closing?\"" ;;
      1) echo "  $id \"Line %d of %d:\\r\\nnot found\"" ;;
      2) echo "  $id \"&Open the folder in a new window\"" ;;
      3) echo "  $id \"100%% done, %1 copied to %2\"" ;;
    esac
  done
  echo "END"
  for ((id = 1; id <= menus; id++)); do
    echo "$id MENU"
    echo "BEGIN"
    echo "  POPUP \"&File $id\""
    echo "  BEGIN"
    echo "    MENUITEM \"&Open...\\tCtrl+O\", 100"
    echo "    MENUITEM SEPARATOR"
    echo "    MENUITEM \"E&xit\", 101"
    echo "  END"
    echo "END"
  done
  for ((id = 1; id <= dialogs; id++)); do
    echo "$id DIALOGEX 0, 0, 200, 80"
    echo "CAPTION \"About $id\""
    echo "FONT 8, \"MS Shell Dlg\""
    echo "BEGIN"
    echo "  LTEXT \"Version %d of the sample\", 1001, 10, 10, 180, 10"
    echo "  CHECKBOX \"&Remember\", 1002, 10, 25, 180, 10"
    echo "  DEFPUSHBUTTON \"OK\", 1, 75, 55, 50, 14"
    echo "END"
  done
} > "$work/many.rc"
x86_64-w64-mingw32-windres --preprocessor=cpp "$work/many.rc" -O coff -o "$work/many.o"
x86_64-w64-mingw32-ld -shared -e 0 "$work/many.o" -o "$work/many.dll"
"$build/tervane" extract --no-scan --events -o "$work/events.jsonl" "$work/many.dll"
echo "$("$build/tervane" list "$work/many.dll" | tail -1), $(stat -c %s "$work/many.dll") bytes," \
  "$(wc -l < "$work/events.jsonl") events"

ns() { date +%s%N; }
runs=${RUNS:-3}
extract() { "$build/tervane" extract --no-scan --events -o "$work/again.jsonl" "$work/many.dll"; }
merge() {
  "$build/tervane" merge --no-scan --events "$work/events.jsonl" --source "$work/many.dll" --lang 0x40C \
    -o "$work/out.dll"
}
mean_us() {
  local start
  start=$(ns)
  for ((i = 0; i < runs; i++)); do "$1"; done
  echo $((($(ns) - start) / runs / 1000))
}
peak_kb() { /usr/bin/time -f %M bash -c "$(declare -f "$1"); build='$build' work='$work' $1" 2>&1 >/dev/null | tail -1; }
forward=$(mean_us extract)
backward=$(mean_us merge)
echo "tervane extract --events: ${forward} us, peak $(peak_kb extract) KiB"
echo "tervane merge:            ${backward} us, peak $(peak_kb merge) KiB"
echo "merge / extract: $(awk "BEGIN { printf \"%.2f\", $backward / $forward }")"
