// Browser tests of <image-edit-control>: the element in Debian's Chromium, compared
// pixel for pixel with what the native script host shows for the same calls.
import assert from 'node:assert/strict';
import { createHash } from 'node:crypto';
import { mkdirSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';

import { ROOT, serve, WEB_ROOT } from './browser.mjs';
import {
  assertSamePixels, call, calls, canvasPixels, closePage, cursorHotSpot, nativeBitmapFile, nativeShot,
  nativeTranscript, readBmp, useBrowser,
} from './control-page.mjs';

const web = useBrowser();
const { controlPage, openDemo } = web;

// Runs `check(base)` with the server above (threads) and one without isolation.
async function withBothEngines(check) {
  const plain = await serve([WEB_ROOT, join(ROOT, 'tests/web')], { isolated: false });
  try {
    for (const base of [web.url, plain.url]) await check(base);
  } finally {
    await plain.close();
  }
}

test('pictures load by URL and show exactly what the script host shows', async () => {
  const page = await controlPage(64, 48);
  // A bitmap file (our own reader), and PNG and JPEG through the browser's decoders,
  // one of them a JPEG cut off before its end marker.
  for (const url of ['samples/tiles.bmp', 'data/imageio/rgba_2x2.png', 'data/imageio/solid_16x8.jpg',
    'data/imageio/solid_16x8_cut.jpg']) {
    // Something else first: the load must replace it.
    const steps = await calls(page, [['SetImage', 'samples/balloons.png'], ['SetImage', url]]);
    assertSamePixels(await canvasPixels(page), nativeShot(64, 48, steps.slice(1)), url);
  }
  await closePage(page);
});

test('the engine with threads and the one without save the bitmap the script host saves', async () => {
  // A picture whose passes split their rows over the threads: a table pass, the colour
  // matrix and the filters (each with vector code of its own in the engine), whose
  // rows at the seam read rows of the other part.
  const adjustments = [['BrightenImage', 130], ['SaturateImage', 150], ['HueImage', 60], ['SharpenImage', 1],
    ['SmoothImage', 1], ['WhitenImage', 1]];
  const expected = createHash('sha256').update(nativeBitmapFile(640, 480, [
    'SetImage "build/web/samples/landscape.jpg"', ...adjustments.map((made) => made.join(' ')),
  ], (file) => `SaveEditedBitmap "${file}"`)).digest('hex');
  const saved = [];
  await withBothEngines(async (base) => {
    const page = await controlPage(640, 480, { base });
    saved.push(await page.evaluate(async (list) => {
      const editor = document.getElementById('editor');
      await editor.SetImage('samples/landscape.jpg');
      for (const [name, value] of list) editor[name](value);
      const file = new Promise((written) => editor.addEventListener('saved', (event) => written(event.detail.blob)));
      editor.SaveEditedBitmap('landscape.bmp');
      const digest = await crypto.subtle.digest('SHA-256', await (await file).arrayBuffer());
      const hex = [...new Uint8Array(digest)].map((byte) => byte.toString(16).padStart(2, '0')).join('');
      return { threads: crossOriginIsolated, hex };
    }, adjustments));
    await closePage(page);
  });
  assert.deepEqual(saved, [{ threads: true, hex: expected }, { threads: false, hex: expected }]);
});

test('the demo page: a brightness slider gives the pixels the script host shows', async () => {
  const page = await openDemo();
  await page.fill('#url', 'samples/tiles.bmp');
  await page.click('#open-url button');
  await page.status('Opened samples/tiles');
  // A person drags the slider and lets go: the control is called on release.
  const slider = page.locator('input[data-method=BrightenImage]');
  await slider.focus();
  for (let i = 0; i < 5; i++) await page.keyboard.press('ArrowRight');
  assert.equal(await slider.inputValue(), '105');
  await page.fill('input[data-method=SharpenImage]', '1');
  await page.press('input[data-method=SharpenImage]', 'Enter');
  assertSamePixels(await canvasPixels(page), nativeShot(640, 480, [
    'SetImage "build/web/samples/landscape.jpg"', 'SetImageWidth 640', 'SetImage "build/web/samples/tiles.bmp"',
    ...[101, 102, 103, 104, 105].map((v) => `BrightenImage ${v}`), 'SharpenImage 1',
  ]), 'after the slider');
  mkdirSync(join(ROOT, 'build/web-test-artifacts'), { recursive: true });
  await page.screenshot({ path: join(ROOT, 'build/web-test-artifacts/demo.png'), fullPage: true });
  await closePage(page);
});

test('scroll bars scroll with real clicks on the arrow and the track', async () => {
  const page = await controlPage(200, 150);
  const steps = await calls(page, [['SetImage', 'samples/city.jpg']]);
  const before = await canvasPixels(page);
  // The horizontal bar lies along the bottom, 17 pixels thick, beside the vertical one:
  // its right arrow twice, then its track.
  for (const [x, y] of [[175, 142], [175, 142], [120, 142]]) {
    await page.mouse.click(x, y);
    steps.push(`down ${x} ${y}`, `up ${x} ${y}`);
  }
  const after = await canvasPixels(page);
  assert.notDeepEqual(after.rgb, before.rgb, 'the picture moved');
  assertSamePixels(after, nativeShot(200, 150, steps), 'after scrolling');
  await closePage(page);
});

test('keys: every key the control uses stays from the page, Ctrl+Z and Ctrl+Y included; Escape then Tab leaves', async () => {
  const page = await controlPage(120, 90);
  await call(page, 'SetImage', 'samples/tiles.bmp');
  const original = await canvasPixels(page);
  await call(page, 'BrightenImage', 160);
  const brightened = await canvasPixels(page);
  assert.notDeepEqual(brightened.rgb, original.rgb);
  // A page that Space would scroll, with a text field of its own holding an edit.
  await page.evaluate(() => {
    document.body.style.height = '4000px';
    document.body.append(Object.assign(document.createElement('input'), { id: 'field' }));
    window.pageKeys = [];
    document.addEventListener('keydown', (event) => window.pageKeys.push(event.key));
  });
  await page.locator('#field').pressSequentially('abc');
  await page.mouse.click(60, 45);  // a press gives the control the focus
  await page.evaluate(() => { window.pageKeys = []; });
  await page.keyboard.press('Control+z');
  assert.deepEqual((await canvasPixels(page)).rgb, original.rgb, 'Ctrl+Z undoes');
  await page.keyboard.press('Control+y');
  assert.deepEqual((await canvasPixels(page)).rgb, brightened.rgb, 'Ctrl+Y redoes');
  for (const key of ['Tab', 'ArrowDown', 'PageDown', 'Delete', 'a', 'Enter', ' ', 'Control+c']) {
    await page.keyboard.press(key);
  }
  assert.deepEqual(await page.evaluate(() => [window.pageKeys, document.getElementById('field').value,
    window.scrollY, document.activeElement.id]), [['Control', 'Control', 'Control', 'c'], 'abc', 0, 'editor']);
  await page.keyboard.press('Escape');
  await page.keyboard.press('Tab');
  assert.equal(await page.evaluate(() => document.activeElement.id), 'field', 'Escape then Tab moves the focus on');
  assert.deepEqual(await page.evaluate(() => window.pageKeys.slice(4)), ['Tab']);
  await closePage(page);
});

test('saving hands the page a bitmap file of the saved size for each save with a name', async () => {
  const page = await controlPage(300, 200);
  const saved = await page.evaluate(async () => {
    const editor = document.getElementById('editor');
    await editor.SetImage('samples/tiles.bmp');
    const files = [];
    editor.addEventListener('saved', (event) => files.push(event.detail));
    editor.SaveEditedBitmap('out.bmp');
    editor.SetSaveEditedBitmapSize(100, 50);
    editor.SaveEditedBitmap('out.bmp');  // the same name again is a new file
    editor.SaveEditedBitmap('');         // writes nothing
    return Promise.all(files.map(async ({ fileName, blob }) => [fileName, [...new Uint8Array(await blob.arrayBuffer())]]));
  });
  assert.deepEqual(saved.map(([fileName, bytes]) => {
    const bmp = readBmp(Buffer.from(bytes));
    return [fileName, bmp.width, bmp.height, bmp.fileSize === bmp.length];
  }), [['/tmp/out.bmp', 256, 192, true], ['/tmp/out.bmp', 100, 50, true]]);
  await closePage(page);
});

test('a picture that cannot be fetched or decoded rejects its call and fires error, verbose or not', async () => {
  const page = await controlPage(100, 80);
  const outcome = await page.evaluate(async () => {
    const editor = document.getElementById('editor');
    const events = [];
    for (const type of ['load', 'error']) editor.addEventListener(type, (event) => events.push([type, event.detail]));
    const shown = () => [...editor.shadowRoot.querySelectorAll('dialog[open] .text')].map((text) => text.textContent);
    const status = () => editor.shadowRoot.querySelector('[role=status]').textContent;
    const settle = (promise) => promise.then((value) => ({ value }),
      (error) => ({ error: [error.name, error.code, error.source, error.method, error.result, error.message] }));
    const missing = await settle(editor.SetImage('missing.jpg'));
    const quiet = shown();
    const notAPicture = await settle(editor.InsertIcon(0, 0, 'fixture.html'));
    const afterFailure = status();
    const loaded = await settle(editor.SetImage('samples/tiles.bmp'));
    const afterLoad = status();
    editor.EnableVerbose(true);
    await settle(editor.SetImage('missing.jpg'));
    return { missing, quiet, notAPicture, afterFailure, loaded, afterLoad, verbose: shown(), events };
  });
  const missingText = 'I failed to read missing.jpg. An error code is 2.';
  assert.deepEqual(outcome.missing, { error: ['ImageEditLoadError', 2, 'missing.jpg', 'SetImage', undefined, missingText] });
  assert.deepEqual(outcome.quiet, []);
  assert.deepEqual(outcome.notAPicture.error.slice(0, 4), ['ImageEditLoadError', 13, 'fixture.html', 'InsertIcon']);
  assert.equal(outcome.afterFailure, 'I failed to read fixture.html. An error code is 13.');
  assert.deepEqual(outcome.loaded, { value: undefined });
  assert.equal(outcome.afterLoad, 'Picture loaded');
  assert.deepEqual(outcome.verbose, [missingText]);
  assert.deepEqual(outcome.events.map(([type, detail]) => [type, detail.method, detail.source, detail.code]), [
    ['error', 'SetImage', 'missing.jpg', 2], ['error', 'InsertIcon', 'fixture.html', 13],
    ['load', 'SetImage', 'samples/tiles.bmp', undefined], ['error', 'SetImage', 'missing.jpg', 2]]);
  assert.equal(outcome.events[0][1].message, missingText);
  await closePage(page);
});
test('every interface method is a method of the element with the control\'s results', async () => {
  const page = await controlPage(100, 80);
  const results = await page.evaluate(async () => {
    const editor = document.getElementById('editor');
    const missing = ['SetImage', 'GetColor', 'ScaleImage', 'CorrectGamma', 'InsertBalloonText', 'AboutBox']
      .filter((name) => typeof editor[name] !== 'function');
    const sink = { colors: [], ColorSelected(color) { this.colors.push(color); } };
    const cookie = editor.connectSink(sink);
    let mismatch = '';
    try {
      editor.BrightenImage('150');
    } catch (error) {
      mismatch = `${error.name}: ${error.message}`;
    }
    return {
      missing,
      count: Object.getOwnPropertyNames(Object.getPrototypeOf(editor)).filter((n) => /^[A-Z]/.test(n)).length,
      color: editor.GetColor(),
      scaled: editor.ScaleImage(50),
      background: await editor.SetTextBackgroundColor('TRANSPARENT'),
      nothing: editor.SetNothing(),
      mismatch,
      cookie: cookie > 0,
      disconnected: editor.disconnectSink(cookie),
      again: editor.disconnectSink(cookie),
    };
  });
  assert.deepEqual(results, {
    missing: [], count: 56, color: '000000', scaled: false, background: '', nothing: undefined,
    mismatch: 'TypeError: BrightenImage: argument 1 (nBrightness) must be an integer, not a string',
    cookie: true, disconnected: true, again: false,
  });
  await closePage(page);
});

test('dialogs are page dialogs, and their calls resolve once the person closes them', async () => {
  const page = await controlPage(100, 80);
  const dialog = page.locator('image-edit-control dialog[open]');
  const about = page.evaluate(() => document.getElementById('editor').AboutBox().then(() => 'closed'));
  await dialog.waitFor();
  // Laid out as the script host lays it out, from the same dialog units and font.
  const shown = await dialog.evaluate((box) => {
    const place = (element) => [element.offsetLeft, element.offsetTop, element.offsetWidth, element.offsetHeight];
    const body = box.querySelector('.laid-out');
    return {
      caption: box.querySelector('header').textContent, size: [body.offsetWidth, body.offsetHeight],
      text: box.querySelector('.laid-out span').textContent, ok: place(box.querySelector('button.default')),
      icon: box.querySelector('img').src.startsWith('data:image/png'),
    };
  });
  const native = nativeTranscript(100, 80, ['AboutBox']);
  const [, width, height] = native.match(/shown: dialog 1, (\d+) x (\d+)/);
  const okAt = native.match(/default button "OK" at (\d+),(\d+) (\d+) x (\d+)/).slice(1).map(Number);
  assert.deepEqual(shown, {
    caption: 'About Image Edit Control', size: [Number(width), Number(height)],
    text: 'Image Edit Control Version 1.1', ok: okAt, icon: true,
  });
  await dialog.getByRole('button', { name: 'OK' }).click();
  assert.equal(await about, 'closed');
  const color = call(page, 'SetColor', 'dialog');
  await dialog.locator('input[type=color]').waitFor();
  await dialog.getByRole('button', { name: 'Cancel' }).click();
  assert.equal(await color, '000000');
  assert.equal(await dialog.count(), 0);
  await closePage(page);
});

test('a stroke drawn with real mouse moves gives the pixels the script host draws', async () => {
  const page = await controlPage(120, 90);
  const steps = await calls(page, [['SetImage', 'data/tools/scene_80x60.bmp'], ['SetColor', 'C03020'], ['SetPen', 3]]);
  // A wavy stroke, one mouse move per point, as a hand draws it.
  await page.mouse.move(24, 40);
  await page.mouse.down();
  steps.push('hover 24 40', 'down 24 40');
  for (let i = 1; i <= 40; i++) {
    const [x, y] = [24 + i * 2, 40 + Math.round(10 * Math.sin(i / 4))];
    await page.mouse.move(x, y);
    steps.push(`move ${x} ${y}`);
  }
  await page.mouse.up();
  steps.push(steps.at(-1).replace('move', 'up'));
  assertSamePixels(await canvasPixels(page), nativeShot(120, 90, steps), 'after the stroke');
  await closePage(page);
});

test('a colour pick fires ColorSelected with the colour string and returns to the tool', async () => {
  const page = await controlPage(80, 60);
  await page.evaluate(async () => {
    const editor = document.getElementById('editor');
    await editor.SetImage('data/tools/scene_80x60.bmp');
    window.picked = [];
    editor.addEventListener('ColorSelected', (event) => window.picked.push(event.detail));
    editor.SetBrush(4);
    editor.SelectColor();
  });
  await page.mouse.click(55, 15);  // the green square
  await page.mouse.click(5, 5);    // the brush again: a dot, no event
  assert.deepEqual(await page.evaluate(() => window.picked), ['00FF00']);
  await closePage(page);
});

test('each tool shows its cursor, hot spot included', async () => {
  const page = await controlPage(80, 60);
  await call(page, 'SetImage', 'data/tools/scene_80x60.bmp');
  const shown = [];
  for (const tool of [['SetPen', 2], ['SelectColor'], ['CutImage'], ['SetNothing']]) {
    await call(page, ...tool);
    await page.mouse.move(40, 30);
    await page.mouse.move(41, 30);
    shown.push(await cursorHotSpot(page));
  }
  assert.deepEqual(shown, [[11, 22], [9, 21], [0, 0], 'default']);
  await closePage(page);
});

test('the colour dialog keeps its custom colours for the next SetColor("DIALOG")', async () => {
  const page = await controlPage(80, 60);
  const dialog = page.locator('image-edit-control dialog[open]');
  const chosen = call(page, 'SetColor', 'DIALOG');
  await dialog.locator('input[type=color]').fill('#00ff00');
  await dialog.getByRole('button', { name: 'Add to Custom Colors' }).click();
  await dialog.getByRole('button', { name: 'OK' }).click();
  assert.equal(await chosen, '00FF00');
  const again = call(page, 'SetColor', 'dialog');
  const box = dialog.getByRole('button', { name: 'Custom color 1', exact: true });
  assert.equal(await box.evaluate((button) => button.style.background), 'rgb(0, 255, 0)');
  await dialog.locator('input[type=color]').fill('#123456');
  await box.click();  // picks the custom colour back
  await dialog.getByRole('button', { name: 'OK' }).click();
  assert.equal(await again, '00FF00');
  await closePage(page);
});

test('balloon texts in the page\'s fonts show the pixels the script host shows', async () => {
  // Arial is Liberation Sans with its Hangul from the Korean subset the engine carries;
  // 宋体 is the Chinese subset. Both engines and the script host must draw them alike.
  const balloons = [['SetImage', 'samples/tiles.bmp'], ['SetTextFont', 'Arial,Italic,,12,,Underline,0000FF'],
    ['InsertBalloonText', 4, 4, '', 0, 0, 0, 0, 'Hello, 한글'], ['SetTextFont', '宋体,,,10,StrikeOut,,008000'],
    ['InsertBalloonText', 4, 28, '', 0, 0, 0, 0, '宋体 中文 ABC']];
  await withBothEngines(async (base) => {
    const page = await controlPage(160, 64, { base });
    const steps = await calls(page, balloons);
    assertSamePixels(await canvasPixels(page), nativeShot(160, 64, steps), `balloon texts from ${base}`);
    await closePage(page);
  });
});
