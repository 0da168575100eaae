// Browser tests of <image-edit-control>'s text entry, font dialog, inserted objects
// and their shortcut menu, driven as a person drives them: keys, an input method,
// the mouse, compared with what the native script host shows for the same session.
import assert from 'node:assert/strict';
import { join } from 'node:path';
import { after, before, test } from 'node:test';

import { launchChromium, ROOT, serve, WEB_ROOT } from './browser.mjs';
import { assertSamePixels, canvasPixels, nativeShot, openControlPage } from './control-page.mjs';

let server;
let browser;

before(async () => {
  server = await serve([WEB_ROOT, join(ROOT, 'tests/web'), join(ROOT, 'tests')]);
  browser = await launchChromium();
});

after(async () => {
  await browser?.close();
  await server?.close();
});

const controlPage = (width, height, options) => openControlPage(browser, server.url, width, height, options);
const call = (page, name, ...args) =>
  page.evaluate(([method, values]) => document.getElementById('editor')[method](...values), [name, args]);

// The page's text field over the engine's text box, once there is one.
const textField = (page) => page.locator('image-edit-control textarea');

// Drags a text box open with the text tool, from one point of the control to another.
async function openTextBox(page, [x0, y0], [x1, y1]) {
  await call(page, 'EnterText');
  await page.mouse.move(x0, y0);
  await page.mouse.down();
  await page.mouse.move(x1, y1);
  await page.mouse.up();
  await textField(page).waitFor();
}
const dragSteps = ([x0, y0], [x1, y1]) =>
  ['EnterText', `hover ${x0} ${y0}`, `down ${x0} ${y0}`, `move ${x1} ${y1}`, `up ${x1} ${y1}`];

test('the font dialog is a page dialog the keyboard drives; SetTextFont("") resolves with the font', async () => {
  const page = await controlPage(120, 90);
  const dialog = page.locator('image-edit-control dialog[open]');
  const chosen = call(page, 'SetTextFont', '');
  const faces = dialog.getByRole('listbox');
  await faces.waitFor();
  // It starts from the engine's font: the default, Arial of 9 points, black.
  assert.equal(await faces.inputValue(), 'Arial');
  assert.equal(await dialog.getByRole('spinbutton', { name: 'Size' }).inputValue(), '9');
  assert.equal(await page.evaluate(() => document.getElementById('editor').shadowRoot.activeElement.tagName),
    'SELECT', 'the face list has the focus');
  await page.keyboard.press('ArrowDown');  // the next face
  await page.keyboard.press('Tab');        // the size
  await page.keyboard.press('Control+a');
  await page.keyboard.type('14');
  await page.keyboard.press('Tab');        // Bold
  await page.keyboard.press('Space');
  await page.keyboard.press('Tab');        // Italic
  await page.keyboard.press('Tab');        // Strikeout
  await page.keyboard.press('Space');
  await dialog.locator('input[type=color]').fill('#804020');
  await dialog.getByRole('checkbox', { name: 'Underline' }).focus();
  await page.keyboard.press('Enter');      // OK
  assert.equal(await chosen, '굴림체,,Bold,14,StrikeOut,,804020');
  assert.equal(await dialog.count(), 0);

  // The next dialog starts from that font; Escape cancels it, which changes nothing.
  const cancelled = call(page, 'SetTextFont', 'dialog');
  await faces.waitFor();
  assert.deepEqual(await dialog.evaluate((box) => ({
    face: box.querySelector('select').value,
    size: box.querySelector('input[type=number]').value,
    checked: [...box.querySelectorAll('input[type=checkbox]')].map((check) => check.checked),
    color: box.querySelector('input[type=color]').value,
  })), { face: '굴림체', size: '14', checked: [true, false, true, false], color: '#804020' });
  await page.keyboard.press('Escape');
  assert.equal(await cancelled, '');
  const again = call(page, 'SetTextFont', '');
  await faces.waitFor();
  await page.keyboard.press('Enter');
  assert.equal(await again, '굴림체,,Bold,14,StrikeOut,,804020');
  assert.deepEqual(page.errors, []);
  await page.close();
});

test('InsertIcon and InsertBalloonText fetch and decode their pictures, as SetImage does', async () => {
  const page = await controlPage(200, 150);
  const requested = [];
  page.on('request', (request) => requested.push(new URL(request.url()).pathname));
  await page.evaluate(async () => {
    const editor = document.getElementById('editor');
    await editor.SetImage('samples/tiles.bmp');
    await editor.InsertIcon(-1, 10, 'samples/icon-sun.png');
    await editor.InsertBalloonText(5, 5, 'samples/speech-balloon.png', 30, 24, 170, 78, 'Hi');
    await editor.InsertIcon(0, 0, 'missing.png');  // not found: nothing is inserted
  });
  assert.deepEqual(requested.filter((path) => !path.endsWith('tiles.bmp')),
    ['/samples/icon-sun.png', '/samples/speech-balloon.png', '/missing.png']);
  assertSamePixels(await canvasPixels(page), nativeShot(200, 150, [
    'SetImage "build/web/samples/tiles.bmp"', 'InsertIcon -1 10 "build/web/samples/icon-sun.png"',
    'InsertBalloonText 5 5 "build/web/samples/speech-balloon.png" 30 24 170 78 "Hi"', 'InsertIcon 0 0 "missing.png"',
  ]), 'after inserting');
  assert.deepEqual(page.errors, []);
  await page.close();
});

test('an object\'s shortcut menu is a page menu: what the keyboard and the mouse pick reaches the editor', async () => {
  const page = await controlPage(200, 150);
  await page.evaluate(async () => {
    const editor = document.getElementById('editor');
    await editor.SetImage('samples/tiles.bmp');
    editor.EnableShortcutMenu(1);
    await editor.InsertIcon(20, 20, 'samples/icon-heart.png');
    await editor.InsertIcon(50, 40, 'samples/icon-sun.png');
    await editor.InsertIcon(120, 30, 'data/objects/arrow_12x8.bmp');
  });
  const steps = ['SetImage "build/web/samples/tiles.bmp"', 'EnableShortcutMenu 1',
    'InsertIcon 20 20 "build/web/samples/icon-heart.png"', 'InsertIcon 50 40 "build/web/samples/icon-sun.png"',
    'InsertIcon 120 30 "tests/data/objects/arrow_12x8.bmp"'];
  const menu = page.getByRole('menu');
  const items = (within) => within.getByRole('menuitem').allTextContents();
  const sameAsNative = async (what) => assertSamePixels(await canvasPixels(page), nativeShot(200, 150, steps), what);

  // The keyboard: the sun's menu, the "Z Order" submenu, its last item.
  await page.mouse.click(90, 80, { button: 'right' });
  await menu.first().waitFor();
  assert.deepEqual(await items(menu.first()), ['Reverse', 'Z Order', 'Original', 'Delete']);
  const box = await menu.first().boundingBox();
  assert.ok(Math.abs(box.x - 90) <= 1 && Math.abs(box.y - 80) <= 1, `the menu opens at the pointer: ${box.x},${box.y}`);
  assert.equal(await page.evaluate(() => document.getElementById('editor').shadowRoot.activeElement.textContent),
    'Reverse');
  await page.keyboard.press('ArrowDown');
  await page.keyboard.press('ArrowRight');
  assert.deepEqual(await items(menu.nth(1)), ['Topmost', 'Above', 'Below', 'Bottommost']);
  await page.keyboard.press('End');
  await page.keyboard.press('Enter');
  assert.equal(await menu.count(), 0, 'a pick closes the menu');
  steps.push('answer menu 32775', 'rdown 90 80');
  await sameAsNative('the sun sent to the back');

  // The mouse: the arrow's "Reverse".
  await page.mouse.click(125, 33, { button: 'right' });
  await menu.getByRole('menuitem', { name: 'Reverse' }).click();
  steps.push('answer menu 32768', 'rdown 125 33');
  await sameAsNative('the arrow mirrored');

  // Dismissed by Escape, and by a press outside it, which goes no further: the heart
  // its right click selected stays selected.
  await page.mouse.click(25, 25, { button: 'right' });
  await menu.first().waitFor();
  await page.keyboard.press('Escape');
  assert.equal(await menu.count(), 0);
  await page.mouse.click(25, 25, { button: 'right' });
  await menu.first().waitFor();
  await page.mouse.click(160, 110);
  assert.equal(await menu.count(), 0);
  steps.push('rdown 25 25', 'rdown 25 25');
  await sameAsNative('after dismissing');

  // The right button held from the press and let go on an item picks it.
  await page.mouse.move(30, 30);
  await page.mouse.down({ button: 'right' });
  const remove = menu.getByRole('menuitem', { name: 'Delete' });
  const at = await remove.boundingBox();
  await page.mouse.move(at.x + 10, at.y + at.height / 2, { steps: 3 });
  await page.mouse.up({ button: 'right' });
  assert.equal(await menu.count(), 0);
  steps.push('answer menu 32771', 'rdown 30 30');
  await sameAsNative('the heart deleted');
  assert.deepEqual(page.errors, []);
  await page.close();
});
