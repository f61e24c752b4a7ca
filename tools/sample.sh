#!/usr/bin/env bash
# Sets up, builds, and runs the main job on the built-in sample executable:
# its resources, then the tagged document of its strings, menus, dialogs and
# version values.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/tools/setup.sh"
bash "$root/tools/build.sh" "$root/build"
sample="$root/build/fixtures/sample.x64.dll"
echo "== tervane list $sample"
"$root/build/tervane" list "$sample"
echo
echo "== tervane extract $sample"
"$root/build/tervane" extract "$sample"
