#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the tools need, and only
# those that are missing. Safe to run again.
set -euo pipefail

packages=(
  build-essential cmake ninja-build ccache pkg-config
  clang libclang-rt-14-dev
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  rapidjson-dev libsimpleini-dev
  libcli11-dev libsndfile1-dev
  libopenimageio-dev ffmpeg
  qt6-base-dev
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing missing packages: ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
