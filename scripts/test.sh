#!/usr/bin/env bash
# Installs, builds and runs every test: the release build, then the sanitizer build,
# then the web control in Chromium (against the release build's script host), then
# each fuzz target for a short bounded time.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh

jobs=$(nproc)
for preset in release debug; do
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j "$jobs"
  ctest --preset "$preset" -j "$jobs"
done

scripts/build-web.sh
node --test tests/web/*.test.mjs

if [ -x scripts/fuzz.sh ]; then
  scripts/fuzz.sh "${FUZZ_SECONDS:-30}"
fi
