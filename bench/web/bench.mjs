// The web control's benchmark (not a test): Chromium against the native build on the
// same machine, in the same run. Run after scripts/build-web.sh and a release build:
//     node bench/web/bench.mjs
// A 1024 x 768 control shows a 4000 x 3000 picture at 100 % natively and in two pages:
// a cross-origin isolated one, where the element runs its engine with threads, and a
// plain one, where it runs the engine without. It prints
// - the time of every adjustment and filter and of every destructive effect, and its
//   ratio to the native time against the targets (within 1.5 x native with the engine
//   with threads, 2.5 x without). Chromium compiles the engine's hot code for speed
//   only after its first calls, so each is the median of the calls after a few that
//   warm up; BrightenImage's first call after the load is printed on its own. The
//   native time is the script host's run time with the calls less its run time
//   without them, per call. A setting's calls alternate between two values; one of
//   a switch (GrayImage, InvertImage) turns it off, which refills the picture from the
//   original, so its time is the mean of the two calls (the median of the pairs), on
//   both sides alike. After its calls each setting goes back to its neutral value,
//   untimed, so that the next one runs alone;
// - the time a pointer move takes while the view is panned and while an inserted
//   256 x 192 object is dragged: real mouse moves over the control, each timed in the
//   page from the pointer event to the frame put on the canvas (median and slowest),
//   beside the native tools benchmark's times of the same drags, run here;
// - the time from SetImage of a 12-megapixel JPEG to the first frame that shows it,
//   against the native SetImage of the same file (target within 1.5 x), and the gzip
//   size of the scripts and wasm each page loaded.
import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { gzipSync } from 'node:zlib';

import { launchChromium, ROOT, serve, WEB_ROOT } from '../../tests/web/browser.mjs';

const IMAGEEDIT = process.env.IMAGEEDIT ?? join(ROOT, 'build/release/hosts/cli/imageedit');
const TOOLS_BENCH = process.env.TOOLS_BENCH ?? join(ROOT, 'build/release/bench/tools_bench');
const LARGE = 'samples/landscape-12mp.jpg';
const CONTROL = [1024, 768];
const LOADS = 3;

// The calls timed, each with the arguments its calls take in turn (alternating, so
// that every call has work to do; an effect acts on the previous one's result).
// HeartImage is the same operation as WaterDropImage. The settings come first, each
// with the arguments that put it back to neutral (NEUTRAL).
const SETTINGS = [
  ['BrightenImage', [150], [151]],
  ['ContrastImage', [150], [151]],
  ['HueImage', [50], [51]],
  ['SaturateImage', [150], [151]],
  ['CorrectGamma', [60, 50, 30], [61, 51, 31]],
  ['SharpenImage', [1], [2]],
  ['SmoothImage', [1], [2]],
  ['WhitenImage', [1], [2]],
  ['GrayImage', [1], [0]],
  ['InvertImage', [1], [0]],
];
const NEUTRAL = {
  BrightenImage: [100], ContrastImage: [100], HueImage: [0], SaturateImage: [100], CorrectGamma: [40, 40, 40],
  SharpenImage: [0], SmoothImage: [0], WhitenImage: [0], GrayImage: [0], InvertImage: [0],
};
const CALLS = [
  ...SETTINGS,
  ['RotateImage', [90], [-90]],
  ['FlipImage', []],
  ['ReverseImage', []],
  ['EmbossImage', []],
  ['EqualizeHistogram', []],
  ['CheckImage', []],
  ['BlockImage', []],
  ['WaterDropImage', []],
  ['BlendImage', ['samples/tiles.bmp', 50], ['samples/tiles.bmp', 60]],
];
const WARM_UP = 4;
const TIMED = 6;
// Natively the calls are timed together, in one run of the script host: enough of
// them that their time stands well above how much a run's start and exit vary (tens
// of milliseconds on a busy machine), the quickest of several runs.
const NATIVE_CALLS = 24;
const NATIVE_RUNS = 5;

// The drags of the native tools benchmark (bench/tools_bench.cpp), each under the
// name of its row there: a press at `from`, moves by `step` and the release. The first
// moves warm up, the next 200 are timed (natively three drags of 200 moves). The pan
// comes first, with no object on the picture, as natively. Each move waits for the
// page's next frame, as a mouse's moves come.
const DRAGS = [
  { row: 'view pan, 1024 x 768 control, 4000 x 3000', what: 'panning the view', from: [900, 700], step: [-3, -2] },
  {
    row: 'object drag, 1024 x 768 control, 4000 x 3000', what: 'dragging a 256 x 192 object',
    icon: [200, 150, 'samples/tiles.bmp'], from: [300, 250], step: [2, 1],
  },
];
const WARM_UP_MOVES = 40;
const MOVES = 200;

const median = (values) => [...values].sort((a, b) => a - b)[Math.floor(values.length / 2)];
const argsOf = ([, ...turns], i) => turns[i % turns.length];
// A method's time from its calls, the warm-up ones first: the median of the mean of
// each pair of calls after the warm-up (for calls of equal work, the median call).
const pairedMedian = (times) => {
  const timed = times.slice(WARM_UP);
  return median(Array.from({ length: Math.floor(timed.length / 2) }, (_, i) => (timed[2 * i] + timed[2 * i + 1]) / 2));
};
const TARGETS = { threads: 1.5, 'one thread': 2.5 };

// The times in a page served with (`isolated`) or without the headers of cross-origin
// isolation, with the files of the element the page loaded.
async function webTimes(isolated) {
  const server = await serve([WEB_ROOT, join(ROOT, 'tests/web')], { isolated });
  const browser = await launchChromium();
  try {
    const page = await browser.newPage({ viewport: { width: CONTROL[0] + 40, height: CONTROL[1] + 40 } });
    await page.goto(`${server.url}fixture.html`);
    const times = await page.evaluate(async ([source, [width, height], loads, calls, count, neutral]) => {
      const editor = document.createElement('image-edit-control');
      editor.setAttribute('width', width);
      editor.setAttribute('height', height);
      editor.id = 'editor';
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
      const callTimes = {};  // every call of each method, the warm-up ones first
      for (const [name, ...turns] of calls) {
        callTimes[name] = [];
        for (let i = 0; i < count; i++) {
          const start = performance.now();
          await editor[name](...turns[i % turns.length]);
          editor.GetColor();  // runs a lengthy call now rather than at the next frame
          callTimes[name].push(performance.now() - start);
        }
        if (neutral[name]) {
          await editor[name](...neutral[name]);
          editor.GetColor();
        }
      }
      // Pointer moves are timed around the element's own handler: from a listener
      // that hears the event before it (capturing, on the element) to one that hears
      // it after (bubbling), by when the frame is on the canvas.
      let start = 0;
      window.moveTimes = [];
      editor.addEventListener('pointermove', () => { start = performance.now(); }, { capture: true });
      editor.addEventListener('pointermove', () => window.moveTimes.push(performance.now() - start));
      const files = performance.getEntriesByType('resource').map((entry) => new URL(entry.name).pathname.slice(1))
        .filter((path) => /\.(js|wasm)$/.test(path));
      return { threads: crossOriginIsolated, firstPaint, callTimes, files };
    }, [LARGE, CONTROL, LOADS, CALLS, WARM_UP + TIMED, NEUTRAL]);

    // The drags start from the picture as loaded, as natively: after the effects'
    // quarter turns every repaint of a pan does about twice the work.
    await page.evaluate(async (source) => {
      const editor = document.getElementById('editor');
      await editor.SetImage(source);
      editor.SetNothing();
    }, LARGE);
    times.moves = [];
    for (const { icon, from, step } of DRAGS) {
      if (icon) await page.evaluate((args) => document.getElementById('editor').InsertIcon(...args), icon);
      await page.mouse.move(...from);
      await page.mouse.down();
      await page.evaluate(() => { window.moveTimes = []; });
      for (let i = 1; i <= WARM_UP_MOVES + MOVES; i++) {
        await page.mouse.move(from[0] + i * step[0], from[1] + i * step[1]);
      }
      await page.mouse.up();
      const moves = await page.evaluate(() => window.moveTimes);
      if (moves.length !== WARM_UP_MOVES + MOVES) throw new Error(`${moves.length} pointer moves were heard`);
      times.moves.push(moves.slice(WARM_UP_MOVES));
    }
    return times;
  } finally {
    await browser.close();
    await server.close();
  }
}

// ---- native ----

// The script host's quickest run time (ms) of the statements in a control of the
// benchmark's size with the large picture loaded (or none: `loaded` false).
function nativeRunMs(statements, runs = NATIVE_RUNS, loaded = true) {
  const load = loaded ? [`SetImage "${join(WEB_ROOT, LARGE)}"`] : [];
  const script = [`create ${CONTROL.join(' ')}`, ...load, ...statements].join('\n');
  const run = () => {
    const start = process.hrtime.bigint();
    execFileSync(IMAGEEDIT, ['run', '-'], { cwd: ROOT, input: `${script}\n` });
    return Number(process.hrtime.bigint() - start) / 1e6;
  };
  return Math.min(...Array.from({ length: runs }, run));
}

const statement = (name, args) => [name, ...args.map((arg) =>
  (typeof arg === 'string' ? `"${join(WEB_ROOT, arg)}"` : arg))].join(' ');

function nativeCallTimes() {
  const loaded = nativeRunMs([]);
  return Object.fromEntries(CALLS.map((call) => {
    const statements = Array.from({ length: NATIVE_CALLS }, (_, i) => statement(call[0], argsOf(call, i)));
    return [call[0], (nativeRunMs(statements) - loaded) / NATIVE_CALLS];
  }));
}

// SetImage of the large picture: a run that loads it less one that does not.
const nativeSetImageMs = () => nativeRunMs([]) - nativeRunMs([], NATIVE_RUNS, false);

// The tools benchmark's median and slowest move of each drag, by row name; missing
// rows (or the benchmark itself) leave the native column empty.
function nativeMoveTimes() {
  let printed = '';
  try {
    printed = execFileSync(TOOLS_BENCH, ['--benchmark_filter=ObjectDrag|ViewPan'],
      { encoding: 'utf8', stdio: ['ignore', 'pipe', 'ignore'] });
  } catch {
    return {};
  }
  const rows = {};
  const printedRow = /^ {2}(.+?)\s+median\s+([\d.]+) ms.*?slowest\s+([\d.]+) ms/gm;
  for (const [, row, median, slowest] of printed.matchAll(printedRow)) {
    rows[row] = { median: Number(median), slowest: Number(slowest) };
  }
  return rows;
}

// ---- the report ----

const gzipBytes = (files) => files
  .map((name) => gzipSync(readFileSync(join(WEB_ROOT, name)), { level: 9 }).length)
  .reduce((a, b) => a + b, 0);

const webs = [await webTimes(true), await webTimes(false)];
const native = { calls: nativeCallTimes(), moves: nativeMoveTimes(), setImage: nativeSetImageMs() };
const engine = (web) => (web.threads ? 'threads' : 'one thread');
const ms = (value) => `${value.toFixed(1)} ms`;
const NATIVE_WIDTH = 18;
const cell = (text, width = 26) => text.padStart(width);
const ratio = (web, base) => `${(web / base).toFixed(2)} x`;
const line = (what, ...cells) => console.log(`${what.padEnd(44)}${cells.join('')}`);

line(`${CONTROL.join(' x ')} control, 4000 x 3000 at 100 %`, cell('native', NATIVE_WIDTH),
  ...webs.map((web) => cell(`web, ${engine(web)}`)));
// Over its target: marked with a `!`.
const against = (time, base, target) => {
  if (!(base > 0.5 && time > 0.5)) return ms(time);
  return `${ms(time)}  ${ratio(time, base)}${time / base > target ? ' !' : '  '}`;
};
for (const call of CALLS) {
  const name = `${call[0] === 'WaterDropImage' ? 'WaterDropImage, HeartImage' : call[0]} ${call.slice(1)
    .map((args) => args.join(',')).join('/')}`;
  const base = native.calls[call[0]];
  line(name, cell(ms(base), NATIVE_WIDTH), ...webs.map((web) =>
    cell(against(pairedMedian(web.callTimes[call[0]]), base, TARGETS[engine(web)]))));
  if (call[0] === 'BrightenImage') {
    line('  its first call after the load', cell('', NATIVE_WIDTH),
      ...webs.map((web) => cell(ms(web.callTimes.BrightenImage[0]))));
  }
}
console.log('(targets: within 1.5 x native with threads, 2.5 x without; ! marks a miss)');
const medianSlowest = (times) => `${median(times).toFixed(2)} / ${ms(Math.max(...times))}`;
line('pointer move: median / slowest');
DRAGS.forEach(({ row, what }, i) => {
  const base = native.moves[row];
  line(`  ${what}`, cell(base ? `${base.median.toFixed(2)} / ${ms(base.slowest)}` : '-', NATIVE_WIDTH),
    ...webs.map((web) => cell(medianSlowest(web.moves[i]))));
});
console.log('(natively as bench/tools_bench prints the same drags; target: median under 1 ms)');
console.log();
const row = (what, value, note = '') => console.log(`${what.padEnd(60)} ${value.padStart(9)}   ${note}`);
row('SetImage of a 12-megapixel JPEG, native', `${native.setImage.toFixed(0)} ms`);
for (const web of webs) {
  const time = median(web.firstPaint);
  row(`SetImage of a 12-megapixel JPEG to first paint, ${engine(web)}`, `${time.toFixed(0)} ms`,
    `${ratio(time, native.setImage)}; target: within 1.5 x native`);
}
for (const web of webs) {
  row(`element as a page loads it, gzip, ${engine(web)}`, `${(gzipBytes(web.files) / 1024).toFixed(0)} KiB`,
    `target: under 1 MB; ${web.files.join(', ')}`);
}
