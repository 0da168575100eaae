// Loads one copy of the control's engine for one element: the engine chosen for the
// page, compiled once per page and instantiated afresh for each element, so that an
// element's memory goes with it.

// The engine a page gets. Threads share the engine's memory, which a page may only do
// when it is cross-origin isolated (its server sends Cross-Origin-Opener-Policy:
// same-origin and Cross-Origin-Embedder-Policy: require-corp); there the long pixel
// passes split their rows over two threads. The second thread is a worker started
// from this module's folder, which only a module of the page's own origin may do.
// Both engines give the same pixels.
const THREADS = globalThis.crossOriginIsolated === true && new URL(import.meta.url).origin === location.origin;

// Each engine's script and wasm named by literal specifiers and literal
// new URL(..., import.meta.url), the forms bundlers follow: an app built from the
// package gets both engines copied beside its own code, and fetches only its own.
const ENGINES = {
  threads: () => [
    import('./image-edit-engine-threads.js'), new URL('./image-edit-engine-threads.wasm', import.meta.url),
  ],
  single: () => [import('./image-edit-engine.js'), new URL('./image-edit-engine.wasm', import.meta.url)],
};

let engineCode;  // the engine's script and one compilation of its wasm for every element of the page
// Resolves with a new engine module, its memory and `release`, which stops what the
// engine runs beside the page (the worker of the engine with threads, which holds
// the shared memory for as long as it lives). After it the engine must not be used.
export async function loadEngine() {
  engineCode ??= (() => {
    const [script, wasm] = ENGINES[THREADS ? 'threads' : 'single']();
    return Promise.all([
      script.then((module) => module.default),
      fetch(wasm)
        .then((response) => {
          if (!response.ok) throw new Error(`the engine ${wasm} could not be fetched (${response.status})`);
          return response.arrayBuffer();
        })
        .then((bytes) => WebAssembly.compile(bytes)),
    ]);
  })();
  // A page whose engine could not be fetched may try again with its next element.
  engineCode.catch(() => { engineCode = undefined; });
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
