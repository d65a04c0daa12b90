#!/usr/bin/env bash
# The main job: installs what is missing, builds, and shows the product at work.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
scripts/build.sh build -DCMAKE_BUILD_TYPE=RelWithDebInfo
echo "Build ready in build/."
