#!/usr/bin/env bash
# Configures and builds one build folder.
#   scripts/build.sh [build-folder] [extra cmake arguments...]
set -euo pipefail
cd "$(dirname "$0")/.."
dir=${1:-build}
shift || true
if [ ! -f "$dir/CMakeCache.txt" ]; then
  cmake -S . -B "$dir" -G Ninja "$@"
else
  cmake -S . -B "$dir" "$@" >/dev/null
fi
cmake --build "$dir" -j "${TW_JOBS:-2}"
