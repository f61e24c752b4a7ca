#!/usr/bin/env bash
# 2000 update transactions on a 15 MB file against one `cp` of that file, in
# the same run; prints both times in ms and their ratio (the aim: at most 50).
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${BUILD_DIR:-$root/build-bench}
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DTERVANE_BENCHMARKS=ON >/dev/null
cmake --build "$build" -j2 --target update_bench >/dev/null
"$build/bench/update_bench" --benchmark_format=csv 2>/dev/null | awk -F, '
  /^"Transactions/ { t = $3 }
  /^"CopyWithCp/   { c = $3 }
  END {
    printf "2000 transactions + write: %.1f ms\ncp of the file:            %.1f ms\nratio:                     %.1f (aim: <= 50)\n", t, c, t / c
  }'
