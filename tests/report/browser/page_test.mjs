// The report page as its readers use it: node page_test.mjs NODE_MODULES PROGRAM DATA [CASE...]
//
// Without CASE, all cases run. They share one browser, but open each page in a context of its own.
// SPDX-License-Identifier: MIT
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { pathToFileURL } from "node:url";

const [modules, program, data, ...names] = process.argv.slice(2);
const { chromium } = await import(pathToFileURL(join(modules, "playwright-core/index.mjs")));
const folder = mkdtempSync(join(tmpdir(), "pelmora-page-"));
const stand = join(data, "stand-dual-rotor.csv");
const run = (...words) => execFileSync(program, words, { stdio: ["ignore", "pipe", "pipe"] });
const fluids = ["--job", "1001", "--fluid", "Mineral spirit", "--job", "1002", "--fluid", "Glycol mix"];

// A page is written when a case first opens it. No case changes one, or its database.
const pages = {};
function written(name, meter, store) {
  return pages[name] ??= (() => {
    const curves = join(folder, `${name}.db`), page = join(folder, `${name}.html`);
    run("init", curves);
    store(curves);
    run("report", curves, "--meter", meter, "-o", page);
    return pathToFileURL(page).href;
  })();
}
// Two fluids over a calibration to compare with.
const twoFluids = () => written("two-fluids", "M1", (curves) => {
  run("calibrate", curves, "--meter", "M1", "--stand", stand, ...fluids, "--points", "50");
  run("calibrate", curves, "--meter", "M1", "--stand", stand, ...fluids, "--new-calibration", "--operator", "Ada");
});
// Six flows: warnings, and a series without a curve.
const sixFlows = () => written("six-flows", "M1", (curves) => {
  assert.throws(() => run("calibrate", curves, "--meter", "M1", "--stand", stand, "--job", "1009", "--fluid",
                          "Mineral spirit", "--choose", "adjusted-r2"), { status: 6 });
});
const model = () => JSON.parse(run("report", join(folder, "two-fluids.db"), "--meter", "M1", "-o", "-", "--json"));

const browser = await chromium.launch({
  executablePath: process.env.CHROMIUM,
  args: ["--no-sandbox", "--disable-gpu", "--disable-background-networking", "--no-first-run"]
});
const trouble = [];
async function open(url, options = {}) {
  const page = await browser.newPage({ viewport: { width: 1000, height: 1200 }, ...options });
  page.on("console", (message) => trouble.push(`console: ${message.text()}`));
  page.on("pageerror", (error) => trouble.push(`error: ${error}`));
  page.on("request", (request) => { if (request.url() !== url) trouble.push(`request: ${request.url()}`); });
  await page.goto(url);
  if (options.javaScriptEnabled !== false) await page.waitForFunction(() => document.querySelectorAll(".live canvas").length > 0);
  return page;
}
const section = (page, series = 1) => page.locator(`#series-${series}`);
// What one pair of plots shows now.
const state = (page, series = 1) => page.evaluate((id) => {
  const pair = document.querySelector(`#series-${id} .box`).pair;
  return {
    window: pair.window, full: pair.full, read: pair.read.textContent,
    x: pair.plots.map((u) => [u.scales.x.min, u.scales.x.max]), y: pair.plots.map((u) => [u.scales.y.min, u.scales.y.max]),
    over: pair.plots.map((u) => { const r = u.over.getBoundingClientRect(); return { x: r.x, y: r.y, width: r.width, height: r.height }; })
  };
}, series);
// Where a value stands on the screen, from the scales alone.
async function placeOf(page, roshko, strouhal) {
  await section(page).locator(".box").scrollIntoViewIfNeeded();
  const now = await state(page), [low, high] = now.x[0], [bottom, top] = now.y[0], over = now.over[0];
  return { x: over.x + over.width * Math.log(roshko / low) / Math.log(high / low), y: over.y + over.height * (1 - (strouhal - bottom) / (top - bottom)) };
}
const pixels = (page) => section(page).locator(".live canvas").first().evaluate((canvas) => canvas.toDataURL());
const settled = (page) => page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));

const cases = {
  async makes_no_request_and_no_noise() {
    const page = await open(twoFluids());
    await page.waitForTimeout(500);
    assert.equal(await page.locator(".live canvas").count(), 8);
    await page.evaluate(() => fetch("http://127.0.0.1:9/").then(() => assert.fail(), () => 0)).catch(() => 0);
    const own = trouble.filter((line) => !line.includes("127.0.0.1:9"));
    assert.deepEqual(own, []);
    assert.ok(trouble.some((line) => line.includes("Content Security Policy")), "the policy lets a request out");
    trouble.length = 0;
  },

  async reads_the_point_under_the_pointer() {
    const page = await open(twoFluids());
    const series = model().series[0], point = series.raw[0].points.find((p) => p.cut);
    const place = await placeOf(page, point.roshko, point.strouhal);
    await page.mouse.move(place.x, place.y);
    await settled(page);
    const { read } = await state(page);
    assert.match(read, /^Raw 1, Mineral spirit, cut by the merge/);
    const numbers = read.match(/Roshko (\S+), Strouhal (\S+), curve (\S+), residual (\S+) %/).slice(1).map(Number);
    assert.ok(Math.abs(numbers[0] / point.roshko - 1) < 1e-5, read);
    assert.ok(Math.abs(numbers[1] / point.strouhal - 1) < 1e-6, read);
    assert.ok(Math.abs(numbers[3] - point.deviationPercent) < 1e-3, read);
  },

  async draws_the_bands_of_the_fit() {
    const page = await open(twoFluids());
    const drawn = await page.evaluate(() => document.querySelector("#series-1 .box").pair.data.curve);
    for (const [name, member] of [["x", "roshko"], ["y", "strouhal"], ["confidence", "confidenceHalfWidth"], ["prediction", "predictionHalfWidth"]]) {
      const wanted = model().series[0].curve.map((point) => point[member]);
      assert.equal(drawn[name].length, wanted.length);
      drawn[name].forEach((value, i) => assert.ok(Math.abs(value / wanted[i] - 1) < 6e-3, `${name} ${i}: ${value} for ${wanted[i]}`));
    }
  },

  async zooms_with_the_pointer_both_plots_at_once() {
    const page = await open(twoFluids());
    await section(page).locator(".box").scrollIntoViewIfNeeded();
    const { over, full } = await state(page), y = over[0].y + over[0].height / 2;
    await page.mouse.move(over[0].x + over[0].width * 0.25, y);
    await page.mouse.down();
    await page.mouse.move(over[0].x + over[0].width * 0.5, y, { steps: 5 });
    await page.mouse.up();
    await settled(page);
    const now = await state(page);
    const at = (share) => full[0] * Math.pow(full[1] / full[0], share);
    for (const x of now.x) {
      assert.ok(Math.abs(Math.log(x[0] / at(0.25))) < 0.03 && Math.abs(Math.log(x[1] / at(0.5))) < 0.03, JSON.stringify(now.x));
    }
    await page.mouse.dblclick(over[1].x + 50, over[1].y + 20);
    await settled(page);
    assert.deepEqual((await state(page)).x, [full, full]);
  },

  async zooms_with_buttons_and_keys() {
    const page = await open(twoFluids());
    const decades = async () => { const [low, high] = (await state(page)).x[1]; return Math.log10(high / low); };
    const whole = await decades();
    await section(page).getByRole("button", { name: "Zoom in" }).click();
    assert.ok(Math.abs((await decades()) - whole / 2) < 1e-9);
    await section(page).getByRole("button", { name: "Zoom out" }).click();
    assert.equal(await decades(), whole);
    await section(page).locator(".live").focus();
    await page.keyboard.press("+");
    await page.keyboard.press("+");
    assert.ok(Math.abs((await decades()) - whole / 4) < 1e-9);
    await page.keyboard.press("Escape");
    assert.equal(await decades(), whole);
  },

  async steps_through_the_points_with_the_keyboard_alone() {
    const page = await open(twoFluids());
    for (let i = 0; i < 60; ++i) {
      await page.keyboard.press("Tab");
      if (await page.evaluate(() => document.activeElement.className === "live")) break;
    }
    assert.equal(await page.evaluate(() => document.activeElement.className), "live");
    const points = model().series[0].raw.flatMap((part) => part.points).map((p) => p.roshko).sort((a, b) => a - b);
    for (const roshko of points.slice(0, 4)) {
      await page.keyboard.press("ArrowRight");
      const read = (await state(page)).read;
      assert.ok(Math.abs(Number(read.match(/Roshko ([^,]+)/)[1]) / roshko - 1) < 1e-5, `${read}: ${roshko}`);
    }
    await page.keyboard.press("ArrowLeft");
    assert.ok(Math.abs(Number((await state(page)).read.match(/Roshko ([^,]+)/)[1]) / points[2] - 1) < 1e-5);
  },

  async hides_and_shows_by_the_legend() {
    const page = await open(twoFluids());
    const before = await pixels(page);
    for (const label of ["Raw 2, Glycol mix", "Merged", "Fitted curve", "Band", "95 % confidence"]) {
      const button = section(page).getByRole("button", { name: label }).first();
      assert.equal(await button.getAttribute("aria-pressed"), "true");
      await button.focus();
      await page.keyboard.press("Enter");
      await settled(page);
      assert.equal(await button.getAttribute("aria-pressed"), "false");
      const without = await pixels(page);
      assert.notEqual(without, before, `${label} is still drawn`);
      await page.keyboard.press("Enter");
      await page.keyboard.press("Tab");
      await settled(page);
      assert.equal(await pixels(page), before, `${label} does not come back`);
    }
  },

  async has_no_accessibility_violation() {
    const url = sixFlows(), axe = readFileSync(join(modules, "axe-core/axe.min.js"), "utf8");
    for (const options of [{ colorScheme: "light" }, { colorScheme: "dark" }, { javaScriptEnabled: true, viewport: { width: 400, height: 900 } }]) {
      const page = await open(url, options);
      await page.locator("summary").first().click();
      await page.evaluate(axe);
      const result = await page.evaluate(() => axe.run(document, { runOnly: ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "best-practice"], resultTypes: ["violations"] }));
      const found = result.violations.map((v) => `${v.id}: ${v.nodes.slice(0, 3).map((n) => `${n.html} ${n.failureSummary}`).join(" | ")}`);
      assert.deepEqual(found, [], JSON.stringify(options));
      assert.ok(result.passes.some((rule) => rule.id === "color-contrast"), "contrast was not checked");
      await page.close();
    }
  },

  async shows_warnings_and_a_series_without_curve() {
    const page = await open(sixFlows());
    assert.match(await section(page, 1).locator(".warn").textContent(), /distinct x levels/);
    assert.match(await section(page, 4).locator(".warn").textContent(), /No curve is stored/);
    assert.equal(await section(page, 4).locator(".live canvas").count(), 2);
    assert.match(await section(page, 4).locator("figcaption").textContent(), /best attempt, .*, which is not stored/);
    assert.deepEqual(trouble, []);
  },

  // Where everything stands is compared, not Chromium's count of layout shifts: that one also counts what
  // moves while a page is still being read, on a busy machine.
  async does_not_jump_when_the_plots_come() {
    const url = twoFluids(), places = (page) => page.evaluate(() =>
      [...document.querySelectorAll("h1, h2, h3, p, table, figure, figcaption, .legend, .box, footer")].map((element) => {
        const { x, y, width, height } = element.getBoundingClientRect();
        return [element.tagName, x, y, width, height].join(" ");
      }));
    const before = await open(url, { javaScriptEnabled: false }), still = await places(before);
    assert.ok(still.length > 50, `${still.length} places`);
    const after = await open(url);
    assert.equal(await after.locator(".live canvas").count(), 8);
    assert.deepEqual(await places(after), still);
  },

  async does_not_move_when_its_first_section_has_been_read() {
    const page = await open(twoFluids(), { javaScriptEnabled: false });
    const top = () => page.locator("main").evaluate((main) => main.getBoundingClientRect().top);
    const whole = await top();
    await page.locator("main").evaluate((main) => main.replaceChildren());
    assert.equal(await top(), whole);
  },

  async needs_no_scripts() {
    const page = await open(twoFluids(), { javaScriptEnabled: false });
    const plot = section(page).locator(".box > .plot");
    assert.equal(await plot.evaluate((svg) => getComputedStyle(svg).visibility), "visible");
    assert.equal(await section(page).locator(".tools").evaluate((tools) => getComputedStyle(tools).visibility), "hidden");
  },

  async prints_the_static_plots_on_light_paper() {
    const page = await open(twoFluids(), { colorScheme: "dark" });
    await page.emulateMedia({ media: "print", colorScheme: "dark" });
    const look = await page.evaluate(() => {
      const of = (selector, property) => getComputedStyle(document.querySelector(selector))[property];
      return { plot: of(".box > .plot", "visibility"), live: of(".live", "display"), tools: of(".tools", "display"), paper: of("body", "backgroundColor"), sign: of(".sign", "display") };
    });
    assert.deepEqual(look, { plot: "visible", live: "none", tools: "none", paper: "rgb(255, 255, 255)", sign: "grid" });
    const pdf = (await page.pdf({ preferCSSPageSize: true })).toString("latin1");
    const boxes = [...pdf.matchAll(/\/MediaBox \[0 0 ([\d.]+) ([\d.]+)\]/g)].map((m) => [Number(m[1]), Number(m[2])]);
    assert.ok(boxes.length >= 9, `${boxes.length} pages`);
    for (const [width, height] of boxes) assert.ok(Math.abs(width - 595) < 2 && Math.abs(height - 842) < 2, "no A4 page");
  },

  async runs_nothing_that_names_bring() {
    const hostile = "</script><img src=x onerror=window.pwned=1><script>window.pwned=1</script>";
    const page = await open(written("names", hostile, (curves) => {
      run("raw", curves, join(data, "real-vortex-shedding-strouhal.csv"), "--meter", hostile, "--register", "--series",
          hostile, "--where", "set=2");
      run("fit", curves, "--meter", hostile, "--series", hostile, "--band", "1");
    }));
    await page.waitForTimeout(300);
    assert.equal(await page.evaluate(() => window.pwned), undefined);
    assert.equal(await section(page).locator("h2").textContent(), hostile);
    assert.deepEqual(trouble, []);
  }
};

let failures = 0;
try {
  for (const name of names.length ? names : Object.keys(cases)) {
    const begin = Date.now();
    trouble.length = 0;
    try {
      await cases[name]();
      assert.deepEqual(trouble, []);
    } catch (error) {
      ++failures;
      console.log(`FAILED ${name}\n${error.stack}`);
    } finally {
      for (const context of browser.contexts()) await context.close();
    }
    console.log(`${name}: ${Date.now() - begin} ms`);
  }
} finally {
  await browser.close();
  rmSync(folder, { recursive: true, force: true });
}
assert.equal(failures, 0);
