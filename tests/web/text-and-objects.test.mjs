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

test('the font dialog is a page dialog the keyboard drives; SetTextFont("") resolves with the font string', async () => {
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
