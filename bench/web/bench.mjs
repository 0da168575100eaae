// The web control's benchmark (not a test): Chromium against the native build on the
// same machine. Run after scripts/build-web.sh and a release build:
//     node bench/web/bench.mjs
// It prints the time of BrightenImage on a 4000 x 3000 picture shown at 100 % natively
// and in two pages: a cross-origin isolated one, where the element runs its engine with
// threads, and a plain one, where it runs the engine without. Chromium compiles the
// engine's hot code for speed only after its first calls, so the time is the median of
// the calls after those (the same calls are made natively), and the first call's time
// is printed on its own. Then the time from SetImage of a 12-megapixel JPEG to the
// first frame that shows it, and the gzip size of the scripts and wasm each page loaded.
import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { gzipSync } from 'node:zlib';

import { launchChromium, ROOT, serve, WEB_ROOT } from '../../tests/web/browser.mjs';

const IMAGEEDIT = process.env.IMAGEEDIT ?? join(ROOT, 'build/release/hosts/cli/imageedit');
const LARGE = 'samples/landscape-12mp.jpg';
// BrightenImage calls, alternating between two values so each one works: the first
// ones warm up, the others are timed.
const WARM_UP = 6;
const CALLS = 6;
const LOADS = 3;

const median = (values) => [...values].sort((a, b) => a - b)[Math.floor(values.length / 2)];

// The times in a page served with (`isolated`) or without the headers of cross-origin
// isolation, with the files of the element the page loaded.
async function webTimes(isolated) {
  const server = await serve([WEB_ROOT, join(ROOT, 'tests/web')], { isolated });
  const browser = await launchChromium();
  try {
    const page = await browser.newPage();
    await page.goto(`${server.url}fixture.html`);
    return await page.evaluate(async ([source, calls, loads]) => {
      const editor = document.createElement('image-edit-control');
      document.body.append(editor);
      await editor.ready;
      const nextFrame = () => new Promise((shown) => requestAnimationFrame(() => setTimeout(shown, 0)));
      const firstPaint = [];
      for (let i = 0; i < loads; i++) {
        editor.SetImage('samples/tiles.bmp');
        await nextFrame();
        const start = performance.now();
        await editor.SetImage(source);
        await nextFrame();
        firstPaint.push(performance.now() - start);
      }
      const brighten = [];  // every call, the warm-up ones first
      for (let i = 0; i < calls; i++) {
        const start = performance.now();
        editor.BrightenImage(150 + (i % 2));
        brighten.push(performance.now() - start);
      }
      const files = performance.getEntriesByType('resource').map((entry) => new URL(entry.name).pathname.slice(1))
        .filter((path) => /\.(js|wasm)$/.test(path));
      return { threads: crossOriginIsolated, firstPaint, brighten, files };
    }, [LARGE, WARM_UP + CALLS, LOADS]);
  } finally {
    await browser.close();
    await server.close();
  }
}

// The script host's run time with and without the calls; the difference is theirs.
function nativeBrightenMs() {
  const load = ['create 640 480', `SetImage "${join(WEB_ROOT, LARGE)}"`];
  const calls = Array.from({ length: WARM_UP + CALLS }, (_, i) => `BrightenImage ${150 + (i % 2)}`);
  const run = (lines) => {
    const start = process.hrtime.bigint();
    execFileSync(IMAGEEDIT, ['run', '-'], { input: `${lines.join('\n')}\n` });
    return Number(process.hrtime.bigint() - start) / 1e6;
  };
  const times = (lines) => Math.min(...Array.from({ length: 3 }, () => run(lines)));
  return (times([...load, ...calls]) - times([...load, ...calls.slice(0, WARM_UP)])) / CALLS;
}

const gzipBytes = (files) => files
  .map((name) => gzipSync(readFileSync(join(WEB_ROOT, name)), { level: 9 }).length)
  .reduce((a, b) => a + b, 0);

const webs = [await webTimes(true), await webTimes(false)];
const native = nativeBrightenMs();
const engine = (web) => (web.threads ? 'threads' : 'one thread');
const warm = (web) => median(web.brighten.slice(WARM_UP));
const row = (what, value, note = '') => console.log(`${what.padEnd(60)} ${value.padStart(9)}   ${note}`);
const brighten = 'BrightenImage, 4000 x 3000 at 100 %';
row(`${brighten}, native`, `${native.toFixed(1)} ms`);
for (const web of webs) {
  row(`${brighten}, web, ${engine(web)}`, `${warm(web).toFixed(1)} ms`,
    `${(warm(web) / native).toFixed(2)} x native${web.threads ? ', target: within 2 x' : ''}`);
}
for (const web of webs) row(`  its first call after the load, web, ${engine(web)}`, `${web.brighten[0].toFixed(1)} ms`);
for (const web of webs) {
  row(`SetImage of a 12-megapixel JPEG to first paint, ${engine(web)}`, `${median(web.firstPaint).toFixed(0)} ms`,
    'target: under 1000 ms');
}
for (const web of webs) {
  row(`element as a page loads it, gzip, ${engine(web)}`, `${(gzipBytes(web.files) / 1024).toFixed(0)} KiB`,
    `target: under 1 MB; ${web.files.join(', ')}`);
}
