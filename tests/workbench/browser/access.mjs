// For everybody: what tools of accessibility find, and every width in both colours. SPDX-License-Identifier: MIT
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { join } from "node:path";

import { atRotorA, rotorA, row, settled } from "./bench.mjs";

async function checkAccess(bench, page, where) {
  // Chromium's own debugging channel puts the checker into the page, whose policy lets nothing else in.
  const client = await page.context().newCDPSession(page);
  const run = async (expression) => {
    const { result, exceptionDetails } = await client.send("Runtime.evaluate", { expression, awaitPromise: true, returnByValue: true });
    assert.equal(exceptionDetails, undefined, JSON.stringify(exceptionDetails));
    return result.value;
  };
  if (!await run("'axe' in window")) await run(`${readFileSync(join(bench.modules, "axe-core/axe.min.js"), "utf8")}; true`);
  const found = await run(`axe.run(document, { runOnly: ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "best-practice"], resultTypes: ["violations"] }).then((result) => ({
    violations: result.violations.map((rule) => rule.id + ": " + rule.nodes.slice(0, 3).map((node) => node.html + " " + node.failureSummary).join(" | ")),
    hasContrast: result.passes.some((rule) => rule.id === "color-contrast") }))`);
  assert.deepEqual(found.violations, [], where);
  assert.ok(found.hasContrast, "contrast was not checked");
}

export async function has_no_accessibility_violation(bench) {
  bench.calibrated();
  bench.run("exclude", bench.curves, ...rotorA, "--part", "1", "--point", "5", "--reason", "trial");
  const all = ["Points", "Settings", "Equations", "History", "Budget", "Drift", "Sign"];
  for (const [options, tabs] of [[{ colorScheme: "light" }, all], [{ colorScheme: "dark" }, ["Points", "Sign"]], [{ viewport: { width: 360, height: 740 } }, ["Points", "Budget"]]]) {
    const page = await bench.open(options, atRotorA);
    await settled(page);
    for (const tab of tabs) {
      await page.getByRole("tab", { name: tab }).click();
      await page.waitForFunction((title) => document.querySelector(`#panel-${title.toLowerCase()}`).childElementCount > 0, tab);
      await checkAccess(bench, page, `${JSON.stringify(options)} ${tab}`);
      await bench.picture(page, tab.toLowerCase());
    }
    await page.getByRole("tab", { name: "Points" }).click();
    await row(page, 1, 6).check();
    await page.getByRole("button", { name: "Leave out" }).click();
    await checkAccess(bench, page, "dialog");
    await bench.picture(page, "dialog");
    await page.context().close();
  }
}

export async function the_picture_follows_the_theme(bench) {
  bench.calibrated();
  const page = await bench.open({ colorScheme: "light" }, atRotorA);
  await settled(page);
  // The bands of the picture are pale on a light page and deep on a dark one.
  const becomes = (wanted) => page.waitForFunction((isDark) => {
    const { width, height } = document.querySelector("#plot canvas");
    const copy = Object.assign(document.createElement("canvas"), { width, height }).getContext("2d", { willReadFrequently: true });
    copy.drawImage(document.querySelector("#plot canvas"), 0, 0);
    const d = copy.getImageData(0, 0, width, height).data;
    let sum = 0, count = 0;
    for (let i = 0; i < d.length; i += 4) if (d[i + 3] === 255) { sum += d[i] + d[i + 1] + d[i + 2]; ++count; }
    return isDark ? sum / count / 3 < 110 : sum / count / 3 > 160;
  }, wanted === "dark");
  const theme = page.locator("#theme");
  await becomes("light");
  await theme.click();
  await theme.click();
  assert.equal(await theme.textContent(), "Theme: dark");
  await becomes("dark");
  await theme.click();
  await becomes("light");
  await page.emulateMedia({ colorScheme: "dark" });
  await becomes("dark");
}

export async function fits_every_width_and_both_colours(bench) {
  bench.calibrated();
  const sizes = [[360, 740, "light"], [360, 740, "dark"], [768, 1024, "light"], [1280, 720, "dark"], [3840, 2160, "light"]];
  for (const [width, height, colorScheme] of sizes) {
    const page = await bench.open({ viewport: { width, height }, colorScheme }, atRotorA);
    await settled(page);
    assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), `${width} px scroll sideways`);
    const plot = await page.locator("#plot canvas").boundingBox();
    assert.ok(plot.width > Math.min(280, width * 0.5) && plot.height > 200, JSON.stringify(plot));
    await bench.picture(page, `${width}-${colorScheme}`);
    await page.context().close();
  }
}
