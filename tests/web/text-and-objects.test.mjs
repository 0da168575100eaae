// Browser tests of <image-edit-control>'s text entry, font dialog, inserted objects
// and their shortcut menu, driven as a person drives them: keys, an input method,
// the mouse, compared with what the native script host shows for the same session.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import {
  assertSamePixels, call, calls, canvasPixels, closePage, nativeShot, pixelsOf, useBrowser,
} from './control-page.mjs';

const { controlPage } = useBrowser();

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
  // The next face; the size; Bold on; Italic; Strikeout on.
  for (const key of ['ArrowDown', 'Tab', 'Control+a', '1', '4', 'Tab', 'Space', 'Tab', 'Tab', 'Space']) {
    await page.keyboard.press(key);
  }
  await dialog.locator('input[type=color]').fill('#804020');
  await dialog.getByRole('checkbox', { name: 'Underline' }).focus();
  await page.keyboard.press('Enter');      // OK
  assert.equal(await chosen, '굴림체,,Bold,14,StrikeOut,,804020');
  assert.equal(await dialog.count(), 0);

  // The next dialog starts from that font; Escape cancels it, which changes nothing.
  const cancelled = call(page, 'SetTextFont', 'dialog');
  await faces.waitFor();
  assert.deepEqual(await dialog.evaluate((box) => [...box.querySelectorAll('select, input')]
    .map((input) => (input.type === 'checkbox' ? input.checked : input.value))),
  ['굴림체', '14', true, false, true, false, '#804020']);
  await page.keyboard.press('Escape');
  assert.equal(await cancelled, '');
  await closePage(page);
});

test('an object\'s shortcut menu is a page menu: what the keyboard and the mouse pick reaches the editor', async () => {
  const page = await controlPage(200, 150);
  const requested = [];
  page.on('request', (request) => requested.push(new URL(request.url()).pathname));
  // Pictures of objects are fetched and decoded as SetImage's are; one not found
  // inserts nothing.
  const steps = await calls(page, [['SetImage', 'samples/tiles.bmp'], ['EnableShortcutMenu', 1],
    ['InsertIcon', 20, 20, 'samples/icon-heart.png'], ['InsertIcon', 50, 40, 'samples/icon-sun.png'],
    ['InsertIcon', 120, 30, 'data/objects/arrow_12x8.bmp'], ['InsertIcon', 0, 0, 'missing.png'],
    ['InsertBalloonText', 120, 95, 'samples/speech-balloon.png', 30, 24, 170, 78, 'Hi']]);
  assert.deepEqual(requested.filter((path) => !path.endsWith('tiles.bmp')), ['/samples/icon-heart.png',
    '/samples/icon-sun.png', '/data/objects/arrow_12x8.bmp', '/missing.png', '/samples/speech-balloon.png']);
  const menu = page.getByRole('menu');
  const items = (within) => within.getByRole('menuitem').allTextContents();

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
  // The heart is deleted below, so the sun's new place under it shows only now.
  assertSamePixels(await canvasPixels(page), nativeShot(200, 150, steps), 'the sun sent to the back');

  // The mouse: the arrow's "Reverse".
  await page.mouse.click(125, 33, { button: 'right' });
  await menu.getByRole('menuitem', { name: 'Reverse' }).click();
  steps.push('answer menu 32768', 'rdown 125 33');

  // Dismissed by Escape, and by a press outside it, which goes no further: the heart
  // its right click selected stays selected, the balloon under the press is not.
  for (const dismiss of [() => page.keyboard.press('Escape'), () => page.mouse.click(160, 110)]) {
    await page.mouse.click(25, 25, { button: 'right' });
    await menu.first().waitFor();
    await dismiss();
    assert.equal(await menu.count(), 0);
    steps.push('rdown 25 25');
  }

  // The right button held from the press and let go on an item picks it.
  await page.mouse.move(30, 30);
  await page.mouse.down({ button: 'right' });
  const at = await menu.getByRole('menuitem', { name: 'Delete' }).boundingBox();
  await page.mouse.move(at.x + 10, at.y + at.height / 2, { steps: 3 });
  await page.mouse.up({ button: 'right' });
  assert.equal(await menu.count(), 0);
  steps.push('answer menu 32771', 'rdown 30 30');
  assertSamePixels(await canvasPixels(page), nativeShot(200, 150, steps),
    'the arrow mirrored, two menus dismissed, the heart deleted');
  await closePage(page);
});

// A Korean page converts typed text through code page 949; another types in its own
// and draws Hangul from the fallback face.
for (const { lang, face, settings } of [
  { lang: 'ko', face: '굴림체', settings: ['lang 0x0412', 'keyboard 0x0412'] },
  { lang: 'en', face: 'Arial', settings: [] },
]) {
  test(`Korean composed with an input method on a page in ${lang} is stamped as the script host stamps it`,
    async () => {
      const page = await controlPage(200, 120, { lang });
      const font = `${face},,,14,,,000080`;
      const steps = await calls(page, [['SetImage', 'samples/tiles.bmp'], ['SetTextFont', font]]);
      await openTextBox(page, [10, 10], [150, 60]);
      const field = textField(page);
      // The field has the focus and types in the box's font, from the very font files
      // the engine draws with.
      const look = await field.evaluate(async (element) => {
        await document.fonts.ready;
        const { fontFamily, fontSize } = getComputedStyle(element);
        const families = fontFamily.split(',').map((family) => family.trim().replace(/"/g, ''));
        return { focused: element.getRootNode().activeElement === element, families, fontSize,
          loaded: document.fonts.check(`12px "${families[0]}"`) };
      });
      assert.match(look.families[0], /^image-edit \/fonts\//);
      assert.ok(look.families.includes(face), look.families.join());
      assert.deepEqual([look.focused, look.fontSize, look.loaded], [true, `${Math.round((14 * 96) / 72)}px`, true]);

      const cdp = await page.context().newCDPSession(page);
      const compose = (text) => cdp.send('Input.imeSetComposition', { text, selectionStart: 1, selectionEnd: 1 });
      for (const step of ['ㅎ', '하', '한']) await compose(step);
      assert.equal(await field.inputValue(), '한', 'the composition shows in the field');
      await cdp.send('Input.insertText', { text: '한' });
      for (const step of ['ㄱ', '그', '글']) await compose(step);
      await cdp.send('Input.insertText', { text: '글' });
      await compose('ㅇ');  // still being composed when the box closes: not stamped
      assert.equal(await field.inputValue(), '한글ㅇ');
      await call(page, 'SetPen', 1);  // closes text entry: the text is stamped
      assert.equal(await textField(page).count(), 0, 'the field goes with the box');

      const shown = await canvasPixels(page);
      assertSamePixels(shown, nativeShot(200, 120, [
        ...steps, ...dragSteps([10, 10], [150, 60]),
        'type "한글"', 'SetPen 1',
      ], settings), 'after the text is stamped');
      assert.ok(pixelsOf(shown, [0, 0, 128], [10, 10, 150, 60]) > 30, 'Hangul is drawn in the text colour');
      await closePage(page);
    });
}

test('keys typed into the text box stay in it: the page neither hears them nor scrolls', async () => {
  const page = await controlPage(200, 120, { viewport: { width: 400, height: 300 } });
  await page.evaluate(() => {
    document.body.insertAdjacentHTML('beforeend',
      '<input id="field" style="position: absolute; top: 150px"><div style="height: 3000px"></div>');
    window.heard = [];
    for (const type of ['keydown', 'keypress', 'keyup', 'input', 'beforeinput']) {
      document.addEventListener(type, (event) => window.heard.push(`${type} ${event.key ?? ''}`));
    }
  });
  const steps = await calls(page, [['SetImage', 'samples/tiles.bmp'], ['BrightenImage', 150]]);
  await openTextBox(page, [20, 20], [180, 80]);
  // Ctrl+Z belongs to the field: the brightening stays. The routed keys (arrows,
  // Delete, Home, Page Down, Tab) neither move the caret nor delete nor leave the field.
  await page.keyboard.press('Control+z');
  await page.keyboard.type('ab c');
  for (const key of ['Backspace', 'Enter', 'x', 'ArrowLeft', 'Delete', 'Home', 'PageDown', 'Space', 'Tab']) {
    await page.keyboard.press(key);
  }
  assert.equal(await textField(page).inputValue(), 'ab \nx ');
  assert.deepEqual(await page.evaluate(() => ({
    heard: window.heard, scrolled: scrollY, field: document.getElementById('field').value,
    focus: document.getElementById('editor').shadowRoot.activeElement?.tagName,
  })), { heard: [], scrolled: 0, field: '', focus: 'TEXTAREA' });

  await call(page, 'SetPen', 1);
  assertSamePixels(await canvasPixels(page), nativeShot(200, 120, [
    ...steps, ...dragSteps([20, 20], [180, 80]),
    'type "ab c"', 'key 8', 'type "\\x0dx"', 'key 0x25', 'key 0x2E', 'key 0x24', 'key 0x22', 'type " "', 'key 9',
    'SetPen 1',
  ]), 'after the text is stamped');
  assert.equal(await page.evaluate(() => document.activeElement.id), 'editor', 'the control keeps the focus');
  await closePage(page);
});
