#!/usr/bin/env bash
# Installs what is missing, builds the release preset and runs the sample script.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target imageedit
mkdir -p out
(cd out && ../build/release/hosts/cli/imageedit run ../samples/tour.ies)
echo "demo: pictures written to out/"
