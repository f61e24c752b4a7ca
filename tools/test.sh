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
  # The plain run reads every Wine file; here a fifth of them, and the ones
  # tests name, keep the sanitizer run inside CI's time.
  sample="$dir/wine-sample"
  wine=/usr/lib/x86_64-linux-gnu/wine
  rm -rf "$sample"
  for arch in x86_64-windows i386-windows; do
    [ -d "$wine/$arch" ] || continue
    mkdir -p "$sample/$arch"
    i=0
    for f in "$wine/$arch"/*; do
      case "$(basename "$f")" in
        shell32.dll | comctl32.dll | comdlg32.dll | notepad.exe | regedit.exe) keep=1 ;;
        *) keep=$((i % 5 == 0)) ;;
      esac
      [ "$keep" = 1 ] && ln -s "$f" "$sample/$arch/"
      i=$((i + 1))
    done
  done
  export TERVANE_WINE_ROOT="$sample"
else
  dir="$root/build"
  bash "$root/tools/build.sh" "$dir"
fi
cd "$dir"
ctest --output-on-failure -j "$(nproc)"
