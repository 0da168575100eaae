#!/usr/bin/env bash
# The main job: installs what is missing, builds the script host and the web control,
# runs the sample script (its pictures go to out/), and serves the demo page on
# http://127.0.0.1:${PORT:-8080}/ until interrupted.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target imageedit
mkdir -p out
(cd out && ../build/release/hosts/cli/imageedit run ../samples/tour.ies)
echo "demo: pictures written to out/"

scripts/build-web.sh
port=${PORT:-8080}
echo "demo: open http://127.0.0.1:$port/ (Ctrl+C stops the server)"
exec /usr/bin/python3 -m http.server "$port" --bind 127.0.0.1 --directory build/web
