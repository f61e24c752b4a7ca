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
  # the bilingual document: XLIFF written and read by libxml2 (xmllint checks
  # it against the schema), the source file's SHA-256 from nettle
  libxml2-dev libxml2-utils nettle-dev
  # translation tools' round trips of the bilingual document, in the tests
  translate-toolkit omegat
  clang libclang-rt-14-dev clang-format
  # the previewer draws with cairo and pango in Arial's metrics
  libcairo2-dev libpango1.0-dev fonts-liberation
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
