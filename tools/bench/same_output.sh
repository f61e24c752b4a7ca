#!/usr/bin/env bash
# Holds a changed tervane to the output of a reference build: `extract
# --events` and `extract --document` of every PE fixture and every PE file of
# Debian's wine64 must match byte for byte, exit status included. Prints the
# files that differ and the count compared; fails on any difference.
# usage: same_output.sh REFERENCE [TERVANE] [FIXTURE_DIR] [FOLDER]
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
reference=${1:?usage: same_output.sh REFERENCE [TERVANE] [FIXTURE_DIR] [FOLDER]}
tervane=${2:-$root/build-bench/tervane}
fixtures=${3:-$root/build/fixtures}
folder=${4:-/usr/lib/x86_64-linux-gnu/wine/x86_64-windows}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

files=0
differ=0
for path in "$fixtures"/*.dll "$folder"/*; do
  [ -f "$path" ] || continue
  files=$((files + 1))
  for mode in --events --document; do
    set +e
    "$reference" extract "$mode" "$path" >"$work/a" 2>/dev/null
    a=$?
    "$tervane" extract "$mode" "$path" >"$work/b" 2>/dev/null
    b=$?
    set -e
    if [ "$a" != "$b" ] || ! cmp -s "$work/a" "$work/b"; then
      echo "differs: $mode $path (exit $a / $b)"
      differ=$((differ + 1))
    fi
  done
done
echo "$files files, $((files * 2)) outputs compared, $differ differences"
[ "$differ" -eq 0 ]
