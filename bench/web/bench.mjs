// The web control's benchmark (not a test): Chromium against the native build on the
// same machine, in the same run. Run after scripts/build-web.sh and a release build:
//     node bench/web/bench.mjs
// A 1024 x 768 control shows a 4000 x 3000 picture at 100 % natively and in two pages:
// a cross-origin isolated one, where the element runs its engine with threads, and a
// plain one, where it runs the engine without. It prints
// - the time of BrightenImage and of every destructive effect. Chromium compiles the
//   engine's hot code for speed only after its first calls, so each is the median of
//   the calls after a few that warm up; BrightenImage's first call after the load is
//   printed on its own. The native time is the script host's run time with the calls
//   less its run time without them, per call;
// - the time a pointer move takes while an inserted object is dragged and while the
//   view is panned, real mouse moves over the control, each timed in the page from
//   the pointer event to the frame put on the canvas (median and slowest); natively
//   the mean of a move, found as above;
// - the time from SetImage of a 12-megapixel JPEG to the first frame that shows it,
//   and the gzip size of the scripts and wasm each page loaded.
import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { gzipSync } from 'node:zlib';

import { launchChromium, ROOT, serve, WEB_ROOT } from '../../tests/web/browser.mjs';

const IMAGEEDIT = process.env.IMAGEEDIT ?? join(ROOT, 'build/release/hosts/cli/imageedit');
const LARGE = 'samples/landscape-12mp.jpg';
const CONTROL = [1024, 768];
const LOADS = 3;

// The calls timed, each with the arguments its calls take in turn (alternating, so
// that every call has work to do; an effect acts on the previous one's result).
// HeartImage is the same operation as WaterDropImage.
const CALLS = [
  ['BrightenImage', [150], [151]],
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
const WARM_UP = 3;
const TIMED = 5;
// Natively more calls and moves are made, so that the run time's noise shrinks in the
// time per call.
const NATIVE_CALLS = 6;

// The pointer moves: the button pressed at `press`, then moves back and forth
// between two points, so that each move drags or pans by 20 pixels across and 15 down
// or back. The object is the sun icon (48 x 48) inserted at 500,360; the pan starts
// on the picture away from it.
const ICON = [500, 360, 'samples/icon-sun.png'];
const DRAGS = [
  { what: 'dragging an inserted object', press: [524, 384], there: [544, 399] },
  { what: 'panning the view', press: [300, 300], there: [280, 285] },
];
const WARM_UP_MOVES = 10;
const MOVES = 60;
const NATIVE_MOVES = 200;

const median = (values) => [...values].sort((a, b) => a - b)[Math.floor(values.length / 2)];
const argsOf = ([, ...turns], i) => turns[i % turns.length];
const moveTarget = ({ press, there }, i) => (i % 2 === 0 ? there : press);

// The times in a page served with (`isolated`) or without the headers of cross-origin
// isolation, with the files of the element the page loaded.
async function webTimes(isolated) {
  const server = await serve([WEB_ROOT, join(ROOT, 'tests/web')], { isolated });
  const browser = await launchChromium();
  try {
    const page = await browser.newPage({ viewport: { width: CONTROL[0] + 40, height: CONTROL[1] + 40 } });
    await page.goto(`${server.url}fixture.html`);
    const times = await page.evaluate(async ([source, [width, height], loads, calls, count]) => {
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
          callTimes[name].push(performance.now() - start);
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
    }, [LARGE, CONTROL, LOADS, CALLS, WARM_UP + TIMED]);

    await page.evaluate(async ([x, y, icon]) => {
      const editor = document.getElementById('editor');
      editor.SetNothing();
      await editor.InsertIcon(x, y, icon);
    }, ICON);
    times.moves = [];
    for (const drag of DRAGS) {
      await page.mouse.move(...drag.press);
      await page.mouse.down();
      await page.evaluate(() => { window.moveTimes = []; });
      for (let i = 0; i < WARM_UP_MOVES + MOVES; i++) await page.mouse.move(...moveTarget(drag, i));
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
// benchmark's size with the large picture loaded.
function nativeRunMs(statements, runs = 3) {
  const script = [`create ${CONTROL.join(' ')}`, `SetImage "${join(WEB_ROOT, LARGE)}"`, ...statements].join('\n');
  const run = () => {
    const start = process.hrtime.bigint();
    execFileSync(IMAGEEDIT, ['run', '-'], { cwd: ROOT, input: `${script}\n` });
    return Number(process.hrtime.bigint() - start) / 1e6;
  };
  return Math.min(...Array.from({ length: runs }, run));
}

const statement = (name, args) => [name, ...args.map((arg) =>
  (typeof arg === 'string' ? `"${join(WEB_ROOT, arg)}"` : arg))].join(' ');

function nativeTimes() {
  const loaded = nativeRunMs([], 5);
  const calls = Object.fromEntries(CALLS.map((call) => {
    const statements = Array.from({ length: NATIVE_CALLS }, (_, i) => statement(call[0], argsOf(call, i)));
    return [call[0], (nativeRunMs(statements) - loaded) / NATIVE_CALLS];
  }));
  const icon = ['SetNothing', statement('InsertIcon', ICON)];
  const moves = DRAGS.map((drag) => {
    const [x, y] = drag.press;
    const pressed = [...icon, `hover ${x} ${y}`, `down ${x} ${y}`];
    const moved = Array.from({ length: NATIVE_MOVES }, (_, i) => `move ${moveTarget(drag, i).join(' ')}`);
    const last = moveTarget(drag, NATIVE_MOVES - 1).join(' ');
    return (nativeRunMs([...pressed, ...moved, `up ${last}`]) - nativeRunMs([...pressed, `up ${x} ${y}`])) /
      NATIVE_MOVES;
  });
  return { calls, moves };
}

// ---- the report ----

const gzipBytes = (files) => files
  .map((name) => gzipSync(readFileSync(join(WEB_ROOT, name)), { level: 9 }).length)
  .reduce((a, b) => a + b, 0);

const webs = [await webTimes(true), await webTimes(false)];
const native = nativeTimes();
const engine = (web) => (web.threads ? 'threads' : 'one thread');
const ms = (value) => `${value.toFixed(1)} ms`;
const cell = (text, width = 24) => text.padStart(width);
const ratio = (web, base) => `${(web / base).toFixed(2)} x`;
const line = (what, ...cells) => console.log(`${what.padEnd(44)}${cells.join('')}`);

line(`${CONTROL.join(' x ')} control, 4000 x 3000 at 100 %`, cell('native', 12),
  ...webs.map((web) => cell(`web, ${engine(web)}`)));
for (const call of CALLS) {
  const name = call[0] === 'WaterDropImage' ? 'WaterDropImage, HeartImage' : call[0];
  const base = native.calls[call[0]];
  line(name, cell(ms(base), 12), ...webs.map((web) => {
    const time = median(web.callTimes[call[0]].slice(WARM_UP));
    return cell(`${ms(time)}  ${ratio(time, base)}`);
  }));
  if (call[0] === 'BrightenImage') {
    line('  its first call after the load', cell('', 12), ...webs.map((web) => cell(ms(web.callTimes.BrightenImage[0]))));
  }
}
console.log('(target for BrightenImage with threads: within 2 x native)');
line('pointer move: median / slowest', cell('native mean', 12));
DRAGS.forEach(({ what }, i) => {
  line(`  ${what}`, cell(ms(native.moves[i]), 12), ...webs.map((web) =>
    cell(`${web.moves[i].length > 0 ? median(web.moves[i]).toFixed(1) : '-'} / ${ms(Math.max(...web.moves[i]))}`)));
});
console.log();
const row = (what, value, note = '') => console.log(`${what.padEnd(60)} ${value.padStart(9)}   ${note}`);
for (const web of webs) {
  row(`SetImage of a 12-megapixel JPEG to first paint, ${engine(web)}`, `${median(web.firstPaint).toFixed(0)} ms`,
    'target: under 1000 ms');
}
for (const web of webs) {
  row(`element as a page loads it, gzip, ${engine(web)}`, `${(gzipBytes(web.files) / 1024).toFixed(0)} KiB`,
    `target: under 1 MB; ${web.files.join(', ')}`);
}
