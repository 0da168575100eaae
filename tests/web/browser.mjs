// What the browser tests and the web benchmark share: a small static file server for
// build/web/ on 127.0.0.1 (a free port), and Debian's Chromium driven by
// playwright-core with a fresh profile.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { createServer } from 'node:http';
import { readFile } from 'node:fs/promises';
import { extname, join, normalize, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';
import { chromium } from 'playwright-core';

export const ROOT = resolve(fileURLToPath(import.meta.url), '../../..');
export const WEB_ROOT = join(ROOT, 'build/web');

const TYPES = {
  '.html': 'text/html; charset=utf-8', '.js': 'text/javascript', '.mjs': 'text/javascript', '.css': 'text/css',
  '.wasm': 'application/wasm', '.jpg': 'image/jpeg', '.png': 'image/png', '.bmp': 'image/bmp', '.gif': 'image/gif',
};

// What makes a page cross-origin isolated, so that the element loads its engine with
// threads; as scripts/demo.sh's server sends them.
const ISOLATION = {
  'cross-origin-opener-policy': 'same-origin', 'cross-origin-embedder-policy': 'require-corp',
  'cross-origin-resource-policy': 'same-origin',
};

// Serves the files of `roots` (the first that has a path wins) until close(), with
// the headers of cross-origin isolation unless `isolated` is false; resolves with the
// base URL.
export async function serve(roots = [WEB_ROOT], { isolated = true } = {}) {
  const server = createServer(async (request, response) => {
    const path = normalize(decodeURIComponent(new URL(request.url, 'http://x').pathname));
    for (const root of roots) {
      const file = join(root, path.endsWith('/') ? `${path}index.html` : path);
      if (!file.startsWith(root)) continue;
      try {
        const body = await readFile(file);
        response.writeHead(200, {
          'content-type': TYPES[extname(file)] ?? 'application/octet-stream', ...(isolated ? ISOLATION : {}),
        });
        response.end(body);
        return;
      } catch {
        // not in this root
      }
    }
    response.writeHead(404).end('not found');
  });
  await new Promise((done) => server.listen(0, '127.0.0.1', done));
  return { url: `http://127.0.0.1:${server.address().port}/`, close: () => new Promise((done) => server.close(done)) };
}

export function launchChromium() {
  return chromium.launch({
    executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
    headless: true,
    args: ['--headless', '--no-sandbox', '--disable-gpu', '--no-first-run', '--disable-background-networking',
      '--disable-component-update', '--disable-sync', '--force-color-profile=srgb'],
  });
}

// The README's first `language` block after `marker`, as written there, so that tests
// run what the README shows.
export function readmeSnippet(marker, language) {
  const readme = readFileSync(join(ROOT, 'README.md'), 'utf8');
  const from = readme.indexOf(marker);
  assert.notEqual(from, -1, `README.md has no "${marker}"`);
  const block = readme.slice(from).match(new RegExp(`\`\`\`${language}\n([\\s\\S]*?)\`\`\`\n`));
  assert.ok(block, `README.md has no ${language} block after "${marker}"`);
  return block[1];
}
