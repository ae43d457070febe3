// Choosing points, leaving them out, changing settings. SPDX-License-Identifier: MIT
import assert from "node:assert/strict";

import { atRotorA, bar, leaveOut, rotorA, row, settled, storable, until } from "./bench.mjs";

export async function points_are_chosen_by_click_by_box_and_by_table(bench) {
  bench.calibrated();
  const page = await bench.open({}, atRotorA);
  await settled(page);
  const listed = bench.listed().points;
  const box = await page.locator("#plot").boundingBox();
  // Arrow keys walk by rising Roshko; Space selects.
  await page.locator("#plot").focus();
  await page.keyboard.press("Home");
  const first = [...listed].sort((a, b) => a.roshko - b.roshko)[0];
  assert.match(await page.locator("#point").textContent(), new RegExp(`Point ${first.number} of part ${first.part},`));
  await page.keyboard.press("Space");
  await page.getByText("1 point selected").waitFor();
  assert.ok(await row(page, first.part, first.number).isChecked());
  // A box over everything above selects every point there.
  await page.keyboard.press("Escape");
  await page.getByText("Nothing selected").waitFor();
  await page.mouse.move(box.x + 66, box.y + 10);
  await page.mouse.down();
  await page.mouse.move(box.x + box.width - 14, box.y + box.height * 0.6, { steps: 4 });
  await page.mouse.up();
  await page.getByText(/^4\d points selected$/).waitFor();
  await bench.picture(page, "box");
  // A click away from every point selects none.
  await page.mouse.click(box.x + box.width * 0.8, box.y + box.height * 0.5);
  await page.getByText("Nothing selected").waitFor();
  await row(page, 1, 5).check();
  await row(page, 1, 20).check();
  await page.getByText("2 points selected").waitFor();
}

export async function works_by_the_keyboard_alone(bench) {
  bench.calibrated();
  const page = await bench.open();
  await page.keyboard.press("/");
  await page.keyboard.type("m1");
  await page.keyboard.press("ArrowDown");
  await page.keyboard.press("Enter");
  await page.getByRole("heading", { name: /of M1, calibration 0/ }).waitFor();
  await settled(page);
  for (let i = 0; i < 60 && await page.evaluate(() => document.activeElement.id !== "plot"); ++i) await page.keyboard.press("Tab");
  assert.equal(await page.evaluate(() => document.activeElement.id), "plot");
  await page.keyboard.press("End");
  const point = /Point \d+ of part \d+/.exec(await page.locator("#point").textContent())[0];
  await page.keyboard.press("x");
  await page.keyboard.type("valve was closing");
  await page.keyboard.press("Enter");
  await until(page, "1 point left out");
  await page.keyboard.press("Control+z");
  await until(page, "Everything is stored");
  await page.keyboard.press("Control+y");
  await until(page, "1 point left out");
  await storable(page);
  await page.keyboard.press("Control+s");
  await until(page, "Everything is stored");
  // The list is another one now; the point in hand is the same.
  assert.match(await page.locator("#point").textContent(), new RegExp(`^${point}\\b.*excluded: valve was closing`));
  const out = bench.excluded();
  assert.deepEqual(out.map((p) => p.exclusion.reason), ["valve was closing"]);
}

export async function a_reason_is_required(bench) {
  bench.calibrated();
  const page = await bench.open({}, atRotorA);
  await settled(page);
  await row(page, 1, 5).check();
  await page.getByRole("button", { name: "Leave out" }).click();
  const confirm = page.getByRole("dialog").getByRole("button", { name: "Leave out" });
  await confirm.click();
  await page.getByLabel("Reason").fill("   ");
  await confirm.click();
  assert.ok(await page.getByRole("dialog").isVisible());
  await page.getByRole("button", { name: "Cancel" }).click();
  assert.match(await bar(page), /Everything is stored/);
}

export async function settings_change_the_curve_and_nothing_that_is_stored(bench) {
  bench.calibrated();
  const before = bench.digest(), page = await bench.open({}, atRotorA);
  await settled(page);
  await page.getByRole("tab", { name: "Settings" }).click();
  await page.getByLabel("Highest order").fill("6");
  await page.getByLabel("Highest order").blur();
  await until(page, "highest order changed");
  await settled(page);
  await bench.picture(page, "highest-order");
  const difference = await page.locator("#difference").textContent();
  assert.match(difference, /New against stored: [−+]0\.\d*[1-9]/);
  assert.match(await page.locator("#legend").textContent(), /New curve.*Stored/s);
  await page.getByRole("tab", { name: "Equations" }).click();
  await page.getByLabel("Try Polynomial 6th Order").waitFor();
  assert.equal(await page.getByLabel("Try Polynomial 9th Order").count(), 0);
  await page.getByRole("button", { name: "Discard" }).click();
  await until(page, "Everything is stored");
  await page.getByLabel("Try Polynomial 9th Order").focus();
  await page.keyboard.press("Space");
  await until(page, "equations changed");
  await page.locator("tr.out", { hasText: "Polynomial 9th Order" }).waitFor();
  await page.waitForFunction(() => document.activeElement.getAttribute("aria-label") === "Try Polynomial 9th Order");
  await bench.picture(page, "without");
  assert.equal(bench.digest(), before);
}

export async function a_range_beyond_the_points_is_explained(bench) {
  bench.calibrated();
  const page = await bench.open({}, atRotorA);
  await settled(page);
  await page.getByRole("tab", { name: "Settings" }).click();
  await page.getByLabel("Range beyond the points").selectOption("refuse");
  await page.getByLabel("Curve to Roshko").fill("50000");
  await page.getByLabel("Curve to Roshko").blur();
  await page.locator("#verdict .bad").waitFor();
  assert.match(await page.locator("#verdict").textContent(), /50000|beyond|range/i);
  // What the stored merge has cut is still drawn, and explained.
  assert.match(await page.locator("#legend").textContent(), /Cut/);
  assert.ok(await page.locator("#store").isDisabled());
  await bench.picture(page, "refused");
}

export async function drift_is_drawn_from_calibration_to_calibration(bench) {
  bench.calibrated();
  bench.run("calibrate", bench.curves, "--meter", "M1", "--stand", bench.stand, "--job", "1001", "--fluid", "Mineral spirit", "--new-calibration");
  const page = await bench.open({}, "meter=M1&calibration=1&series=Rotor+A");
  await settled(page);
  await page.getByRole("tab", { name: "Drift" }).click();
  await page.locator("svg.drift").waitFor();
  const two = page.locator("#panel-drift table").first().locator("tbody tr");
  assert.equal(await two.count(), 2);
  const line = bench.json("compare", bench.curves, ...rotorA);
  assert.match((await two.nth(1).textContent()).replace("−", "-"), new RegExp(String(line.meanPercent.toFixed(3)).replace(/[.+-]/g, "\\$&")));
  await page.getByLabel("Largest change allowed, %").fill("0.5");
  await page.getByRole("button", { name: "Advise" }).click();
  await page.locator("#panel-drift", { hasNotText: "no limit of the drift was given" }).getByText(/No interval is recommended|Recommended interval|scatter of the calibrations/).waitFor();
  await bench.picture(page, "drift");
}
