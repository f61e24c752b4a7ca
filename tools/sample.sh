#!/usr/bin/env bash
# Sets up, builds, and runs the main job on the built-in sample executable.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/tools/setup.sh"
bash "$root/tools/build.sh" "$root/build"
"$root/build/tervane" list "$root/build/fixtures/sample.x64.dll"
