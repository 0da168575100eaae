#!/usr/bin/env bash
# Builds the control for web pages into build/web/: the engine compiled to WebAssembly
# by emscripten (optimised with -O3 and SIMD) twice, without threads
# (image-edit-engine.js/.wasm, CMake tree build/wasm) and with them
# (image-edit-engine-threads.js/.wasm/.worker.js, build/wasm-threads), the custom
# element image-edit-control.js with the modules it imports (hosts/web/*.js), its
# method list image-edit-interface.js and its TypeScript declaration
# image-edit-control.d.ts (both generated from the interface description), and the
# demo page index.html with its sample pictures and frame pieces (samples/frames/).
# Each engine carries the fonts text is drawn with inside its .wasm
# (src/platform/fonts) and FreeType, compiled from the Debian source that
# scripts/setup.sh fetches. The same files without the demo make the npm package
# @ostrel/image-edit-control (hosts/web/package.json), packed into build/.
# Any static file server can serve it: the element loads the engine without threads.
# A server that makes the page cross-origin isolated (it sends
# Cross-Origin-Opener-Policy: same-origin and Cross-Origin-Embedder-Policy:
# require-corp) gets the engine with threads, whose long pixel passes run on two
# threads; scripts/demo.sh's server does.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
# Debian's emscripten finds the JavaScript packages its optimiser needs (acorn) here.
export NODE_PATH=/usr/share/nodejs

# One CMake tree per engine: threads need every object compiled for shared memory.
build_engine() {  # TREE IE_WASM_THREADS
  emcmake cmake -S . -B "$1" -G Ninja -DCMAKE_BUILD_TYPE=Release -DIE_TESTS=OFF -DIE_WASM_THREADS="$2" >/dev/null
  cmake --build "$1" -j "$(nproc)" --target image_edit_engine
}
build_engine build/wasm OFF
build_engine build/wasm-threads ON
# The text sample for Node (build/wasm/hosts/web/text-sample.cjs), which
# tests/web/fonts.test.mjs compares with its native build, and the check of the
# engine's memcpy (block-copy-check.cjs), which tests/web/block-copy.test.mjs runs.
cmake --build build/wasm --target image_edit_element_interface text_sample block_copy_check pass_check

out=build/web
rm -rf "$out"
mkdir -p "$out/samples/frames"
cp build/wasm/hosts/web/image-edit-engine.{js,wasm} build/wasm-threads/hosts/web/image-edit-engine-threads.{js,wasm,worker.js} \
  "$out/"
cp hosts/web/*.js build/wasm/hosts/web/image-edit-{interface.js,control.d.ts} hosts/web/demo/* "$out/"
cp hosts/web/samples/*.jpg hosts/web/samples/*.png hosts/web/samples/*.bmp "$out/samples/"
cp hosts/web/samples/frames/*.png "$out/samples/frames/"
# The 12-megapixel sample is drawn once per build tree rather than kept in the repository.
large=build/wasm/samples/landscape-12mp.jpg
[ -f "$large" ] || /usr/bin/python3 hosts/web/samples/make_samples.py build/wasm/samples --large
cp "$large" "$out/samples/"

# The npm package: the element with its modules, declaration and both engines, the
# reference page and hosts/web/package.json; no demo or samples. `npm pack` makes
# build/ostrel-image-edit-control-VERSION.tgz of it, which tests/web/package.test.mjs
# installs into an app built with Vite.
package=build/web-package
rm -rf "$package" build/ostrel-image-edit-control-*.tgz
mkdir -p "$package"
cp hosts/web/package.json REFERENCE.md "$package/"
(cd "$out" && cp image-edit-*.js image-edit-*.wasm image-edit-control.d.ts "../../$package/")
npm pack --silent --pack-destination build "./$package" >/dev/null
echo "build-web: $out/ and $(ls build/ostrel-image-edit-control-*.tgz) are ready"
