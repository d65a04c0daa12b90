#!/usr/bin/env bash
# Installs what is missing, builds and runs the whole test suite.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
scripts/build.sh build -DCMAKE_BUILD_TYPE=RelWithDebInfo
ctest --test-dir build --output-on-failure -j "${TW_JOBS:-2}"
