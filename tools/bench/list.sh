#!/usr/bin/env bash
# The resource reader against python3-pefile on one large generated PE file
# (tens of thousands of resources in 24 languages), in the same run: the
# reader's walk through the Win32 calls, then `tervane list --json` and the
# pefile lister over the same file, with their times and ratio.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${BUILD_DIR:-$root/build-bench}
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DTERVANE_BENCHMARKS=ON >/dev/null
cmake --build "$build" -j2 --target resources_bench tervane >/dev/null

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
{
  for language in 9 7 12 10 16 19 22 25 17 4 18 29 5 6 8 11 14 21 24 26 27 30 31 36; do
    echo "LANGUAGE $language, 1"
    echo "STRINGTABLE"
    echo "BEGIN"
    for ((id = 0; id < 8000; id += 5)); do echo "  $id \"string $id of language $language\""; done
    echo "END"
    for ((n = 0; n < 400; n++)); do echo "NAME_$(((n * 7919) % 400)) RCDATA { \"$n\" }"; done
  done
} > "$work/large.rc"
x86_64-w64-mingw32-windres --preprocessor=cpp "$work/large.rc" -O coff -o "$work/large.o"
x86_64-w64-mingw32-ld -shared -e 0 "$work/large.o" -o "$work/large.dll"
count=$("$build/tervane" list --json "$work/large.dll" | wc -l)
echo "$count resources, $(stat -c %s "$work/large.dll") bytes"

TERVANE_BENCH_FILE="$work/large.dll" "$build/bench/resources_bench" --benchmark_min_time=1

ms() { date +%s%N; }
runs=5
start=$(ms)
for ((i = 0; i < runs; i++)); do "$build/tervane" list --json "$work/large.dll" > /dev/null; done
ours=$((($(ms) - start) / runs / 1000000))
start=$(ms)
for ((i = 0; i < runs; i++)); do
  /usr/bin/python3 "$root/tests/app/list_resources.py" "$work/large.dll" > /dev/null
done
peer=$((($(ms) - start) / runs / 1000000))
echo "tervane list --json: $ours ms; python3-pefile: $peer ms; pefile/tervane: $(awk "BEGIN { printf \"%.1f\", $peer / ($ours > 0 ? $ours : 1) }")"
