// The page engine's own memcpy (hosts/web/block_copy.cpp) against a plain byte loop:
// tests/web/block_copy_check.cpp, built for Node by scripts/build-web.sh, copies every
// small size and the sizes around its steps, at every alignment, and prints "ok".
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { join } from 'node:path';
import { test } from 'node:test';

import { ROOT } from './browser.mjs';

test('the engine\'s memcpy copies what a byte loop copies, and nothing around it', () => {
  const printed = execFileSync(process.execPath, [join(ROOT, 'build/wasm/hosts/web/block-copy-check.cjs')],
    { encoding: 'utf8' });
  assert.equal(printed, 'ok\n');
});
