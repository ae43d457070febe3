// The workbench as a person at the browser uses it: node workbench_test.mjs NODE_MODULES PROGRAM DATA ROOM [CASE...]
//
// ROOM: a file of cases beside this one; without CASE, all of them. PELMORA_PICTURES=FOLDER keeps a picture of every step.
// SPDX-License-Identifier: MIT
import assert from "node:assert/strict";
import { join } from "node:path";
import { pathToFileURL } from "node:url";

import { Bench } from "./bench.mjs";

const [modules, program, data, room, ...names] = process.argv.slice(2);
const { chromium } = await import(pathToFileURL(join(modules, "playwright-core/index.mjs")));
const cases = await import(`./${room}.mjs`);

const launched = [];
const browsers = {
  async launch(...more) {
    launched.push(await chromium.launch({ executablePath: process.env.CHROMIUM,
      args: ["--no-sandbox", "--disable-gpu", "--disable-background-networking", "--no-first-run", ...more] }));
    return launched.at(-1);
  }
};

let failures = 0;
try {
  const shared = await browsers.launch();
  for (const name of names.length ? names : Object.keys(cases)) {
    const begin = Date.now(), bench = new Bench(name, { program, data, modules, browsers, shared });
    try {
      await cases[name](bench);
      assert.deepEqual(bench.trouble, []);
    } catch (error) {
      ++failures;
      console.log(`FAILED ${name}\n${error.stack}`);
    } finally {
      await bench.end();
    }
    console.log(`${name}: ${Date.now() - begin} ms`);
  }
} finally {
  for (const browser of launched) await browser.close();
}
assert.equal(failures, 0);
