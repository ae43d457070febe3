// From a spoiled stand file to a signed report, and what else is stored. SPDX-License-Identifier: MIT
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";

import { atRotorA, bar, dropFile, leaveOut, look, rotorA, row, settled, storable, store, until } from "./bench.mjs";

// The stand's file with the time of rotor A wrong in two points: 1.2 % too short.
function spoiledStand(bench) {
  const lines = readFileSync(bench.stand, "utf8").split("\n"), spoiled = [];
  for (const [job, number] of [["1001", 8], ["1002", 6]]) {
    const at = lines.map((line, i) => [line, i]).filter(([line]) => line.startsWith(`${job},`))[number - 1][1];
    const fields = lines[at].split(",");
    fields[3] = (Number(fields[3]) * 0.988).toFixed(6);
    lines[at] = fields.join(",");
    spoiled.push({ part: job === "1001" ? 1 : 2, number });
  }
  return { file: bench.write("stand.csv", lines.join("\n")), spoiled };
}

// The text of the file that a click on `link` brings.
async function downloaded(bench, page, link, name) {
  const waits = page.waitForEvent("download");
  await link.click();
  const saved = bench.file(name), download = await waits;
  await download.saveAs(saved);
  assert.equal(download.suggestedFilename(), name);
  return readFileSync(saved, "utf8");
}

export async function the_story_from_a_spoiled_stand_file_to_a_signed_report(bench) {
  bench.run("init", bench.curves);
  const { file, spoiled } = spoiledStand(bench), page = await bench.open();
  await bench.picture(page, "empty");
  await dropFile(page, file, "stand.csv");
  await page.getByText("Recognised: a stand's file with 9 jobs").waitFor();
  await page.getByLabel("Meter", { exact: true }).last().fill("M1");
  await page.getByLabel("Fluid of job 1001").fill("Mineral spirit");
  await page.getByLabel("Fluid of job 1002").fill("Glycol mix");
  await page.getByLabel("Operator of job 1001").fill("Ada");
  await page.getByRole("button", { name: "Preview" }).click();
  await page.getByText("Series Rotor A: 48 points").waitFor();
  assert.equal(bench.json("show", bench.curves).meters.length, 0, "a preview has stored something");
  await bench.picture(page, "preview");
  await page.getByRole("dialog").getByRole("button", { name: "Import", exact: true }).click();
  await page.getByRole("heading", { name: "Rotor A of M1, calibration 0" }).waitFor();
  await settled(page);
  await bench.picture(page, "imported");
  // The table has the worst points on top.
  const worst = await page.locator(".points tbody tr[data-index]").evaluateAll((rows) => rows.slice(0, 2).map((tr) => [tr.children[1].textContent, tr.children[2].textContent].map(Number)));
  assert.deepEqual(worst.map(([part, number]) => ({ part, number })).sort((a, b) => a.part - b.part), spoiled);
  for (const { part, number } of spoiled) await row(page, part, number).check();
  await bench.picture(page, "selected");
  await leaveOut(page, "timer of rotor A read 1.2 % short");
  await until(page, "2 points left out");
  await settled(page);
  await bench.picture(page, "left-out");
  assert.equal(bench.excluded().length, 0, "stored before Store");
  await page.locator("#undo").click();
  assert.match(await bar(page), /No curve is stored yet/);
  await page.locator("#redo").click();
  await until(page, "2 points left out");
  await store(page);
  await settled(page);
  await bench.picture(page, "stored");
  const kept = bench.listed();
  assert.deepEqual(kept.points.filter((p) => p.state === "excluded").map((p) => [p.part, p.number, p.exclusion.reason]),
    spoiled.map((p) => [p.part, p.number, "timer of rotor A read 1.2 % short"]));
  assert.equal(kept.curve, "current");
  await page.getByRole("tab", { name: "Sign" }).click();
  await page.getByLabel("Your name").fill("Ada Byron");
  await page.getByLabel("Remark").fill("two readings of a faulty timer left out");
  await page.getByRole("button", { name: "Sign off" }).click();
  await page.getByText("Valid:").waitFor();
  await settled(page);
  await bench.picture(page, "signed");
  const certificate = await downloaded(bench, page, page.getByRole("link", { name: "Certificate (HTML)" }), "M1-calibration-0.html");
  assert.match(certificate, /<b>Signed off<\/b> by Ada Byron, .*: two readings of a faulty timer left out/);
  await page.getByLabel("What it looks up").selectOption("uvc");
  await page.getByLabel("Number of points").fill("20");
  await page.getByRole("button", { name: "Show the reading error" }).click();
  await page.getByText(/^20 points: the reading error is at most .* With it, U is at most/).waitFor();
  await bench.picture(page, "flow-table");
  const table = await downloaded(bench, page, page.getByRole("button", { name: "Table (CSV)" }), "M1-calibration-0-Rotor_A-uvc.csv");
  assert.equal(table, String(bench.run("export", bench.curves, ...rotorA, "--for", "uvc", "--points", "20")));
  // A later change makes the signature visibly void.
  await page.getByRole("tab", { name: "Points" }).click();
  await row(page, spoiled[0].part, spoiled[0].number).check();
  await page.getByRole("button", { name: "Take back" }).click();
  await until(page, "1 point taken back");
  await store(page);
  await page.getByRole("tab", { name: "Sign" }).click();
  await page.getByText("Void, changed since:").waitFor();
  await page.locator("#calibrations .tag", { hasText: "signature void" }).waitFor();
  await bench.picture(page, "void");
}

export async function exclusions_are_stored_even_if_no_curve_passes(bench) {
  bench.calibrated();
  const page = await bench.open({}, atRotorA);
  await settled(page);
  await page.getByRole("tab", { name: "Settings" }).click();
  await page.getByLabel("Curve by").selectOption("adjusted-r2");
  await page.getByLabel("Test band, %").fill("0.001");
  await page.getByLabel("Test band, %").blur();
  await page.locator("#verdict", { hasText: "No curve:" }).waitFor();
  assert.ok(await page.locator("#store").isDisabled());
  await page.getByRole("tab", { name: "Points" }).click();
  await row(page, 1, 5).check();
  await leaveOut(page, "air in the line");
  await storable(page);
  await page.locator("#store").click();
  await page.getByRole("button", { name: "Store the exclusions" }).click();
  await until(page, "The stored curve is older than its points");
  const kept = bench.listed();
  assert.equal(kept.curve, "outdated");
  assert.deepEqual(kept.points.filter((p) => p.state === "excluded").map((p) => p.exclusion.reason), ["air in the line"]);
  await bench.picture(page, "stale");
}

export async function history_brings_back_what_was_stored_before(bench) {
  bench.calibrated();
  const before = bench.json("show", bench.curves, ...rotorA).curve;
  bench.run("exclude", bench.curves, ...rotorA, "--part", "1", "--point", "5", "--point", "20", "--reason", "trial");
  bench.run("fit", bench.curves, ...rotorA);
  const page = await bench.open({}, atRotorA);
  await settled(page);
  await page.getByRole("tab", { name: "History" }).click();
  await page.getByRole("button", { name: /^Restore entry \d+, as before fit/ }).first().click();
  await bench.picture(page, "restore");
  await page.getByRole("dialog").getByRole("button", { name: "Restore" }).click();
  await page.waitForFunction(() => document.querySelector("#said").textContent.includes("Restored") || document.querySelectorAll("#panel-history tbody tr").length > 2);
  await settled(page);
  assert.deepEqual(bench.json("show", bench.curves, ...rotorA).curve, before);
}

export async function the_second_of_two_tabs_is_told_and_overwrites_nothing(bench) {
  bench.calibrated();
  const one = await bench.open({}, atRotorA), other = await bench.open({}, atRotorA);
  for (const page of [one, other]) await settled(page);
  await row(one, 1, 5).check();
  await leaveOut(one, "first");
  await row(other, 1, 6).check();
  await leaveOut(other, "second");
  for (const page of [one, other]) await storable(page);
  await one.locator("#store").click();
  await until(one, "Everything is stored");
  await other.locator("#store").click();
  await other.getByText("Somebody has changed this series since you opened it").waitFor();
  await bench.picture(other, "conflict");
  const out = () => bench.excluded().map((p) => p.exclusion.reason);
  assert.deepEqual(out(), ["first"]);
  await other.getByRole("button", { name: "Load it and keep my changes" }).first().click();
  await other.getByText("out: first").waitFor();
  await storable(other);
  await other.locator("#store").click();
  await until(other, "Everything is stored");
  assert.deepEqual(out(), ["first", "second"]);
  // The first one hears of it without asking.
  await look(one);
  await one.getByText("This series was changed elsewhere").waitFor();
  bench.expectTrouble("409");
}

export async function says_so_when_the_workbench_has_ended(bench) {
  bench.calibrated();
  const page = await bench.open({}, atRotorA);
  await settled(page);
  await bench.endServer();
  await look(page);
  await page.getByText("The workbench does not answer").waitFor();
  await bench.picture(page, "ended");
  bench.expectTrouble("ERR_CONNECTION_REFUSED");
  // What the page had asked for in between.
  bench.expectTrouble("503 (Service Unavailable)");
  bench.expectTrouble("ERR_EMPTY_RESPONSE");
  bench.expectTrouble("ERR_CONNECTION_RESET");
}
