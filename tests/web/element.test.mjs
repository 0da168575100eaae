// The element as a page's developer meets it: what its removal gives back, how it
// sizes itself in the page's layout, what it exports, and what assistive technology
// is told.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';

import { ROOT, serve, WEB_ROOT } from './browser.mjs';
import {
  assertSamePixels, calls, canvasPixels, closePage, nativeShot, readBmp, useBrowser,
} from './control-page.mjs';

const ROOTS = [WEB_ROOT, join(ROOT, 'tests/web'), join(ROOT, 'tests')];
const shared = useBrowser(ROOTS);
const { controlPage } = shared;

// The resident memory of the browser's renderers, in bytes, once the page's garbage
// is collected.
async function rendererMemory(page) {
  const session = await page.context().newCDPSession(page);
  await session.send('HeapProfiler.collectGarbage');
  await new Promise((done) => setTimeout(done, 300));  // a terminated worker goes after its page
  await session.send('HeapProfiler.collectGarbage');
  await session.detach();
  const system = await page.context().browser().newBrowserCDPSession();
  const { processInfo } = await system.send('SystemInfo.getProcessInfo');
  await system.detach();
  return processInfo.filter(({ type }) => type === 'renderer').reduce((sum, { id }) => {
    const status = readFileSync(`/proc/${id}/status`, 'utf8');
    return sum + Number(status.match(/VmRSS:\s+(\d+) kB/)[1]) * 1024;
  }, 0);
}

// Mounts an editor, opens the 12-megapixel picture in it and removes it.
const mountAndRemove = (page) => page.evaluate(async () => {
  const editor = document.createElement('image-edit-control');
  document.body.append(editor);
  await editor.ready;
  await editor.SetImage('samples/landscape-12mp.jpg');
  editor.remove();
  await new Promise((done) => setTimeout(done));
});

let plainServer;
before(async () => { plainServer = await serve(ROOTS, { isolated: false }); });
after(() => plainServer?.close());

for (const [engine, base] of [['with threads', () => shared.url], ['without threads', () => plainServer.url]]) {
  test(`twenty editors of a 12-megapixel picture mounted and removed leave the memory as it was (engine ${engine})`,
    async () => {
      const page = await controlPage(200, 150, { base: base() });
      assert.equal(await page.evaluate(() => crossOriginIsolated), engine === 'with threads');
      await page.evaluate(() => document.getElementById('editor').remove());
      await mountAndRemove(page);  // the engine compiled, the decoder warmed
      const start = await rendererMemory(page);
      for (let i = 0; i < 20; i++) await mountAndRemove(page);
      const end = await rendererMemory(page);
      assert.ok(end - start < 64 * 1024 * 1024,
        `the renderers grew by ${Math.round((end - start) / 1048576)} MiB, from ${Math.round(start / 1048576)} MiB`);
      await closePage(page);
    });
}

test('a removed element gives up its control, a moved one keeps it, and a second definition is harmless', async () => {
  const page = await controlPage(120, 90);
  const outcome = await page.evaluate(async () => {
    const editor = document.getElementById('editor');
    const hasPicture = () => editor.toBlob('image/bmp').then(() => true, () => false);
    await editor.SetImage('samples/tiles.bmp');
    const box = document.createElement('div');
    document.body.append(box);
    box.append(editor);  // moved in one go
    const moved = await hasPicture();
    const firstReady = editor.ready;
    editor.remove();
    await new Promise((done) => setTimeout(done));
    const removed = [editor.GetColor(), editor.ready !== firstReady];
    document.body.append(editor);
    await editor.ready;
    const again = await hasPicture();
    // Removed and put back while a picture is fetched and decoded: that call rejects,
    // and nothing of it reaches the new control.
    const cut = editor.SetImage('samples/landscape-12mp.jpg');
    await new Promise((done) => setTimeout(done, 20));
    editor.remove();
    await new Promise((done) => setTimeout(done));
    document.body.append(editor);
    const cutShort = await cut.then(() => 'resolved', (error) => error.message);
    await editor.SetImage('samples/tiles.bmp');
    const [fresh] = await Promise.all([editor.toBlob('image/bmp').then((blob) => createImageBitmap(blob))]);
    const defined = customElements.get('image-edit-control');
    await import(`./image-edit-control.js?${Math.random()}`);
    return {
      moved, removed, again, cutShort, fresh: [fresh.width, fresh.height],
      sameDefinition: customElements.get('image-edit-control') === defined,
    };
  });
  assert.deepEqual(outcome, {
    moved: true, removed: [null, true], again: false, fresh: [256, 192], sameDefinition: true,
    cutShort: 'samples/landscape-12mp.jpg: the element was removed from the page',
  });
  await closePage(page);
});

test('the control is made at its box\'s size; later the box resizes its window, never past the box', async () => {
  const page = await controlPage(120, 90);
  const sizes = await page.evaluate(async () => {
    const frame = document.createElement('div');
    frame.style.width = '500px';
    document.body.replaceChildren(frame);
    const editor = document.createElement('image-edit-control');
    editor.id = 'editor';
    editor.style.cssText = 'position: static; width: 100%; height: 300px; border: 2px solid';
    frame.append(editor);
    await editor.ready;
    const canvas = editor.shadowRoot.querySelector('canvas');
    const frameDone = () => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)));
    const measure = () => {
      const box = editor.getBoundingClientRect();
      return [box.width, box.height, canvas.width, canvas.height, canvas.getBoundingClientRect().width];
    };
    const made = measure();
    await editor.SetImage('samples/landscape.jpg');
    frame.style.width = '300px';
    await frameDone();
    const narrower = measure();
    editor.style.maxWidth = '200px';
    await frameDone();
    const capped = measure();
    editor.style.cssText = 'position: static; border: 0';
    editor.setAttribute('width', '400');
    await frameDone();
    return { made, narrower, capped, attribute: measure() };
  });
  // The border is the element's; the control has its content box.
  assert.deepEqual(sizes.made, [504, 304, 500, 300, 500]);
  assert.deepEqual(sizes.narrower, [304, 304, 300, 300, 300]);
  assert.deepEqual(sizes.capped, [204, 304, 200, 300, 200]);
  assert.deepEqual(sizes.attribute, [400, 480, 400, 480, 400]);
  // Made 500 wide, its editor stays so: beyond the 500 pixels the control is white.
  await page.evaluate(() => { document.getElementById('editor').style.width = '600px'; });
  await page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
  const { width, rgb } = await canvasPixels(page);
  assert.equal(width, 600);
  const at = (x, y) => rgb.slice((y * width + x) * 3, (y * width + x) * 3 + 3);
  assert.deepEqual(at(550, 40), [255, 255, 255]);
  assert.notDeepEqual(at(450, 40), [255, 255, 255], 'the picture still shows in the editor');
  await closePage(page);
});

for (const scaleFactor of [2, 1.5]) {
  test(`at a device pixel ratio of ${scaleFactor} a control pixel covers whole device pixels`, async () => {
    const page = await shared.browser.newPage({ viewport: { width: 400, height: 300 }, deviceScaleFactor: scaleFactor });
    page.errors = [];
    page.on('pageerror', (error) => page.errors.push(error.message));
    await page.goto(`${shared.url}fixture.html`);
    const shown = await page.evaluate(async () => {
      const editor = Object.assign(document.createElement('image-edit-control'), { id: 'editor' });
      editor.setAttribute('width', '120');
      editor.setAttribute('height', '90');
      document.body.append(editor);
      await editor.ready;
      await editor.SetImage('samples/tiles.bmp');
      editor.SetPen(1);
      const canvas = editor.shadowRoot.querySelector('canvas');
      return [canvas.width, canvas.height, canvas.getBoundingClientRect().width * devicePixelRatio];
    });
    const pixels = Math.floor(scaleFactor);
    assert.deepEqual(shown, [120 * scaleFactor / pixels, 90 * scaleFactor / pixels, 120 * scaleFactor]);
    // A stroke lands on the control pixels under the pointer.
    const before = await canvasPixels(page);
    await page.mouse.move(10, 30);
    await page.mouse.down();
    await page.mouse.move(50, 30, { steps: 4 });
    await page.mouse.up();
    const after = await canvasPixels(page);
    const changedRows = new Set();
    for (let i = 0; i < after.rgb.length; i += 3) {
      if (after.rgb[i] !== before.rgb[i] || after.rgb[i + 1] !== before.rgb[i + 1]) {
        changedRows.add(Math.floor(i / 3 / after.width));
      }
    }
    const row = Math.floor(30 * scaleFactor / pixels);
    assert.ok([...changedRows].every((y) => Math.abs(y - row) <= 1) && changedRows.size > 0,
      `the stroke's rows: ${[...changedRows]}, expected about ${row}`);
    await closePage(page);
  });
}

test('toBlob gives the saved picture as PNG, JPEG, WebP or the bitmap file; with no picture it rejects', async () => {
  const page = await controlPage(300, 200);
  const exported = await page.evaluate(async () => {
    const editor = document.getElementById('editor');
    const empty = await editor.toBlob().then(() => 'resolved', (error) => error.message);
    await editor.SetImage('samples/tiles.bmp');
    editor.BrightenImage(140);
    const saved = new Promise((done) => editor.addEventListener('saved', (event) => done(event.detail.blob), { once: true }));
    editor.SaveEditedBitmap('edit.bmp');
    const bytes = async (blob) => [...new Uint8Array(await blob.arrayBuffer())];
    const decoded = async (blob) => {
      const bitmap = await createImageBitmap(blob);
      const canvas = new OffscreenCanvas(bitmap.width, bitmap.height);
      canvas.getContext('2d').drawImage(bitmap, 0, 0);
      return [...canvas.getContext('2d').getImageData(0, 0, bitmap.width, bitmap.height).data];
    };
    const [png, jpeg, webp, bmp] = await Promise.all([editor.toBlob(), editor.toBlob('image/jpeg', 0.9),
      editor.toBlob('image/webp', 0.8), editor.toBlob('image/bmp')]);
    return {
      empty, types: [png.type, jpeg.type, webp.type, bmp.type], saved: await bytes(await saved), bmp: await bytes(bmp),
      png: await decoded(png), jpegSize: (await createImageBitmap(jpeg)).width,
    };
  });
  assert.equal(exported.empty, 'toBlob: there is no picture to save');
  assert.deepEqual(exported.types, ['image/png', 'image/jpeg', 'image/webp', 'image/bmp']);
  assert.deepEqual(exported.bmp, exported.saved);
  const saved = readBmp(Buffer.from(exported.saved));
  const rgb = exported.png.filter((_, i) => i % 4 !== 3);
  assert.deepEqual(rgb, saved.rgb, 'the PNG holds the saved pixels exactly');
  assert.equal(exported.jpegSize, saved.width);
  await closePage(page);
});

test('the element is an application with a name, shows its focus and tells assistive technology it is busy', async () => {
  const page = await controlPage(120, 90);
  // What the browser gives assistive technology (its own tree: the role and the default
  // name are the element's internals, which the page's locators do not read).
  const session = await page.context().newCDPSession(page);
  const named = async () => (await session.send('Accessibility.getFullAXTree')).nodes
    .filter((node) => ['application', 'status'].includes(node.role?.value))
    .map((node) => [node.role.value, node.name?.value]);
  assert.deepEqual(await named(), [['application', 'Image editor'], ['status', '']]);
  await page.evaluate(() => document.getElementById('editor').setAttribute('aria-label', 'Holiday photo'));
  assert.deepEqual((await named())[0], ['application', 'Holiday photo']);
  const busy = await page.evaluate(async () => {
    const editor = document.getElementById('editor');
    const loading = editor.SetImage('samples/landscape.jpg');
    await Promise.resolve();
    const during = editor.busy;
    await loading;
    return [during, editor.busy];
  });
  assert.deepEqual(busy, [true, false]);
  assert.equal(await page.evaluate(() =>
    document.getElementById('editor').shadowRoot.querySelector('[role=status]').textContent), 'Picture loaded');
  await page.keyboard.press('Tab');
  assert.equal(await page.evaluate(() => getComputedStyle(document.getElementById('editor')).outlineStyle), 'solid');
  await closePage(page);
});

test('a lengthy call waits for the next frame behind the wait cursor, and what reaches the control first runs it',
  async () => {
    const page = await controlPage(120, 90);
    const steps = await calls(page, [['SetImage', 'data/tools/scene_80x60.bmp']]);
    const seen = await page.evaluate(async () => {
      const editor = document.getElementById('editor');
      const canvas = editor.shadowRoot.querySelector('canvas');
      const seen = {};
      editor.BrightenImage(170);
      seen.waiting = [editor.busy, canvas.style.cursor];
      try {
        editor.ContrastImage('high');
      } catch (error) {
        seen.refused = error.name;
      }
      await new Promise((shown) => requestAnimationFrame(() => setTimeout(shown)));
      seen.ran = [editor.busy, canvas.style.cursor === 'wait'];
      editor.BrightenImage(120);
      canvas.dispatchEvent(new PointerEvent('pointermove', { clientX: 20, clientY: 20 }));
      seen.afterInput = editor.busy;
      editor.BrightenImage(150);
      editor.GetColor();
      seen.afterCall = editor.busy;
      return seen;
    });
    assert.deepEqual(seen, {
      waiting: [true, 'wait'], refused: 'TypeError', ran: [false, false], afterInput: false, afterCall: false,
    });
    steps.push('BrightenImage 170', 'BrightenImage 120', 'BrightenImage 150');
    assertSamePixels(await canvasPixels(page), nativeShot(120, 90, steps), 'after the three calls');
    await closePage(page);
  });

test('the demo on a phone: no sideways scrolling, the picture fitted, zoom in and back to fit', async () => {
  const page = await shared.browser.newPage({ viewport: { width: 390, height: 844 }, deviceScaleFactor: 3 });
  page.errors = [];
  page.on('pageerror', (error) => page.errors.push(error.message));
  await page.goto(shared.url);
  await page.waitForFunction(() => document.getElementById('status').textContent.startsWith('Opened'));
  const layout = await page.evaluate(() => {
    const editor = document.getElementById('editor').getBoundingClientRect();
    return { scrollWidth: document.documentElement.scrollWidth, right: editor.right };
  });
  assert.ok(layout.scrollWidth <= 390 && layout.right <= 390, JSON.stringify(layout));
  const level = () => page.locator('#zoom-level').textContent();
  // The 1280 x 853 landscape in the editor's width, about 350 pixels.
  const fitted = await level();
  assert.match(fitted, /^2\d %$/);
  const atFit = await canvasPixels(page);
  await page.click('#zoom-in');
  assert.equal(await level(), '33 %');
  assert.notDeepEqual((await canvasPixels(page)).rgb, atFit.rgb);
  await page.click('#zoom-fit');
  assert.equal(await level(), fitted);
  assert.deepEqual((await canvasPixels(page)).rgb, atFit.rgb, 'fit again shows what the first fit showed');
  await page.evaluate(() => scrollTo(0, 0));
  await page.screenshot({ path: join(ROOT, 'build/web-test-artifacts/demo-phone.png') });
  await closePage(page);
});

test('past its memory budget the control refuses what does not fit and keeps working', async () => {
  const page = await controlPage(120, 90);
  // What a picture's call gives: 'loaded', or the code it rejects with.
  await page.evaluate(() => {
    window.load = (source) => document.getElementById('editor').SetImage(source)
      .then(() => 'loaded', (error) => error.code);
  });
  const refused = await page.evaluate(async () => {
    const editor = document.getElementById('editor');
    editor.setAttribute('memory-budget', '32');  // the 12-megapixel picture alone takes 46 MiB
    const big = await window.load('samples/landscape-12mp.jpg');
    const small = await window.load('data/tools/scene_80x60.bmp');
    editor.SetColor('C03020');
    editor.SetPen(3);
    return { big, small };
  });
  assert.deepEqual(refused, { big: 13, small: 'loaded' });
  await page.mouse.move(30, 40);
  await page.mouse.down();
  await page.mouse.move(90, 40);
  await page.mouse.up();
  const shown = await canvasPixels(page);
  const at = (x, y) => shown.rgb.slice((y * shown.width + x) * 3, (y * shown.width + x) * 3 + 3);
  assert.deepEqual(at(60, 40), [0xC0, 0x30, 0x20], 'the stroke shows');
  const again = await page.evaluate(() => {
    document.getElementById('editor').removeAttribute('memory-budget');
    return window.load('samples/landscape-12mp.jpg');
  });
  assert.equal(again, 'loaded');
  assert.deepEqual(page.errors, []);
  await closePage(page);
});
