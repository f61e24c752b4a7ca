#!/usr/bin/env bash
# Breaks one line of production code at a time and asks whether a test
# notices: tools/mutation_probe.sh [LIST] [ONLY]
#
# LIST (default tools/mutations.txt) names a file, then its changes:
#   @ path/of/file.cpp [ctest -R regex]
#   - the line's text, without its indentation
#   + its replacement
# and, after a change that no test can notice because nothing it gives differs,
#   ? harmless: why
# ONLY, numbers separated by commas, runs those entries alone.
#
# The probe exports HEAD into a temporary folder, builds it once (through
# ccache where there is one), then for each entry changes the line, rebuilds
# incrementally, runs ctest, and puts the line back. It prints a report of
# killed and surviving changes; the exit status is 1 when a change survives
# with no reason given. Set PROBE_KEEP=1 to keep the folder.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
list=$(realpath "${1:-$root/tools/mutations.txt}")
only=${2:-}
jobs=${PROBE_JOBS:-2}
timeout=${PROBE_TIMEOUT:-120}

work=$(mktemp -d "${TMPDIR:-/tmp}/tervane-probe-XXXXXX")
cleanup() { [[ -n "${PROBE_KEEP:-}" ]] || rm -rf "$work"; }
trap cleanup EXIT
tree=$work/tree
mkdir -p "$tree"
# The list as it stands now: it may be edited while the probe runs.
cp "$list" "$work/list"
list=$work/list
git -C "$root" archive HEAD | tar -x -C "$tree"

if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache CMAKE_C_COMPILER_LAUNCHER=ccache
    # Objects are shared with other copies of the tree: paths relative, and
    # the working folder left out of the hash.
    export CCACHE_BASEDIR=$tree CCACHE_NOHASHDIR=1
fi
log=$work/log
echo "probe: building a clean copy in $tree" >&2
cmake -S "$tree" -B "$tree/build" >"$log" 2>&1
cmake --build "$tree/build" -j "$jobs" >>"$log" 2>&1 || {
    tail -40 "$log" >&2
    echo "probe: the clean copy does not build" >&2
    exit 2
}
run_tests() { # regex
    local filter=()
    [[ -n "$1" ]] && filter=(-R "$1")
    (cd "$tree/build" && ctest -j "$jobs" --timeout "$timeout" --stop-on-failure \
        "${filter[@]}" >>"$log" 2>&1)
}
run_tests "" || {
    echo "probe: the clean copy fails its tests; see $log" >&2
    PROBE_KEEP=1
    exit 2
}

# Replaces the one line whose text, without indentation, is exactly the given
# one; fails when there is none or more than one.
substitute() { # file text replacement
    python3 - "$@" <<'EOF'
import sys
path, old, new = sys.argv[1:]
lines = open(path, encoding='utf-8').read().split('\n')
hits = [i for i, line in enumerate(lines) if line.strip() == old.strip()]
if len(hits) != 1:
    sys.exit('%s: %d lines read "%s"' % (path, len(hits), old))
line = lines[hits[0]]
lines[hits[0]] = line[:len(line) - len(line.lstrip())] + new.strip()
open(path, 'w', encoding='utf-8').write('\n'.join(lines))
EOF
}

killed=0
survived=0
broken=0
report=$work/report
: >"$report"
number=0
probe_one() { # file filter old new reason
    local file=$1 filter=$2 old=$3 new=$4 reason=$5 verdict
    number=$((number + 1))
    if [[ -n "$only" && ",$only," != *",$number,"* ]]; then
        return 0
    fi
    cp "$tree/$file" "$work/original"
    if ! substitute "$tree/$file" "$old" "$new" 2>>"$log"; then
        verdict="NOT APPLIED"
        broken=$((broken + 1))
    elif ! cmake --build "$tree/build" -j "$jobs" >>"$log" 2>&1; then
        verdict="DOES NOT BUILD"
        broken=$((broken + 1))
    elif run_tests "$filter"; then
        verdict="SURVIVED"
        survived=$((survived + 1))
    else
        verdict="killed"
        killed=$((killed + 1))
    fi
    # The original back, with a new time so that the next build takes it.
    cp "$work/original" "$tree/$file"
    touch "$tree/$file"
    {
        printf '%3d %-14s %s\n      - %s\n      + %s\n' "$number" "$verdict" "$file" "$old" "$new"
        if [[ "$verdict" == SURVIVED && -n "$reason" ]]; then
            printf '      ? %s\n' "$reason"
        fi
    } | tee -a "$report"
}

file="" filter="" old="" new="" reason=""
flush() {
    if [[ -n "$file" && -n "$old" ]]; then
        probe_one "$file" "$filter" "$old" "$new" "$reason"
    fi
    old="" new="" reason=""
}
while IFS= read -r line || [[ -n "$line" ]]; do
    case "$line" in
    "@ "*)
        flush
        read -r file filter <<<"${line#@ }"
        ;;
    "- "*)
        flush
        old=${line#- }
        ;;
    "+ "*) new=${line#+ } ;;
    "? "*) reason=${line#? } ;;
    esac
done <"$list"
flush

explained=$(grep -A3 ' SURVIVED ' "$report" | grep -c '^      ? ' || true)
echo
echo "probe: $((killed + survived + broken)) of $number changes run, $killed killed, $survived survived ($explained with a reason), $broken not applied or not built"
if ((survived > 0)); then
    echo "survivors:"
    grep -A3 ' SURVIVED ' "$report" | grep -v '^--$'
fi
((survived == explained && broken == 0))
