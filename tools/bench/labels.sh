#!/usr/bin/env bash
# Labels per second of the three grammars on one core, in a Release build,
# beside a std::regex tokenizer of the String language in the same run.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${BUILD_DIR:-$root/build-bench}
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DTERVANE_BENCHMARKS=ON >/dev/null
cmake --build "$build" -j2 --target labels_bench >/dev/null
taskset -c 0 "$build/bench/labels_bench" --benchmark_min_time=1 "$@"
