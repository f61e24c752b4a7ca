#!/usr/bin/env bash
# Builds the libFuzzer targets with clang in build-fuzz/ and runs each one for
# a while: tools/fuzz.sh [SECONDS [TARGET...]]
# Seeds: tests/fuzz/seeds/<target>/ where it exists, else the PE fixtures that
# tools/test.sh compiled. New inputs found go to build-fuzz/corpus/<target>/.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-30}
shift || true
dir="${TERVANE_FUZZ_DIR:-$root/build-fuzz}"
CC=clang CXX=clang++ cmake -S "$root" -B "$dir" -DTERVANE_FUZZ=ON -DTERVANE_TESTS=OFF \
  -DTERVANE_WERROR=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
cmake --build "$dir" -j "$(nproc)" --target tervane_fuzz
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  for fuzzer in "$dir"/fuzz/*_fuzz; do
    [ -x "$fuzzer" ] && targets+=("$(basename "$fuzzer")")
  done
fi
for name in "${targets[@]}"; do
  fuzzer="$dir/fuzz/$name"
  corpus="$dir/corpus/$name"
  mkdir -p "$corpus"
  seeds=()
  if [ -d "$root/tests/fuzz/seeds/$name" ]; then
    seeds=("$root/tests/fuzz/seeds/$name")
  elif [ -d "$root/build/fixtures" ]; then
    seeds=("$root/build/fixtures")
  fi
  echo "Fuzzing $name for $seconds s"
  log="$dir/$name.log"
  if ! "$fuzzer" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
    -artifact_prefix="$dir/" -print_final_stats=1 "$corpus" "${seeds[@]}" > "$log" 2>&1; then
    tail -n 40 "$log"
    echo "$name found a failure: the input is in $dir/"
    exit 1
  fi
  tail -n 3 "$log"
done
