#!/usr/bin/env bash
# Builds the libFuzzer targets with clang in build-fuzz/ and runs each one for
# a short while, seeded with the fixtures: tools/fuzz.sh [SECONDS]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-30}
dir="${TERVANE_FUZZ_DIR:-$root/build-fuzz}"
CC=clang CXX=clang++ cmake -S "$root" -B "$dir" -DTERVANE_FUZZ=ON -DTERVANE_TESTS=OFF \
  -DTERVANE_WERROR=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
cmake --build "$dir" -j "$(nproc)" --target tervane_fuzz
# The fixtures that tools/test.sh compiled are the seeds, where they exist.
seeds=()
[ -d "$root/build/fixtures" ] && seeds=("$root/build/fixtures")
for fuzzer in "$dir"/fuzz/*_fuzz; do
  [ -x "$fuzzer" ] || continue
  name=$(basename "$fuzzer")
  corpus="$dir/corpus/$name"
  mkdir -p "$corpus"
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
