#!/usr/bin/env bash
# The main job: installs what is missing, builds the script host and the web control,
# runs the sample script (its pictures go to out/), and serves the demo page on
# http://127.0.0.1:${PORT:-8080}/ until interrupted. The server makes the page
# cross-origin isolated, so the control runs its engine with threads.
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
exec /usr/bin/python3 - "$port" build/web <<'EOF'
import functools, http.server, sys

# A static file server whose pages are cross-origin isolated.
class IsolatingHandler(http.server.SimpleHTTPRequestHandler):
    def end_headers(self):
        self.send_header('Cross-Origin-Opener-Policy', 'same-origin')
        self.send_header('Cross-Origin-Embedder-Policy', 'require-corp')
        self.send_header('Cross-Origin-Resource-Policy', 'same-origin')
        super().end_headers()

port, root = int(sys.argv[1]), sys.argv[2]
server = http.server.ThreadingHTTPServer(('127.0.0.1', port), functools.partial(IsolatingHandler, directory=root))
try:
    server.serve_forever()
except KeyboardInterrupt:
    pass
EOF
