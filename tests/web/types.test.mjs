// The element's TypeScript declaration (build/web/image-edit-control.d.ts, generated
// from the interface description) against a typed page, tests/web/typed-page.ts.
import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { join } from 'node:path';
import { test } from 'node:test';

import { ROOT } from './browser.mjs';

test('a typed page compiles against the declaration and its wrong calls are refused', () => {
  const tsc = spawnSync(process.execPath,
    [join(ROOT, 'node_modules/typescript/bin/tsc'), '--project', join(ROOT, 'tests/web/tsconfig.json')],
    { encoding: 'utf8' });
  assert.equal(tsc.status, 0, `tsc found faults:\n${tsc.stdout}${tsc.stderr}`);
});
