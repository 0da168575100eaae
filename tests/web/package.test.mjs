// The element as an app gets it from npm: the packed package (scripts/build-web.sh
// packs it into build/) installed into a scratch app whose module is the README's
// package snippet, built with Vite as the app's own build would, served as built,
// and in Chromium a picture loaded, a stroke drawn with the mouse and the picture
// saved; once in a plain page (the engine without threads) and once in a
// cross-origin isolated one (the engine with threads, its worker from the bundle).
import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { copyFileSync, mkdirSync, mkdtempSync, readdirSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, test } from 'node:test';

import { launchChromium, readmeSnippet, ROOT, serve } from './browser.mjs';
import { readBmp } from './control-page.mjs';

const PICTURE = { file: 'speech-balloon.png', width: 200, height: 130 };

function run(command, args, cwd) {
  const result = spawnSync(command, args, { cwd, encoding: 'utf8' });
  assert.equal(result.status, 0, `${command} ${args.join(' ')} failed:\n${result.stdout}${result.stderr}`);
  return result.stdout;
}

let app;
let browser;
before(() => {
  const tarballs = readdirSync(join(ROOT, 'build')).filter((name) => /^ostrel-image-edit-control-.*\.tgz$/.test(name));
  assert.equal(tarballs.length, 1, 'scripts/build-web.sh packs the package into build/');
  app = mkdtempSync(join(tmpdir(), 'imageedit-app-'));
  writeFileSync(join(app, 'package.json'), JSON.stringify({ name: 'scratch-app', private: true, type: 'module' }));
  writeFileSync(join(app, 'index.html'),
    '<!doctype html>\n<html><body>\n<script type="module" src="./main.js"></script>\n</body></html>\n');
  writeFileSync(join(app, 'main.js'), readmeSnippet('the npm package', 'js'));
  mkdirSync(join(app, 'public'));
  copyFileSync(join(ROOT, 'hosts/web/samples', PICTURE.file), join(app, 'public', PICTURE.file));
  // The package has no dependencies, so nothing is fetched; Vite is the repository's.
  run('npm', ['install', '--offline', '--no-audit', '--no-fund', join(ROOT, 'build', tarballs[0])], app);
  run(process.execPath, [join(ROOT, 'node_modules/vite/bin/vite.js'), 'build', '--logLevel', 'warn'], app);
});
after(async () => {
  await browser?.close();
  if (app) rmSync(app, { recursive: true, force: true });
});

test('the installed package holds the element, its declaration and both engines, and no demo', () => {
  const installed = join(app, 'node_modules/@ostrel/image-edit-control');
  const files = readdirSync(installed);
  for (const file of ['image-edit-control.js', 'image-edit-control.d.ts', 'image-edit-engine.wasm',
    'image-edit-engine-threads.worker.js', 'REFERENCE.md']) {
    assert.ok(files.includes(file), `the package lacks ${file}`);
  }
  assert.deepEqual(files.filter((file) => /^(index\.html|demo\.|samples)/.test(file)), []);
});

test('a TypeScript app gets the types through the package\'s exports', () => {
  writeFileSync(join(app, 'typed.ts'), `import type { ImageEditControl } from '@ostrel/image-edit-control';
export async function edit(editor: ImageEditControl): Promise<Blob> {
  await editor.SetImage('${PICTURE.file}');
  editor.SetPen(4);
  // @ts-expect-error a pen size is a number
  editor.SetPen('4');
  return editor.toBlob('image/webp', 0.8);
}
`);
  writeFileSync(join(app, 'tsconfig.json'), JSON.stringify({
    compilerOptions: {
      strict: true, noEmit: true, target: 'es2022', module: 'esnext', moduleResolution: 'bundler',
      lib: ['es2022', 'dom'], types: [],
    },
    files: ['typed.ts'],
  }));
  const tsc = spawnSync(process.execPath, [join(ROOT, 'node_modules/typescript/bin/tsc'), '--project', app],
    { encoding: 'utf8' });
  assert.equal(tsc.status, 0, `tsc found faults:\n${tsc.stdout}${tsc.stderr}`);
});

for (const isolated of [false, true]) {
  test(`the app built with Vite loads, draws and saves (${isolated ? 'engine with threads' : 'plain page'})`,
    { timeout: 120_000 }, async () => {
      browser ??= await launchChromium();
      const server = await serve([join(app, 'dist')], { isolated });
      const page = await browser.newPage({ viewport: { width: 800, height: 600 } });
      try {
        const errors = [];
        const engineFiles = [];
        page.on('pageerror', (error) => errors.push(error.message));
        page.on('response', (response) => {
          if (/image-edit-engine/.test(response.url())) engineFiles.push([response.url(), response.status()]);
        });
        await page.goto(server.url);
        const box = await page.evaluate(async (picture) => {
          const editor = await document.querySelector('image-edit-control').ready;
          await editor.SetImage(picture);
          editor.SetColor('FF0000');
          editor.SetPen(6);
          const { left, top } = editor.getBoundingClientRect();
          return { left, top, isolated: crossOriginIsolated };
        }, PICTURE.file);
        assert.equal(box.isolated, isolated);
        const before = await savedBitmap(page);

        // The picture sits in the middle of the 640 x 480 control.
        const x0 = box.left + (640 - PICTURE.width) / 2;
        const y = box.top + 240;
        await page.mouse.move(x0 + 20, y);
        await page.mouse.down();
        for (let x = x0 + 30; x <= x0 + 180; x += 10) await page.mouse.move(x, y);
        await page.mouse.up();
        const after = await savedBitmap(page);

        for (const bmp of [before, after]) {
          assert.deepEqual([bmp.width, bmp.height, bmp.fileSize], [PICTURE.width, PICTURE.height, bmp.length]);
        }
        // Red where the stroke ran across the picture, in its middle row, and nowhere
        // in the first rows.
        const red = (bmp, row) => Array.from({ length: bmp.width }, (_, x) => (row * bmp.width + x) * 3)
          .filter((at) => bmp.rgb[at] > 200 && bmp.rgb[at + 1] < 60 && bmp.rgb[at + 2] < 60).length;
        const middle = Math.round(y - box.top - (480 - PICTURE.height) / 2);
        assert.ok(red(after, middle) >= 150, `only ${red(after, middle)} red pixels along the stroke`);
        assert.ok(red(after, middle) > red(before, middle) + 100);
        assert.equal(red(after, 2), red(before, 2));

        const wasm = engineFiles.filter(([url]) => url.endsWith('.wasm'));
        assert.ok(wasm.length > 0 && wasm.every(([, status]) => status === 200), JSON.stringify(engineFiles));
        assert.equal(wasm.every(([url]) => /threads/.test(url)), isolated, JSON.stringify(engineFiles));
        if (isolated) assert.ok(page.workers().length > 0, 'the engine with threads started no worker');
        assert.deepEqual(errors, []);
      } finally {
        await page.close();
        await server.close();
      }
    });
}

// The bitmap file the page's SaveEditedBitmap writes, read from its `saved` event.
async function savedBitmap(page) {
  const bytes = await page.evaluate(async () => {
    const editor = document.querySelector('image-edit-control');
    const saved = new Promise((done) => editor.addEventListener('saved', (event) => done(event.detail.blob),
      { once: true }));
    editor.SaveEditedBitmap('edited.bmp');
    return [...new Uint8Array(await (await saved).arrayBuffer())];
  });
  return readBmp(Buffer.from(bytes));
}
