#!/usr/bin/env bash
# Builds the control for web pages into build/web/ (any static file server can serve
# it): the engine compiled to WebAssembly by emscripten (its own CMake configure in
# build/wasm, optimised with -O3 and SIMD), the custom element image-edit-control.js,
# and the demo page index.html with its sample pictures.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
# Debian's emscripten finds the JavaScript packages its optimiser needs (acorn) here.
export NODE_PATH=/usr/share/nodejs

emcmake cmake -S . -B build/wasm -G Ninja -DCMAKE_BUILD_TYPE=Release -DIE_TESTS=OFF >/dev/null
cmake --build build/wasm -j "$(nproc)" --target image_edit_engine

out=build/web
rm -rf "$out"
mkdir -p "$out/samples"
cp build/wasm/hosts/web/image-edit-engine.js build/wasm/hosts/web/image-edit-engine.wasm "$out/"
cp hosts/web/image-edit-control.js hosts/web/demo/* "$out/"
cp hosts/web/samples/*.jpg hosts/web/samples/*.png hosts/web/samples/*.bmp "$out/samples/"
# The 12-megapixel sample is drawn once per build tree rather than kept in the repository.
large=build/wasm/samples/landscape-12mp.jpg
[ -f "$large" ] || /usr/bin/python3 hosts/web/samples/make_samples.py build/wasm/samples --large
cp "$large" "$out/samples/"
echo "build-web: $out/ is ready"
