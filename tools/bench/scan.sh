#!/usr/bin/env bash
# The scanner against `cp` of the same file, in the same run, on one generated
# PE file of 15 MB: a string table, a dialog and a menu in front of 15 MB of
# raw data. A scan copies the file once, loads it, rewrites one resource of
# the copy, measures the copy and removes it, so one `cp` is its floor. Prints
# both times (mean of several runs) and their ratio; the aim is under 100 ms.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${BUILD_DIR:-$root/build-bench}
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j2 --target tervane >/dev/null

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
head -c $((15 * 1024 * 1024)) /dev/urandom > "$work/payload.bin"
cat > "$work/big.rc" <<RC
LANGUAGE 9, 1
1 MENU
BEGIN
    MENUITEM "&Open", 100
END
100 DIALOG 0, 0, 100, 40
CAPTION "Info"
BEGIN
    LTEXT "Ready", 1, 4, 4, 90, 10
END
STRINGTABLE
BEGIN
    1 "Save %s?"
END
PAYLOAD RCDATA "$work/payload.bin"
RC
x86_64-w64-mingw32-windres --preprocessor=cpp "$work/big.rc" -O coff -o "$work/big.o"
x86_64-w64-mingw32-ld -shared -e 0 "$work/big.o" -o "$work/big.dll"
verdict=$("$build/tervane" scan "$work/big.dll")
echo "$(stat -c %s "$work/big.dll") bytes: $verdict"

runs=${RUNS:-10}
# Mean wall and CPU (user + system) milliseconds of one run of a command; the
# CPU time holds on a machine that is busy with other work, the wall time not.
TIMEFORMAT='%R %U %S'
measure() {
  { time (for ((i = 0; i < runs; i++)); do "$@"; done) ; } 2>&1 >/dev/null |
    awk -v n="$runs" '{ printf "%.1f %.1f\n", $1 * 1000 / n, ($2 + $3) * 1000 / n }'
}
read -r scan_wall scan_cpu < <(measure "$build/tervane" scan "$work/big.dll")
read -r cp_wall cp_cpu < <(measure sh -c 'cp "$1" "$2" && rm "$2"' - "$work/big.dll" "$work/copy.dll")
echo "tervane scan: ${scan_wall} ms wall, ${scan_cpu} ms CPU   (aim: well under 100 ms)"
echo "cp:           ${cp_wall} ms wall, ${cp_cpu} ms CPU"
awk -v a="$scan_wall" -v b="$cp_wall" -v c="$scan_cpu" -v d="$cp_cpu" \
  'BEGIN { printf "ratio:        %.1f wall, %.1f CPU\n", a / b, c / d }'
