// Browser tests of <image-edit-control> with no tool chosen (inserted objects dragged
// and resized with the mouse, the view panned, the cursors the editor shows for each,
// its keys), its frame and its effects, each compared with what the native script
// host shows for the same session.
import assert from 'node:assert/strict';
import { mkdirSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';

import { launchChromium, ROOT, serve, WEB_ROOT } from './browser.mjs';
import {
  assertSamePixels, canvasPixels, nativeShot, nativeState, openControlPage, pixelsOf,
} from './control-page.mjs';

const ARTIFACTS = join(ROOT, 'build/web-test-artifacts');

let server;
let browser;

before(async () => {
  server = await serve([WEB_ROOT, join(ROOT, 'tests/web')]);
  browser = await launchChromium();
});

after(async () => {
  await browser?.close();
  await server?.close();
});

// A control in which the tiles sample (256 x 192) lies centred, without scroll bars.
const W = 300, H = 220;
const controlPage = (width, height) => openControlPage(browser, server.url, width, height);

// The script host's statement for a call; the page's samples are in build/web/.
const statement = ([name, ...args]) => [name, ...args.map((arg) =>
  (typeof arg === 'string' ? `"${arg.replace(/^samples\//, 'build/web/samples/')}"` : arg))].join(' ');

// Makes the calls in the page, one after another; returns their statements.
async function calls(page, list) {
  await page.evaluate(async (made) => {
    const editor = document.getElementById('editor');
    for (const [name, ...args] of made) await editor[name](...args);
  }, list);
  return list.map(statement);
}

// Real mouse input, each returning the script host's statements for it.
async function press(page, [x, y]) {
  await page.mouse.move(x, y);
  await page.mouse.down();
  return [`hover ${x} ${y}`, `down ${x} ${y}`];
}
async function moveAlong(page, [x0, y0], [x1, y1], count) {
  const steps = [];
  for (let i = 1; i <= count; i++) {
    const [x, y] = [Math.round(x0 + ((x1 - x0) * i) / count), Math.round(y0 + ((y1 - y0) * i) / count)];
    await page.mouse.move(x, y);
    steps.push(`move ${x} ${y}`);
  }
  return steps;
}
async function release(page, [x, y]) {
  await page.mouse.up();
  return [`up ${x} ${y}`];
}
// The editor chooses the cursor before it hears the move (as Windows asks for the
// cursor before it delivers the move), so the cursor of a place shows from the second
// move onto it: the pointer arrives from a pixel to the left.
async function hover(page, [x, y]) {
  await page.mouse.move(x - 1, y);
  await page.mouse.move(x, y);
  return [`hover ${x - 1} ${y}`, `hover ${x} ${y}`];
}

// The hot spot of the cursor the control shows, or the CSS cursor when it is none of
// the control's own pictures.
async function cursorHotSpot(page) {
  const css = await page.evaluate(() =>
    document.getElementById('editor').shadowRoot.querySelector('canvas').style.cursor);
  return css.match(/^url\("?data:image\/png;base64,[^)]+\) (\d+) (\d+), auto$/)?.slice(1).map(Number) ?? css;
}
// The hot spots of the no-tool cursors: 215 and 217 (open hands), 216 and 218 (closed
// hands), 219 (the four-way arrows of resizing).
const OPEN_HAND = [15, 8], CLOSED_HAND = [14, 9], FOUR_WAY = [15, 15];

// The inner colour of the heart sample, and how much of it lies in the heart's
// 48 x 44 rectangle at a point.
const HEART = [225, 45, 70];
const heartAt = (shown, [x, y]) => pixelsOf(shown, HEART, [x, y, x + 48, y + 44]);

// A rectangle of what the control shows, as canvasPixels gives the whole.
function region(shown, x, y, width, height) {
  const rgb = [];
  for (let row = y; row < y + height; row++) {
    const start = (row * shown.width + x) * 3;
    rgb.push(...shown.rgb.slice(start, start + width * 3));
  }
  return { width, height, rgb };
}

// A picture file's pixels as the page's browser decodes it.
const picturePixels = (page, url) => page.evaluate(async (source) => {
  const bitmap = await createImageBitmap(await (await fetch(source)).blob(),
    { colorSpaceConversion: 'none', premultiplyAlpha: 'none' });
  const context = new OffscreenCanvas(bitmap.width, bitmap.height).getContext('2d');
  context.drawImage(bitmap, 0, 0);
  const { data } = context.getImageData(0, 0, bitmap.width, bitmap.height);
  const rgb = [];
  for (let i = 0; i < data.length; i += 4) rgb.push(data[i], data[i + 1], data[i + 2]);
  return { width: bitmap.width, height: bitmap.height, rgb };
}, url);

const HEART_ON_TILES = [['SetImage', 'samples/tiles.bmp'], ['SetTransparency', 0xFF00FF, 0],
  ['InsertIcon', 60, 40, 'samples/icon-heart.png'], ['SetNothing']];

test('an icon dragged with the mouse follows every move; Ctrl+Z puts it back, Ctrl+Y moves it again, Delete removes it',
  async () => {
    const page = await controlPage(W, H);
    const steps = await calls(page, HEART_ON_TILES);
    assert.ok(heartAt(await canvasPixels(page), [60, 40]) > 300, 'the heart is shown where it was inserted');

    steps.push(...await press(page, [70, 50]), ...await moveAlong(page, [70, 50], [150, 110], 8));
    // Each move is shown as it is made, not only once the button is let go.
    const dragged = await canvasPixels(page);
    assertSamePixels(dragged, nativeShot(W, H, steps), 'during the drag');
    assert.deepEqual([heartAt(dragged, [60, 40]), heartAt(dragged, [140, 100]) > 300], [0, true], 'the heart moved');
    steps.push(...await release(page, [150, 110]));
    assertSamePixels(await canvasPixels(page), nativeShot(W, H, steps), 'after the drag');

    await page.keyboard.press('Control+z');
    steps.push('key Z ctrl');
    const undone = await canvasPixels(page);
    assertSamePixels(undone, nativeShot(W, H, steps), 'after Ctrl+Z');
    assert.deepEqual([heartAt(undone, [60, 40]) > 300, heartAt(undone, [140, 100])], [true, 0], 'the heart is back');
    await page.keyboard.press('Control+y');
    steps.push('key Y ctrl');
    const redone = await canvasPixels(page);
    assertSamePixels(redone, nativeShot(W, H, steps), 'after Ctrl+Y');
    assert.ok(heartAt(redone, [140, 100]) > 300, 'the heart moved again');

    // A click selects it; Delete takes the selected object away.
    steps.push(...await press(page, [150, 110]), ...await release(page, [150, 110]));
    await page.keyboard.press('Delete');
    steps.push('key Delete');
    const deleted = await canvasPixels(page);
    assertSamePixels(deleted, nativeShot(W, H, steps), 'after Delete');
    assert.equal(pixelsOf(deleted, HEART, [0, 0, W, H]), 0, 'no heart is left');
    assert.deepEqual(page.errors, []);
    await page.close();
  });

test('the cursor shows what a press would do; a drag on the grip resizes the object', async () => {
  const page = await controlPage(W, H);
  const steps = await calls(page, HEART_ON_TILES);
  steps.push(...await hover(page, [150, 150]));
  assert.equal(await cursorHotSpot(page), 'default', 'over the picture, which cannot be panned');
  steps.push(...await hover(page, [70, 50]));
  assert.deepEqual(await cursorHotSpot(page), OPEN_HAND, 'over the heart');
  // The grip is the 15 x 15 square at the heart's lower right, (93, 69) to (107, 83).
  steps.push(...await hover(page, [100, 76]));
  assert.deepEqual(await cursorHotSpot(page), FOUR_WAY, 'over the grip');
  steps.push(...await press(page, [100, 76]), ...await moveAlong(page, [100, 76], [130, 96], 3));
  assert.deepEqual(await cursorHotSpot(page), FOUR_WAY, 'while resizing');
  steps.push(...await release(page, [130, 96]));
  assertSamePixels(await canvasPixels(page), nativeShot(W, H, steps), 'after resizing');
  assert.deepEqual(nativeState(W, H, steps, ['objects']).objects.map(({ x, y, w, h }) => [x, y, w, h]),
    [[60, 40, 78, 64]], 'the script host resized it as far as the pointer went');

  steps.push(...await press(page, [70, 50]));
  assert.deepEqual(await cursorHotSpot(page), CLOSED_HAND, 'pressed on the heart');
  steps.push(...await release(page, [70, 50]));
  assert.deepEqual(await cursorHotSpot(page), OPEN_HAND, 'let go');
  assert.deepEqual(page.errors, []);
  await page.close();
});

test('with no tool, dragging a picture larger than the control pans it; a cancelled drag ends like a release',
  async () => {
    const page = await controlPage(200, 150);
    const steps = await calls(page, [['SetImage', 'samples/city.jpg']]);
    const start = await canvasPixels(page);
    steps.push(...await hover(page, [100, 70]));
    assert.deepEqual(await cursorHotSpot(page), OPEN_HAND, 'over a picture that can be panned');
    steps.push(...await press(page, [100, 70]));
    assert.deepEqual(await cursorHotSpot(page), CLOSED_HAND, 'panning');
    steps.push(...await moveAlong(page, [100, 70], [60, 40], 4));
    const panned = await canvasPixels(page);
    assert.notDeepEqual(panned.rgb, start.rgb, 'the picture follows the pointer');
    assertSamePixels(panned, nativeShot(200, 150, steps), 'during the pan');
    assert.deepEqual(nativeState(200, 150, steps, ['scroll']).scroll, [40, 30]);

    // The browser takes the pointer away (a touch turned into scrolling, a system
    // gesture): the control hears the button let go where the pointer was.
    await page.evaluate(() => document.getElementById('editor').shadowRoot.querySelector('canvas')
      .dispatchEvent(new PointerEvent('pointercancel', { pointerId: 1, clientX: 60, clientY: 40, bubbles: true })));
    steps.push('up 60 40');
    assert.deepEqual(await cursorHotSpot(page), OPEN_HAND, 'the pan is over');
    // Further moves only hover: the picture stays.
    await page.mouse.move(90, 60);
    steps.push('hover 90 60');
    assertSamePixels(await canvasPixels(page), nativeShot(200, 150, steps), 'after the cancelled drag');
    assert.deepEqual(page.errors, []);
    await page.close();
  });

const FRAME_PLACES = ['right', 'top-right', 'top', 'top-left', 'left', 'bottom-left', 'bottom', 'bottom-right'];
const FRAME_INSET = 12, PIECE = 24;

test('a frame shows around the picture once its eighth piece is in, and its overlay lies keyed over the corner',
  async () => {
    const page = await controlPage(W, H);
    const steps = await calls(page, [['SetImage', 'samples/tiles.bmp']]);
    const [L, T, R, B] = nativeState(W, H, steps, ['imageRect']).imageRect;
    const plain = await canvasPixels(page);
    const pieces = FRAME_PLACES.map((place, orientation) =>
      ['SetFrame', orientation, `samples/frames/gilded-${place}.png`, FRAME_INSET, -1]);
    steps.push(...await calls(page, pieces.slice(0, 7)));
    assertSamePixels(await canvasPixels(page), plain, 'with seven pieces the frame stays hidden');
    steps.push(...await calls(page, pieces.slice(7)));
    const framed = await canvasPixels(page);
    assertSamePixels(framed, nativeShot(W, H, steps), 'framed');
    // The pieces lie where their inset puts them, half over the picture's edge.
    const piece = (place) => picturePixels(page, `samples/frames/gilded-${place}.png`);
    for (const [place, x, y] of [
      ['top-left', L + FRAME_INSET - PIECE, T + FRAME_INSET - PIECE], ['top', L + FRAME_INSET, T + FRAME_INSET - PIECE],
      ['left', L + FRAME_INSET - PIECE, T + FRAME_INSET], ['bottom-right', R - FRAME_INSET, B - FRAME_INSET],
    ]) {
      assertSamePixels(region(framed, x, y, PIECE, PIECE), await piece(place), `the ${place} piece at ${x},${y}`,
        'the piece\'s file has');
    }

    steps.push(...await calls(page, [['SetFrame', -1, 'samples/frames/ribbon.png', 0, 0xFF00FF]]));
    const overlaid = await canvasPixels(page);
    assertSamePixels(overlaid, nativeShot(W, H, steps), 'with the overlay');
    // The ribbon at the control's corner, what it has of the key colour left out.
    const ribbon = await picturePixels(page, 'samples/frames/ribbon.png');
    const under = region(framed, 0, 0, ribbon.width, ribbon.height);
    const keyed = { ...ribbon, rgb: [...ribbon.rgb] };
    for (let i = 0; i < keyed.rgb.length; i += 3) {
      if (keyed.rgb[i] === 255 && keyed.rgb[i + 1] === 0 && keyed.rgb[i + 2] === 255) {
        keyed.rgb.splice(i, 3, ...under.rgb.slice(i, i + 3));
      }
    }
    assertSamePixels(region(overlaid, 0, 0, ribbon.width, ribbon.height), keyed, 'the ribbon',
      'the ribbon over the framed picture is');
    assert.deepEqual(page.errors, []);
    await page.close();
  });

test('every effect shows at once, as the script host shows it', async () => {
  const page = await controlPage(W, H);
  const steps = await calls(page, [['SetImage', 'samples/tiles.bmp']]);
  const [L, T, R, B] = nativeState(W, H, steps, ['imageRect']).imageRect;
  const plain = await canvasPixels(page);
  steps.push(...await calls(page, [['FlipImage']]));
  const flipped = await canvasPixels(page);
  // Upside down: the picture's top row shows its bottom row.
  assertSamePixels(region(flipped, L, T, R - L, 1), region(plain, L, B - 1, R - L, 1), 'the top row after the flip',
    'the bottom row before it was');
  assertSamePixels(flipped, nativeShot(W, H, steps), 'FlipImage');
  let shown = flipped;
  for (const effect of [['ReverseImage'], ['RotateImage', 90], ['EmbossImage'], ['RotateImage', -90],
    ['EqualizeHistogram'], ['CheckImage'], ['BlockImage'], ['WaterDropImage'], ['HeartImage'],
    ['BlendImage', 'samples/balloons.png', 50]]) {
    steps.push(...await calls(page, [effect]));
    const now = await canvasPixels(page);
    assertSamePixels(now, nativeShot(W, H, steps), effect.join(' '));
    // The last three change no pixels.
    if (!['WaterDropImage', 'HeartImage', 'BlendImage'].includes(effect[0])) {
      assert.notDeepEqual(now.rgb, shown.rgb, `${effect.join(' ')} changed the picture`);
    }
    shown = now;
  }
  assert.deepEqual(page.errors, []);
  await page.close();
});

test('the demo: an inserted icon dragged with Move, the picture flipped and framed', async () => {
  const page = await browser.newPage({ viewport: { width: 1280, height: 1000 } });
  const errors = [];
  page.on('pageerror', (error) => errors.push(error.message));
  await page.goto(server.url);
  const status = (start) => page.waitForFunction((text) =>
    document.getElementById('status').textContent.startsWith(text), start);
  await status('Opened');
  await page.click('#samples button[data-src="samples/tiles.bmp"]');
  await status('Opened samples/tiles');
  await page.click('button[data-icon="samples/icon-heart.png"]');
  await page.waitForFunction(() => document.querySelector('#log li').textContent.includes('InsertIcon'));
  // The first icon goes to 200,150 of the editor, over the middle of the picture.
  const box = await page.locator('image-edit-control canvas').boundingBox();
  const at = ([x, y]) => [box.x + x, box.y + y];
  await page.mouse.move(...at([224, 172]));
  await page.mouse.down();
  for (let i = 1; i <= 5; i++) await page.mouse.move(...at([224 + 20 * i, 172 + 12 * i]));
  await page.mouse.up();
  await page.click('[data-effect=FlipImage]');
  await page.click('#frame');
  await status('Framed');
  const drag = ['hover 224 172', 'down 224 172',
    ...[1, 2, 3, 4, 5].map((i) => `move ${224 + 20 * i} ${172 + 12 * i}`), 'up 324 232'];
  const shown = await canvasPixels(page);
  const opened = ['SetImage "build/web/samples/landscape.jpg"', 'SetImage "build/web/samples/tiles.bmp"'];
  assertSamePixels(shown, nativeShot(640, 480, [
    ...opened, 'SetTransparency 0xFF00FF 0', 'InsertIcon 200 150 "build/web/samples/icon-heart.png"', ...drag,
    'FlipImage',
    ...FRAME_PLACES.map((place, i) => `SetFrame ${i} "build/web/samples/frames/gilded-${place}.png" 24 -1`),
    // The frame leaves the control with no tool at all; the demo chooses Move again.
    'SetNothing',
  ]), 'the demo after the session');
  assert.deepEqual([heartAt(shown, [200, 150]), heartAt(shown, [300, 210]) > 300], [0, true], 'the heart was dragged');
  // With an inset of the pieces' size the frame lies on the picture, corner on corner.
  const [L, T] = nativeState(640, 480, opened, ['imageRect']).imageRect;
  assertSamePixels(region(shown, L, T, PIECE, PIECE), await picturePixels(page, 'samples/frames/gilded-top-left.png'),
    'the frame\'s top-left corner', 'the piece\'s file has');
  mkdirSync(ARTIFACTS, { recursive: true });
  // What the person sees: the editor stays in sight beside the controls they scrolled to.
  await page.screenshot({ path: join(ARTIFACTS, 'demo-framed.png') });
  assert.deepEqual(errors, []);
  await page.close();
});
