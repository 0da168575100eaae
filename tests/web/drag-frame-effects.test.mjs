// Browser tests of <image-edit-control> with no tool chosen (objects dragged and
// resized with the mouse, the view panned, the cursors of each), and the demo's frame
// and effect, each compared with what the native script host shows for the same
// session. The frame's and the flip's own rules are the engine's tests.
import assert from 'node:assert/strict';
import { mkdirSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';

import { ROOT } from './browser.mjs';
import {
  assertSamePixels, calls, canvasPixels, closePage, cursorHotSpot, nativeShot, nativeState, pixelsOf,
  useBrowser,
} from './control-page.mjs';

const { controlPage, openDemo } = useBrowser();

// A control in which the tiles sample (256 x 192) lies centred, without scroll bars.
const W = 300, H = 220;

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
// The editor chooses the cursor before it hears the move, as Windows does, so a
// place's cursor shows from the second move onto it.
async function hover(page, [x, y]) {
  await page.mouse.move(x - 1, y);
  await page.mouse.move(x, y);
  return [`hover ${x - 1} ${y}`, `hover ${x} ${y}`];
}
// The hot spots of the open and closed hands and of the four-way arrows.
const OPEN_HAND = [15, 8], CLOSED_HAND = [14, 9], FOUR_WAY = [15, 15];

// How much of the heart sample's inner colour lies in its 48 x 44 rectangle at a point.
const heartAt = (shown, [x, y]) => pixelsOf(shown, [225, 45, 70], [x, y, x + 48, y + 44]);

const HEART_ON_TILES = [['SetImage', 'samples/tiles.bmp'], ['SetTransparency', 0xFF00FF, 0],
  ['InsertIcon', 60, 40, 'samples/icon-heart.png'], ['SetNothing']];

test('an icon dragged with the mouse follows every move; Ctrl+Z puts it back, Ctrl+Y and Delete act on it',
  async () => {
    const page = await controlPage(W, H);
    const steps = await calls(page, HEART_ON_TILES);
    steps.push(...await press(page, [70, 50]), ...await moveAlong(page, [70, 50], [150, 110], 8));
    // Each move is shown as it is made, not only once the button is let go.
    const dragged = await canvasPixels(page);
    assertSamePixels(dragged, nativeShot(W, H, steps), 'during the drag');
    assert.deepEqual([heartAt(dragged, [60, 40]), heartAt(dragged, [140, 100]) > 300], [0, true], 'the heart moved');
    steps.push(...await release(page, [150, 110]));

    await page.keyboard.press('Control+z');
    steps.push('key Z ctrl');
    const undone = await canvasPixels(page);
    assertSamePixels(undone, nativeShot(W, H, steps), 'after Ctrl+Z');
    assert.deepEqual([heartAt(undone, [60, 40]) > 300, heartAt(undone, [140, 100])], [true, 0], 'the heart is back');
    await page.keyboard.press('Control+y');
    assert.ok(heartAt(await canvasPixels(page), [140, 100]) > 300, 'Ctrl+Y moved it again');
    // A click selects it; Delete takes the selected object away.
    await press(page, [150, 110]);
    await release(page, [150, 110]);
    await page.keyboard.press('Delete');
    assert.equal(pixelsOf(await canvasPixels(page), [225, 45, 70], [0, 0, W, H]), 0, 'Delete left no heart');
    await closePage(page);
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
  await press(page, [70, 50]);
  assert.deepEqual(await cursorHotSpot(page), CLOSED_HAND, 'pressed on the heart');
  await closePage(page);
});

test('with no tool, dragging a picture larger than the control pans it; a cancelled drag ends like a release',
  async () => {
    const page = await controlPage(200, 150);
    const steps = await calls(page, [['SetImage', 'samples/city.jpg']]);
    const start = await canvasPixels(page);
    steps.push(...await hover(page, [100, 70]));
    assert.deepEqual(await cursorHotSpot(page), OPEN_HAND, 'over a picture that can be panned');
    steps.push(...await press(page, [100, 70]), ...await moveAlong(page, [100, 70], [60, 40], 4));
    const panned = await canvasPixels(page);
    assert.notDeepEqual(panned.rgb, start.rgb, 'the picture follows the pointer');
    assertSamePixels(panned, nativeShot(200, 150, steps), 'during the pan');

    // The browser takes the pointer away (a touch turned into scrolling, a system
    // gesture): the control hears the button let go where the pointer was.
    await page.evaluate(() => document.getElementById('editor').shadowRoot.querySelector('canvas')
      .dispatchEvent(new PointerEvent('pointercancel', { pointerId: 1, clientX: 60, clientY: 40, bubbles: true })));
    assert.deepEqual(await cursorHotSpot(page), OPEN_HAND, 'the pan is over');
    // Further moves only hover: the picture stays.
    await page.mouse.move(90, 60);
    steps.push('up 60 40', 'hover 90 60');
    assertSamePixels(await canvasPixels(page), nativeShot(200, 150, steps), 'after the cancelled drag');
    await closePage(page);
  });

const FRAME_PLACES = ['right', 'top-right', 'top', 'top-left', 'left', 'bottom-left', 'bottom', 'bottom-right'];

test('the demo: an inserted icon dragged with Move, the picture flipped and framed', async () => {
  const page = await openDemo();
  await page.click('#samples button[data-src="samples/tiles.bmp"]');
  await page.status('Opened samples/tiles');
  await page.click('button[data-icon="samples/icon-heart.png"]');
  await page.waitForFunction(() => document.querySelector('#log li').textContent.includes('InsertIcon'));
  // The first icon goes to 200,150 of the editor, over the middle of the picture.
  const box = await page.locator('image-edit-control canvas').boundingBox();
  await page.mouse.move(box.x + 224, box.y + 172);
  await page.mouse.down();
  for (let i = 1; i <= 5; i++) await page.mouse.move(box.x + 224 + 20 * i, box.y + 172 + 12 * i);
  await page.mouse.up();
  await page.click('[data-effect=FlipImage]');
  await page.click('#frame');
  await page.status('Framed');
  const shown = await canvasPixels(page);
  assertSamePixels(shown, nativeShot(640, 480, [
    'SetImage "build/web/samples/landscape.jpg"', 'SetImageWidth 640', 'SetImage "build/web/samples/tiles.bmp"',
    'SetTransparency 0xFF00FF 0', 'InsertIcon 200 150 "build/web/samples/icon-heart.png"',
    'hover 224 172', 'down 224 172', ...[1, 2, 3, 4, 5].map((i) => `move ${224 + 20 * i} ${172 + 12 * i}`), 'up 324 232',
    'FlipImage', ...FRAME_PLACES.map((place, i) => `SetFrame ${i} "build/web/samples/frames/gilded-${place}.png" 24 -1`),
    // The frame leaves the control with no tool at all; the demo chooses Move again.
    'SetNothing',
  ]), 'the demo after the session');
  assert.deepEqual([heartAt(shown, [200, 150]), heartAt(shown, [300, 210]) > 300], [0, true], 'the heart was dragged');
  const artifacts = join(ROOT, 'build/web-test-artifacts');
  mkdirSync(artifacts, { recursive: true });
  // What the person sees: the editor stays in sight beside the controls they scrolled to.
  await page.screenshot({ path: join(artifacts, 'demo-framed.png') });
  await closePage(page);
});
