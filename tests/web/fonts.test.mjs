// Text in WebAssembly against text natively: the platform layer's text sample
// (tests/web/text_sample.cpp), built for Node by scripts/build-web.sh with the page's
// font files packed in as the engine has them, must print what its native build
// prints. That holds only if both find the same faces (the page carries subsets of
// the CJK ones) and FreeType, the same version in both, hints them alike.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { join } from 'node:path';
import { test } from 'node:test';

import { ROOT } from './browser.mjs';

const NATIVE = process.env.TEXT_SAMPLE ?? join(ROOT, 'build/release/tests/text_sample');
const WASM = join(ROOT, 'build/wasm/hosts/web/text-sample.cjs');
const PAGE_FONTS = join(ROOT, 'build/wasm/page-fonts');

function run(command, args) {
  return execFileSync(command, args, { encoding: 'utf8', maxBuffer: 64 << 20 }).split('\n');
}

// The first line where the two differ, for a readable failure.
function assertSameLines(actual, expected, what) {
  const at = actual.findIndex((line, i) => line !== expected[i]);
  assert.equal(actual.length, expected.length, `${what}: line count`);
  assert.equal(at, -1, `${what}: line ${at} differs:\n  page:   ${actual[at]?.slice(0, 160)}\n` +
    `  native: ${expected[at]?.slice(0, 160)}`);
}

test('"Hello, 한글" and the Korean and Chinese default faces draw the same pixels natively and in WebAssembly', () => {
  const native = run(NATIVE, []);
  const page = run(process.execPath, [WASM]);
  // The same FreeType hints alike: a different version is the first thing to rule out.
  assert.match(native[0], /^FreeType \d+\.\d+\.\d+$/);
  assert.equal(page[0], native[0], 'FreeType\'s version');
  assert.match(native[1], /^\d+x\d+$/);
  // Something was drawn: rows other than white ones, in black and in the box's red.
  const rows = native.slice(2).filter((row) => row.length > 0);
  assert.ok(rows.some((row) => /^(?:[0-9a-f]{6})*?000000/.test(row)), 'no black text');
  assert.ok(rows.some((row) => /^(?:[0-9a-f]{6})*?c80000/.test(row)), 'no red text');
  assertSameLines(page, native, 'the text sample');
});

test('every character of the faces the page carries draws as the installed faces draw it', () => {
  const native = run(NATIVE, ['--all', PAGE_FONTS]);
  const page = run(process.execPath, [WASM, '--all', '/fonts']);
  // Liberation Sans in four styles and the Korean and Chinese subsets, at two sizes.
  for (const face of ['Liberation Sans em', 'Liberation Sans bold italic em', 'Noto Sans Mono CJK KR em',
    'Noto Sans Mono CJK SC em']) {
    assert.ok(native.some((line) => line.startsWith(face)), `no ${face} in the sample`);
  }
  assert.ok(native.length > 300);
  assertSameLines(page, native, 'the characters of the page\'s faces');
});
