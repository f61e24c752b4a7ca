#!/usr/bin/env bash
# Sets up, builds and runs every test: tools/test.sh [--sanitize]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/tools/setup.sh"
if [ "${1:-}" = "--sanitize" ]; then
  dir="$root/build-asan"
  bash "$root/tools/build.sh" "$dir" -DTERVANE_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug
  export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
  export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
  export LSAN_OPTIONS="suppressions=$root/tools/lsan.supp"
else
  dir="$root/build"
  bash "$root/tools/build.sh" "$dir"
fi
cd "$dir"
ctest --output-on-failure -j "$(nproc)"
