// What the browser tests share about one control on a page: opening a page with it,
// reading what it shows, and what the native script host shows for the same calls.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before } from 'node:test';

import { launchChromium, ROOT, serve, WEB_ROOT } from './browser.mjs';

const IMAGEEDIT = process.env.IMAGEEDIT ?? join(ROOT, 'build/release/hosts/cli/imageedit');

// One server of `roots` (the element and samples, this folder's test page, the test
// pictures as data/) and one Chromium for the file's tests; `controlPage` opens a page
// with one control, from another server when `base` is given.
export function useBrowser(roots = [WEB_ROOT, join(ROOT, 'tests/web'), join(ROOT, 'tests')]) {
  let server;
  let browser;
  before(async () => {
    server = await serve(roots);
    browser = await launchChromium();
  });
  after(async () => {
    await browser?.close();
    await server?.close();
  });
  return {
    get browser() { return browser; },
    get url() { return server.url; },
    controlPage: (width, height, options = {}) =>
      openControlPage(browser, options.base ?? server.url, width, height, options),
    // The demo page, once it has opened its first picture; `status(start)` waits for
    // the status line to start so.
    async openDemo() {
      const page = await browser.newPage({ viewport: { width: 1280, height: 1000 } });
      page.errors = [];
      page.on('pageerror', (error) => page.errors.push(error.message));
      await page.goto(server.url);
      page.status = (start) => page.waitForFunction((text) =>
        document.getElementById('status').textContent.startsWith(text), start);
      await page.status('Opened');
      return page;
    },
  };
}

// Calls a method of the page's control and resolves with its result.
export const call = (page, name, ...args) =>
  page.evaluate(([method, values]) => document.getElementById('editor')[method](...values), [name, args]);

// The script host's statement for a call; the page's samples are in build/web/, its
// data/ is tests/data/.
export const statement = ([name, ...args]) => [name, ...args.map((arg) => (typeof arg === 'string'
  ? `"${arg.replace(/^samples\//, 'build/web/samples/').replace(/^data\//, 'tests/data/')}"` : arg))].join(' ');

// Makes the calls in the page, one after another; returns their statements. A call
// whose picture could not be loaded rejects but has run, as the script host's does.
export async function calls(page, list) {
  await page.evaluate(async (made) => {
    const editor = document.getElementById('editor');
    for (const [name, ...args] of made) {
      try {
        await editor[name](...args);
      } catch (error) {
        if (error.name !== 'ImageEditLoadError') throw error;
      }
    }
  }, list);
  return list.map(statement);
}

// The hot spot of the cursor the control shows, or the CSS cursor when it is none of
// the control's own pictures.
export async function cursorHotSpot(page) {
  const css = await page.evaluate(() =>
    document.getElementById('editor').shadowRoot.querySelector('canvas').style.cursor);
  return css.match(/^url\("?data:image\/png;base64,[^)]+\) (\d+) (\d+), auto$/)?.slice(1).map(Number) ?? css;
}

// A page ends with no uncaught error.
export async function closePage(page) {
  assert.deepEqual(page.errors, []);
  await page.close();
}

// A fresh page of `browser` from `base` with one control of the given size and
// language, id "editor"; `page.errors` collects the page's uncaught errors.
export async function openControlPage(browser, base, width, height, { lang = 'en', viewport } = {}) {
  const page = await browser.newPage({ viewport: viewport ?? { width: 800, height: 600 } });
  const errors = [];
  page.on('pageerror', (error) => errors.push(error.message));
  await page.goto(`${base}fixture.html`);
  await page.evaluate(async ([w, h, language]) => {
    const element = document.createElement('image-edit-control');
    element.id = 'editor';
    element.setAttribute('width', w);
    element.setAttribute('height', h);
    element.setAttribute('lang', language);
    document.body.append(element);
    await element.ready;
  }, [width, height, lang]);
  page.errors = errors;
  return page;
}

// What the control shows, once its lengthy calls have run: RGB triples, top-down rows.
export async function canvasPixels(page) {
  await page.waitForFunction(() => !document.getElementById('editor').busy);
  return page.evaluate(() => {
    const canvas = document.getElementById('editor').shadowRoot.querySelector('canvas');
    const { data, width, height } = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height);
    const rgb = [];
    for (let i = 0; i < data.length; i += 4) rgb.push(data[i], data[i + 1], data[i + 2]);
    return { width, height, rgb };
  });
}

// A 24-bit bottom-up bitmap file as RGB triples, top-down rows.
export function readBmp(bytes) {
  assert.equal(bytes.toString('latin1', 0, 2), 'BM');
  const offset = bytes.readUInt32LE(10);
  const width = bytes.readInt32LE(18);
  const height = bytes.readInt32LE(22);
  assert.equal(bytes.readUInt16LE(28), 24);
  const stride = Math.ceil((width * 3) / 4) * 4;
  const rgb = [];
  for (let y = height - 1; y >= 0; y--) {
    for (let x = 0; x < width; x++) {
      const at = offset + y * stride + x * 3;
      rgb.push(bytes[at + 2], bytes[at + 1], bytes[at]);
    }
  }
  return { width, height, rgb, fileSize: bytes.readUInt32LE(2), length: bytes.length };
}

// The bytes of the bitmap file the native script host writes with `write(path)` after
// the script's statements (run with the repository's root as the working folder);
// `settings` are the statements that must come before the control is created.
export function nativeBitmapFile(width, height, statements, write, settings = []) {
  const dir = mkdtempSync(join(tmpdir(), 'imageedit-web-'));
  try {
    const file = join(dir, 'out.bmp');
    const script = [...settings, `create ${width} ${height}`, ...statements, write(file)].join('\n');
    writeFileSync(join(dir, 'script.ies'), `${script}\n`);
    execFileSync(IMAGEEDIT, ['run', join(dir, 'script.ies')], { cwd: ROOT, stdio: ['ignore', 'pipe', 'pipe'] });
    return readFileSync(file);
  } finally {
    rmSync(dir, { recursive: true, force: true });
  }
}

// What the native script host prints for the script's statements.
export function nativeTranscript(width, height, statements) {
  const script = [`create ${width} ${height}`, ...statements].join('\n');
  return execFileSync(IMAGEEDIT, ['run', '-'], { cwd: ROOT, input: `${script}\n` }).toString();
}

// The native script host's `state` report (only `keys`, when given) after the
// script's statements.
export function nativeState(width, height, statements, keys = []) {
  const printed = nativeTranscript(width, height, [...statements, ['state', ...keys].join(' ')]);
  return JSON.parse(printed.trim().split('\n').pop());
}

// How many pixels inside the rectangle of what the control shows are of the colour.
export function pixelsOf(shown, [r, g, b], [left, top, right, bottom]) {
  let count = 0;
  for (let y = top; y < bottom; y++) {
    for (let x = left; x < right; x++) {
      const at = (y * shown.width + x) * 3;
      if (shown.rgb[at] === r && shown.rgb[at + 1] === g && shown.rgb[at + 2] === b) count++;
    }
  }
  return count;
}

// The native script host's `shot` after the script's statements.
export const nativeShot = (width, height, statements, settings = []) =>
  readBmp(nativeBitmapFile(width, height, statements, (file) => `shot "${file}"`, settings));

// `expected` is what the script host shows unless `source` says where it comes from.
export function assertSamePixels(actual, expected, what, source = 'the script host shows') {
  assert.equal(actual.width, expected.width, `${what}: width`);
  assert.equal(actual.height, expected.height, `${what}: height`);
  const at = actual.rgb.findIndex((value, i) => value !== expected.rgb[i]);
  if (at >= 0) {
    const pixel = Math.floor(at / 3);
    const x = pixel % actual.width;
    const y = Math.floor(pixel / actual.width);
    assert.fail(`${what}: pixel ${x},${y} is ${actual.rgb.slice(pixel * 3, pixel * 3 + 3)}, ` +
      `${source} ${expected.rgb.slice(pixel * 3, pixel * 3 + 3)}`);
  }
}
