#!/usr/bin/env bash
# Builds in release mode and runs every benchmark. Each benchmark reports its
# figures next to a baseline measured in the same run.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
scripts/build.sh build-release -DCMAKE_BUILD_TYPE=Release -DTW_BUILD_TESTS=OFF
for b in $(find build-release/bench -type f -perm -u+x -name 'bench_*' | sort); do
  echo "== $b"
  "$b" "$@"
done
