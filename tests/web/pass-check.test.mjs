// The pixel passes as the page's engine compiles them against their plain references
// (tests/web/pass_check.cpp, built for Node by scripts/build-web.sh).
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { join } from 'node:path';
import { test } from 'node:test';

import { ROOT } from './browser.mjs';

test('the engine\'s pixel passes give the bytes of their plain references', () => {
  const check = join(ROOT, 'build/wasm/hosts/web/pass-check.cjs');
  assert.equal(execFileSync(process.execPath, [check], { encoding: 'utf8' }), 'ok\n');
});
