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

// Each engine's script and files, named by literal specifiers and literal
// new URL(..., import.meta.url), the forms bundlers follow: an app built from the
// package gets both engines copied beside its own code, and fetches only its own.
// The script locates nothing itself: it is handed its files' URLs. The worker of the
// engine with threads imports the engine's script itself, from the URL given as
// mainScriptUrlOrBlob.
const ENGINES = {
  threads: () => ({
    script: import('./image-edit-engine-threads.js'),
    wasm: new URL('./image-edit-engine-threads.wasm', import.meta.url),
    files: {
      'image-edit-engine-threads.worker.js': new URL('./image-edit-engine-threads.worker.js', import.meta.url),
    },
    mainScriptUrlOrBlob: new URL('./image-edit-engine-threads.js', import.meta.url).href,
  }),
  single: () => ({
    script: import('./image-edit-engine.js'),
    wasm: new URL('./image-edit-engine.wasm', import.meta.url),
    files: {},
  }),
};

// A bundler may inline a small file as a data: URL (Vite does so with the worker's
// script). A worker started from one has no origin, so it could not import the
// engine's script from the page's; a blob: URL of the same text has the page's origin.
async function sameOriginFiles({ files, ...rest }) {
  const entries = await Promise.all(Object.entries(files).map(async ([name, url]) => [name,
    url.protocol === 'data:' ? new URL(URL.createObjectURL(await (await fetch(url)).blob())) : url]));
  return { files: Object.fromEntries(entries), ...rest };
}

let engineCode;  // the engine's script and one compilation of its wasm for every element of the page
// Resolves with a new engine module, its memory and `release`, which stops what the
// engine runs beside the page (the worker of the engine with threads, which holds
// the shared memory for as long as it lives). After it the engine must not be used.
export async function loadEngine() {
  engineCode ??= (() => {
    const { script, wasm, ...located } = ENGINES[THREADS ? 'threads' : 'single']();
    return Promise.all([
      script.then((module) => module.default),
      fetch(wasm)
        .then((response) => {
          if (!response.ok) throw new Error(`the engine ${wasm} could not be fetched (${response.status})`);
          return response.arrayBuffer();
        })
        .then((bytes) => WebAssembly.compile(bytes)),
      sameOriginFiles(located),
    ]);
  })();
  // A page whose engine could not be fetched may try again with its next element.
  engineCode.catch(() => { engineCode = undefined; });
  const [createEngine, compiled, { files, mainScriptUrlOrBlob }] = await engineCode;
  let memory;
  const engine = await createEngine({
    locateFile: (name) => files[name]?.href ?? name,
    mainScriptUrlOrBlob,
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
