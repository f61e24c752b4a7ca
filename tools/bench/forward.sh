#!/usr/bin/env bash
# The whole forward conversion against the MinGW resource decompiler, in the
# same run, on one generated PE file of thousands of dialogs, menus and string
# blocks with their version block and dialog init data: `tervane extract`
# writes the whole tagged document, `windres -i` the whole .rc script. Prints
# both times (mean of several runs), their ratio, and the peak memory of each.
# --no-scan: the conversion alone is timed, as the peer asks no scanner
# (tools/bench/scan.sh times the scan).
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${BUILD_DIR:-$root/build-bench}
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j2 --target tervane >/dev/null

dialogs=${DIALOGS:-3000}
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
    COMBOBOX 106, 60, 90, 160, 60, 0x3 | WS_TABSTOP
    DEFPUSHBUTTON "OK", IDOK, 120, 140, 50, 14
    PUSHBUTTON "Cancel", IDCANCEL, 176, 140, 50, 14
END
$d MENUEX
BEGIN
    POPUP "&File", 200
    BEGIN
        MENUITEM "&Open...\tCtrl+O", 201
        MENUITEM "&Save item $d\tCtrl+S", 202
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
$d 240
BEGIN
    106, 0x403, 4, 0, 0x6e4f, 0x0065,
    106, 0x403, 4, 0, 0x7754, 0x006f,
    0
END
RC
  done
  echo "STRINGTABLE"
  echo "BEGIN"
  for ((id = 0; id < dialogs * 4; id++)); do echo "  $id \"Item %d of %s: &Open the folder $id\""; done
  echo "END"
  cat <<RC
1 VERSIONINFO
FILEVERSION 1,0,0,1
BEGIN
    BLOCK "StringFileInfo"
    BEGIN
        BLOCK "040904b0"
        BEGIN
            VALUE "Comments", "A benchmark file\0"
            VALUE "CompanyName", "Tervane\0"
            VALUE "FileDescription", "Many dialogs and menus\0"
            VALUE "ProductName", "Tervane benchmark\0"
        END
    END
    BLOCK "VarFileInfo"
    BEGIN
        VALUE "Translation", 0x409, 1200
    END
END
RC
} > "$work/forward.rc"
x86_64-w64-mingw32-windres --preprocessor=cpp -I "$root/tests/fixtures" "$work/forward.rc" \
  -O coff -o "$work/forward.o"
x86_64-w64-mingw32-ld -shared -e 0 "$work/forward.o" -o "$work/forward.dll"
"$build/tervane" extract --no-scan -o "$work/out.txt" "$work/forward.dll"
echo "$dialogs dialogs, $dialogs menus, $((dialogs * 4)) strings, $(stat -c %s "$work/forward.dll") bytes;" \
  "document of $(wc -l < "$work/out.txt") lines, $(grep -c '<dialog ' "$work/out.txt" || true) dialogs"

# Mean wall time and peak resident memory of the children, measured by Python's rusage.
python3 - "$build/tervane" "$work" "${RUNS:-5}" <<'PY'
import resource, subprocess, sys, time
tervane, work, runs = sys.argv[1], sys.argv[2], int(sys.argv[3])
def measure(cmd):
    start = time.perf_counter()
    for _ in range(runs):
        subprocess.run(cmd, check=True)
    return (time.perf_counter() - start) / runs * 1000
def peak(cmd):
    # RUSAGE_CHILDREN keeps the largest child so far: measure each in a fresh process.
    code = ("import resource,subprocess,sys;subprocess.run(sys.argv[1:],check=True);"
            "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)")
    return int(subprocess.run([sys.executable, "-c", code] + cmd, check=True,
                              capture_output=True, text=True).stdout)
ours_cmd = [tervane, "extract", "--no-scan", "-o", f"{work}/out.txt", f"{work}/forward.dll"]
peer_cmd = ["x86_64-w64-mingw32-windres", "-i", f"{work}/forward.dll", "-O", "rc",
            "-o", f"{work}/out.rc"]
ours, peer = measure(ours_cmd), measure(peer_cmd)
print(f"tervane extract: {ours:.1f} ms, peak {peak(ours_cmd) / 1024:.1f} MiB   "
      f"windres -i: {peer:.1f} ms, peak {peak(peer_cmd) / 1024:.1f} MiB   ratio: {ours / peer:.2f}")
PY
