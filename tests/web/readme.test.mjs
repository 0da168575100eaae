// The README's page snippet, as written there, beside build/web/'s files: it loads
// its picture, brightens it and offers the saved file as a download link, with no
// error on the page.
import assert from 'node:assert/strict';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { test } from 'node:test';

import { launchChromium, readmeSnippet, serve, WEB_ROOT } from './browser.mjs';
import { readBmp } from './control-page.mjs';

test('the README\'s page snippet runs as written and offers the edited picture', { timeout: 120_000 },
  async () => {
  const folder = mkdtempSync(join(tmpdir(), 'imageedit-readme-'));
  writeFileSync(join(folder, 'readme.html'), readmeSnippet('## The control in a web page', 'html'));
  const server = await serve([WEB_ROOT, folder], { isolated: false });
  const browser = await launchChromium();
  try {
    const page = await browser.newPage();
    const errors = [];
    page.on('pageerror', (error) => errors.push(error.message));
    await page.goto(`${server.url}readme.html`);
    await page.waitForSelector('#download:not([hidden])');
    const { name, bytes, originalMean } = await page.evaluate(async () => {
      const link = document.getElementById('download');
      const saved = new Uint8Array(await (await fetch(link.href)).arrayBuffer());
      const original = await createImageBitmap(await (await fetch('samples/landscape.jpg')).blob());
      const canvas = new OffscreenCanvas(original.width, original.height);
      const context = canvas.getContext('2d');
      context.drawImage(original, 0, 0);
      const { data } = context.getImageData(0, 0, original.width, original.height);
      let sum = 0;
      for (let i = 0; i < data.length; i += 4) sum += data[i] + data[i + 1] + data[i + 2];
      return { name: link.download, bytes: [...saved], originalMean: sum / (data.length / 4) / 3 };
    });
    const bmp = readBmp(Buffer.from(bytes));
    assert.equal(name, 'landscape.bmp');
    assert.deepEqual([bmp.width, bmp.height], [1280, 853]);
    // BrightenImage(130) lightens every channel, so the saved picture is brighter.
    const mean = bmp.rgb.reduce((sum, value) => sum + value, 0) / bmp.rgb.length;
    assert.ok(mean > originalMean + 10, `saved mean ${mean} against ${originalMean} unbrightened`);
    assert.deepEqual(errors, []);
  } finally {
    await browser.close();
    await server.close();
    rmSync(folder, { recursive: true, force: true });
  }
});
