#!/usr/bin/env bash
# Installs, with apt-get, whatever of the build and test tools is missing.
set -euo pipefail

packages=(
  g++ cmake make pkg-config
  libgtest-dev libgmock-dev libbenchmark-dev
  binutils-mingw-w64-x86-64 binutils-mingw-w64-i686
  python3 python3-pefile icoutils
  # the command line of the tervane program
  libcli11-dev
  clang libclang-rt-14-dev clang-format
  # real executables: the tests convert every PE file of Wine's Windows side
  wine64
  # the Windows program that reads a translated file under Wine
  gcc-mingw-w64-x86-64
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
