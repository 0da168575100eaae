// The page engine's memcpy and memcmp against byte loops
// (tests/web/block_copy_check.cpp, built for Node by scripts/build-web.sh).
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { join } from 'node:path';
import { test } from 'node:test';

import { ROOT } from './browser.mjs';

test('the engine\'s memcpy copies what a byte loop copies, and nothing around it; its memcmp orders as one', () => {
  const check = join(ROOT, 'build/wasm/hosts/web/block-copy-check.cjs');
  assert.equal(execFileSync(process.execPath, [check], { encoding: 'utf8' }), 'ok\n');
});
