// Text in WebAssembly against text natively: the platform layer's text sample
// (tests/web/text_sample.cpp), built for Node with the page's font files packed in as
// the engine has them, must print what its native build prints. That holds only if
// both find the same faces and FreeType, the same version in both, hints them alike.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { join } from 'node:path';
import { test } from 'node:test';

import { ROOT } from './browser.mjs';

const run = (command, args) => execFileSync(command, args, { encoding: 'utf8', maxBuffer: 64 << 20 }).split('\n');

test('fallback, code pages and every character of the page\'s faces draw the same pixels in WebAssembly', () => {
  const native = run(process.env.TEXT_SAMPLE ?? join(ROOT, 'build/release/tests/text_sample'),
    [join(ROOT, 'build/wasm/page-fonts')]);
  const page = run(process.execPath, [join(ROOT, 'build/wasm/hosts/web/text-sample.cjs'), '/fonts']);
  assert.match(native[0], /^FreeType \d+\.\d+\.\d+$/);
  for (const sample of ['Arial fallback', 'Korean code page', 'Chinese code page']) {
    assert.match(native.find((line) => line.startsWith(sample)) ?? '', /: [1-9]\d* inked/, `${sample} drew nothing`);
  }
  // Liberation Sans in four styles and the Korean and Chinese subsets, at two sizes.
  for (const face of ['Liberation Sans em', 'Liberation Sans bold italic em', 'Noto Sans Mono CJK KR em',
    'Noto Sans Mono CJK SC em']) {
    assert.ok(native.some((line) => line.startsWith(face)), `no ${face} in the sample`);
  }
  assert.ok(native.length > 300);
  // The first line where the two differ, for a readable failure.
  const at = page.findIndex((line, i) => line !== native[i]);
  assert.equal(at, -1, `line ${at} differs:\n  page:   ${page[at]}\n  native: ${native[at]}`);
  assert.equal(page.length, native.length);
});
