#!/usr/bin/env bash
# The forward conversion's whole-process costs against the MinGW resource
# decompiler, in one run, on one generated PE file of 20,000 strings, 2,000
# dialogs and 1,000 menus (STRINGS, DIALOGS, MENUS change them): CPU user and
# system time, peak resident memory and page faults of each (best of RUNS),
# and their ratios.  usage: forward_profile.sh [TERVANE]
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${BUILD_DIR:-$root/build-bench}
tervane=${1:-$build/tervane}
if [ $# -eq 0 ]; then
  cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release >/dev/null
  cmake --build "$build" -j2 --target tervane >/dev/null
fi
strings=${STRINGS:-20000} dialogs=${DIALOGS:-2000} menus=${MENUS:-1000}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
{
  echo '#include "winres_min.h"'
  echo 'LANGUAGE LANG_ENGLISH, SUBLANG_ENGLISH_US'
  for ((d = 1; d <= dialogs; d++)); do
    cat <<RC
$d DIALOGEX 0, 0, 240, 160
STYLE DS_SETFONT | DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU
CAPTION "Properties of item $d"
FONT 8, "MS Shell Dlg", 400, 0, 0x1
BEGIN
    GROUPBOX "&Options", 100, 7, 7, 226, 70
    AUTOCHECKBOX "&Keep a copy of %s", 101, 14, 20, 200, 10
    AUTORADIOBUTTON "Save &now", 102, 14, 34, 90, 10, WS_GROUP
    AUTORADIOBUTTON "Save &later", 103, 110, 34, 90, 10
    LTEXT "&Name:", 104, 14, 52, 40, 8
    EDITTEXT 105, 60, 50, 160, 14, 0x80
    DEFPUSHBUTTON "OK", IDOK, 120, 140, 50, 14
    PUSHBUTTON "Cancel", IDCANCEL, 176, 140, 50, 14
END
RC
  done
  for ((m = 1; m <= menus; m++)); do
    cat <<RC
$m MENUEX
BEGIN
    POPUP "&File", 200
    BEGIN
        MENUITEM "&Open...\tCtrl+O", 201
        MENUITEM "&Save item $m\tCtrl+S", 202
        MENUITEM "", 0, 0x800
        POPUP "Recent", 203
        BEGIN
            MENUITEM "File &1", 204
            MENUITEM "File &2", 205
        END
        MENUITEM "E&xit", 206
    END
    MENUITEM "&Help", 207
END
RC
  done
  echo "STRINGTABLE"
  echo "BEGIN"
  for ((id = 0; id < strings; id++)); do echo "  $id \"Item %d of %s: &Open the folder $id\""; done
  echo "END"
} > "$work/forward.rc"
x86_64-w64-mingw32-windres --preprocessor=cpp -I "$root/tests/fixtures" "$work/forward.rc" \
  -O coff -o "$work/forward.o"
x86_64-w64-mingw32-ld -shared -e 0 "$work/forward.o" -o "$work/forward.dll"
echo "$strings strings, $dialogs dialogs, $menus menus: $(stat -c %s "$work/forward.dll") bytes"

# rusage of each child alone: user, system, peak resident, minor and major faults.
python3 - "$tervane" "$work" "${RUNS:-5}" <<'PY'
import os, sys
tervane, work, runs = sys.argv[1], sys.argv[2], int(sys.argv[3])
def run(cmd):
    best = None
    for _ in range(runs):
        pid = os.fork()
        if pid == 0:
            fd = os.open(os.devnull, os.O_WRONLY)
            os.dup2(fd, 1)
            os.execvp(cmd[0], cmd)
        _, status, use = os.wait4(pid, 0)
        if status != 0:
            sys.exit("%s failed" % cmd[0])
        row = (use.ru_utime + use.ru_stime, use.ru_utime, use.ru_stime, use.ru_maxrss / 1024,
               use.ru_minflt + use.ru_majflt)
        best = row if best is None or row[0] < best[0] else best
    return best
ours = run([tervane, "extract", f"{work}/forward.dll"])
peer = run(["x86_64-w64-mingw32-windres", "-i", f"{work}/forward.dll", "-O", "rc",
            "-o", "/dev/null"])
for name, r in (("tervane extract", ours), ("windres -i", peer)):
    print("%-16s CPU %.3f s (user %.3f, sys %.3f), peak %.1f MiB, %d page faults" % (name, *r))
print("ratios: time %.2f, peak %.2f, page faults %.2f"
      % (ours[0] / peer[0], ours[3] / peer[3], ours[4] / peer[4]))
PY
