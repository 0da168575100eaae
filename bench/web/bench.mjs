// The web control's benchmark (not a test): Chromium against the native build on the
// same machine. Run after scripts/build-web.sh and a release build:
//     node bench/web/bench.mjs
// It prints the time of BrightenImage on a 4000 x 3000 picture shown at 100 % (web and
// native, median of several calls), the time from SetImage of a 12-megapixel JPEG to
// the first frame that shows it, and the gzip size of the element (js + wasm).
import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { gzipSync } from 'node:zlib';

import { launchChromium, ROOT, serve, WEB_ROOT } from '../../tests/web/browser.mjs';

const IMAGEEDIT = process.env.IMAGEEDIT ?? join(ROOT, 'build/release/hosts/cli/imageedit');
const LARGE = 'samples/landscape-12mp.jpg';
const CALLS = 6;  // BrightenImage calls timed, alternating between two values so each one works
const LOADS = 3;

const median = (values) => [...values].sort((a, b) => a - b)[Math.floor(values.length / 2)];

async function webTimes() {
  const server = await serve([WEB_ROOT, join(ROOT, 'tests/web')]);
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
      const brighten = [];
      for (let i = 0; i < calls; i++) {
        const start = performance.now();
        editor.BrightenImage(150 + (i % 2));
        brighten.push(performance.now() - start);
      }
      return { firstPaint, brighten };
    }, [LARGE, CALLS, LOADS]);
  } finally {
    await browser.close();
    await server.close();
  }
}

// The script host's run time with and without the calls; the difference is theirs.
function nativeBrightenMs() {
  const load = ['create 640 480', `SetImage "${join(WEB_ROOT, LARGE)}"`];
  const calls = Array.from({ length: CALLS }, (_, i) => `BrightenImage ${150 + (i % 2)}`);
  const run = (lines) => {
    const start = process.hrtime.bigint();
    execFileSync(IMAGEEDIT, ['run', '-'], { input: `${lines.join('\n')}\n` });
    return Number(process.hrtime.bigint() - start) / 1e6;
  };
  const times = (lines) => Math.min(...Array.from({ length: 3 }, () => run(lines)));
  return (times([...load, ...calls]) - times(load)) / CALLS;
}

function bundleGzipBytes() {
  return ['image-edit-control.js', 'image-edit-engine.js', 'image-edit-engine.wasm']
    .map((name) => gzipSync(readFileSync(join(WEB_ROOT, name)), { level: 9 }).length)
    .reduce((a, b) => a + b, 0);
}

const web = await webTimes();
const webBrighten = median(web.brighten);
const native = nativeBrightenMs();
const firstPaint = median(web.firstPaint);
const bundle = bundleGzipBytes();
const row = (what, value, target) => console.log(`${what.padEnd(48)} ${value.padStart(12)}   ${target}`);
row('BrightenImage, 4000 x 3000 at 100 %, web', `${webBrighten.toFixed(1)} ms`, '');
row('BrightenImage, 4000 x 3000 at 100 %, native', `${native.toFixed(1)} ms`, '');
row('  web / native', `${(webBrighten / native).toFixed(2)} x`, 'target: within 2 x');
row('SetImage of a 12-megapixel JPEG to first paint', `${firstPaint.toFixed(0)} ms`, 'target: under 1000 ms');
row('element bundle, gzip (js + wasm)', `${(bundle / 1024).toFixed(0)} KiB`, 'target: under 1 MB');
