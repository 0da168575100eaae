// Loads one copy of the control's engine for one element: the engine chosen for the
// page, compiled once per page and instantiated afresh for each element, so that an
// element's memory goes with it.

// The engine a page gets. Threads share the engine's memory, which a page may only do
// when it is cross-origin isolated (its server sends Cross-Origin-Opener-Policy:
// same-origin and Cross-Origin-Embedder-Policy: require-corp); there the long pixel
// passes split their rows over two threads. The second thread is a worker started
// from this module's folder, which only a module of the page's own origin may do.
// Both engines give the same pixels.
const ENGINE = globalThis.crossOriginIsolated === true && new URL(import.meta.url).origin === location.origin
  ? 'image-edit-engine-threads' : 'image-edit-engine';

let engineCode;  // the engine's script and one compilation of its wasm for every element of the page
// Resolves with a new engine module, its memory and `release`, which stops what the
// engine runs beside the page (the worker of the engine with threads, which holds
// the shared memory for as long as it lives). After it the engine must not be used.
export async function loadEngine() {
  engineCode ??= Promise.all([
    import(`./${ENGINE}.js`).then((script) => script.default),
    fetch(new URL(`./${ENGINE}.wasm`, import.meta.url))
      .then((response) => response.arrayBuffer())
      .then((bytes) => WebAssembly.compile(bytes)),
  ]);
  const [createEngine, compiled] = await engineCode;
  let memory;
  const engine = await createEngine({
    instantiateWasm(imports, receive) {
      WebAssembly.instantiate(compiled, imports).then((instance) => {
        // Exported by the engine without threads, imported (shared) with them.
        memory = [instance.exports, ...Object.values(imports)].flatMap(Object.values)
          .find((value) => value instanceof WebAssembly.Memory);
        receive(instance, compiled);
      });
      return {};
    },
  });
  const release = () => engine.PThread?.terminateAllThreads();
  return { engine, memory, release };
}
