#!/usr/bin/env bash
# MultiByteToWideChar on labels and long texts in 932, 1251, 1252 and UTF-8, in
# a Release build, beside glibc iconv with an open descriptor in the same run.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${BUILD_DIR:-$root/build-bench}
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DTERVANE_BENCHMARKS=ON >/dev/null
cmake --build "$build" -j2 --target code_pages_bench >/dev/null
taskset -c 0 "$build/bench/code_pages_bench" --benchmark_min_time=0.5 "$@"
