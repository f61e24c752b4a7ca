#!/usr/bin/env bash
# The forward conversion against the MinGW resource decompiler, in the same
# run, on real executables: every PE file of a folder (by default the Windows
# side of Debian's wine64, which `tools/setup.sh` installs for the tests).
# Each file is converted by `tervane extract` and decompiled by `windres -i`;
# the best CPU time (user + system) of a few runs of each is kept. Prints the
# totals, their ratio, on how many files each was faster, and the files where
# tervane lost most.  usage: real.sh [FOLDER]
# --no-scan: the conversion alone is timed, as the peer asks no scanner
# (tools/bench/scan.sh times the scan).
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${BUILD_DIR:-$root/build-bench}
folder=${1:-/usr/lib/x86_64-linux-gnu/wine/x86_64-windows}
if [ ! -d "$folder" ]; then
  echo "real.sh: no folder $folder (install wine64, or name a folder of PE files)" >&2
  exit 1
fi
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j2 --target tervane >/dev/null

python3 - "$build/tervane" "$folder" "${RUNS:-3}" <<'PY'
import os, resource, subprocess, sys

tervane, folder, runs = sys.argv[1], sys.argv[2], int(sys.argv[3])
out = os.path.join(os.environ.get("TMPDIR", "/tmp"), "tervane-real-bench.%d" % os.getpid())

def cpu(command):
    best = None
    for _ in range(runs):
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        spent = after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime
        best = spent if best is None else min(best, spent)
    return best

rows = []
for name in sorted(os.listdir(folder)):
    path = os.path.join(folder, name)
    if not os.path.isfile(path):
        continue
    ours = cpu([tervane, "extract", "--no-scan", "-o", out, path])
    peer = cpu(["x86_64-w64-mingw32-windres", "-i", path, "-O", "rc", "-o", out])
    rows.append((ours, peer, name))
for leftover in (out,):
    if os.path.exists(leftover):
        os.remove(leftover)
ours = sum(r[0] for r in rows)
peer = sum(r[1] for r in rows)
print("%d files; tervane extract: %.0f ms   windres -i: %.0f ms   ratio: %.2f"
      % (len(rows), ours * 1000, peer * 1000, ours / peer))
print("tervane faster on %d files, slower on %d"
      % (sum(r[0] < r[1] for r in rows), sum(r[0] > r[1] for r in rows)))
rows.sort(key=lambda r: r[1] - r[0])
print("largest losses (ms, tervane / windres):",
      ", ".join("%s %.1f/%.1f" % (r[2], r[0] * 1000, r[1] * 1000) for r in rows[:5]))
PY
