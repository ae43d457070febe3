// A workbench over a database of its own, and pages in the browser that use it. SPDX-License-Identifier: MIT
import assert from "node:assert/strict";
import { execFileSync, spawn } from "node:child_process";
import { createHash } from "node:crypto";
import { mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { createInterface } from "node:readline";

const pictures = process.env.PELMORA_PICTURES;
if (pictures) mkdirSync(pictures, { recursive: true });

// A server that runs while the test runs (on_server.py): the folder of its socket. Databases are files otherwise.
const databaseServer = process.env.PELMORA_TEST_SERVER;
const onServer = (program, ...words) => execFileSync(program, ["-h", databaseServer, "-U", "lab", ...words], { maxBuffer: 1 << 28 });
let databases = 0;

// How long something may take on a machine that does much else.
const patience = 120000;

export const rotorA = ["--meter", "M1", "--series", "Rotor A"];
export const atRotorA = "meter=M1&calibration=0&series=Rotor+A";
const fluids = ["--job", "1001", "--fluid", "Mineral spirit", "--job", "1002", "--fluid", "Glycol mix", "--operator", "Ada"];

export class Bench {
  #contexts = [];
  #server = null;
  #addresses = null;
  #step = 0;
  // What no case may cause: lines of the console, errors, requests to elsewhere.
  trouble = [];

  // browsers: {launch(...arguments)}; shared: a browser that is there already.
  constructor(name, { program, data, modules, browsers, shared }) {
    Object.assign(this, { name, program, modules, browsers, shared });
    this.folder = mkdtempSync(join(tmpdir(), "pelmora-workbench-test-"));
    this.curves = databaseServer ? this.newOnServer() : this.file("curves.db");
    this.stand = join(data, "stand-dual-rotor.csv");
  }
  async end() {
    for (const context of this.#contexts) await context.close();
    await this.endServer();
    rmSync(this.folder, { recursive: true, force: true });
  }

  // ---- The program ----
  file(name) { return join(this.folder, name); }
  write(name, text) { writeFileSync(this.file(name), text); return this.file(name); }
  run(...words) { return execFileSync(this.program, words, { stdio: ["ignore", "pipe", "pipe"], maxBuffer: 1 << 28 }); }
  json(...words) { return JSON.parse(this.run(...words, "--json")); }
  newOnServer() {
    this.database = `case${++databases}`;
    onServer("createdb", this.database);
    return `postgresql://lab@/${this.database}?host=${databaseServer}`;
  }
  // The same as long as nothing has changed in the database. Each dump of a server has a key of its own, and a change that
  // was undone leaves gaps between numbers.
  digest() {
    const bytes = databaseServer ? onServer("pg_dump", this.database).toString().replace(/^(\\(un)?restrict |SELECT pg_catalog.setval).*$/gm, "") : readFileSync(this.curves);
    return createHash("sha256").update(bytes).digest("hex");
  }
  // A curve database with one meter of two fluids.
  calibrated() {
    this.run("init", this.curves);
    this.run("calibrate", this.curves, "--meter", "M1", "--stand", this.stand, ...fluids);
  }
  // What is stored about Rotor A.
  listed() { return this.json("points", this.curves, ...rotorA); }
  excluded() { return this.listed().points.filter((point) => point.state === "excluded"); }

  // The address that the workbench prints next.
  async address() {
    if (!this.#server) {
      this.#server = spawn(this.program, ["workbench", this.curves, "--no-browser"], { stdio: ["ignore", "pipe", "inherit"] });
      process.once("exit", () => this.#server.kill());  // however this process ends
      this.#addresses = createInterface({ input: this.#server.stdout })[Symbol.asyncIterator]();
    }
    for (;;) {
      const { value, done } = await this.#addresses.next();
      assert.ok(!done, "the workbench has ended");
      if (!value.trim().startsWith("http://")) continue;
      this.origin = new URL(value.trim()).origin;
      return value.trim();
    }
  }
  // The processor time that the workbench has taken, in ms.
  serverTime() {
    const ticks = readFileSync(`/proc/${this.#server.pid}/stat`, "utf8").split(") ")[1].split(" ");
    return (Number(ticks[11]) + Number(ticks[12])) * 10;
  }
  async endServer() {
    const server = this.#server;
    if (!server || server.exitCode !== null) return;
    const ended = new Promise((done) => server.once("exit", done));
    server.kill("SIGINT");
    await ended;
  }

  // ---- The browser ----
  async context(options = {}, browser = this.shared) {
    const context = await browser.newContext({ viewport: { width: 1400, height: 900 }, acceptDownloads: true, ...options });
    context.setDefaultTimeout(patience);
    this.#contexts.push(context);
    return context;
  }
  watched(page) {
    page.on("console", (message) => this.trouble.push(`console: ${message.text()}`));
    page.on("pageerror", (error) => this.trouble.push(`error: ${error}`));
    page.on("request", (request) => { if (!request.url().startsWith(this.origin) && !request.url().startsWith("data:")) this.trouble.push(`request: ${request.url()}`); });
    return page;
  }
  expectTrouble(text) { this.trouble = this.trouble.filter((line) => !line.includes(text)); }
  // A page of the workbench in a browser of its own, at the address that was printed last.
  async open(options = {}, hash = "") {
    const address = await this.address();
    const page = this.watched(await (await this.context(options)).newPage());
    await page.goto(address);
    await page.waitForURL((url) => !url.pathname.endsWith("open"));
    await ready(page);
    if (hash) { await page.goto(`${page.url().split("#")[0]}#${hash}`); await page.reload(); await ready(page); }
    return page;
  }
  async picture(page, what) {
    if (pictures) await page.screenshot({ path: join(pictures, `${this.name}-${String(++this.#step).padStart(2, "0")}-${what}.png`) });
  }
}

export const ready = (page) => page.waitForFunction(() => document.body.dataset.ready === "true");
// Until the fit that belongs to the last change is shown, and the points have their fluids.
export async function settled(page) {
  await page.waitForFunction(() => document.body.dataset.fit === "done" && document.body.dataset.details === "done");
}
// The page asks whether something has changed, as it does every few seconds and when it comes to the front.
export const look = (page) => page.evaluate(() => { document.dispatchEvent(new Event("visibilitychange")); });
export const bar = (page) => page.locator("#changes").textContent();
// Until the bar says this.
export const until = (page, text) => page.waitForFunction((words) => document.querySelector("#changes").textContent.includes(words), text);
export const row = (page, part, number) => page.getByRole("checkbox", { name: new RegExp(`^Point ${number} of part ${part}\\b`) });
export async function leaveOut(page, reason) {
  await page.getByRole("button", { name: "Leave out" }).click();
  await page.getByLabel("Reason").fill(reason);
  await page.getByRole("dialog").getByRole("button", { name: "Leave out" }).click();
}
export const storable = (page) => page.waitForFunction(() => !document.querySelector("#store").disabled);
export async function store(page) {
  await storable(page);
  await page.getByRole("button", { name: "Store", exact: true }).click();
  await until(page, "Everything is stored");
}
export async function dropFile(page, file, as) {
  const transfer = await page.evaluateHandle(([text, called]) => {
    const items = new DataTransfer();
    items.items.add(new File([text], called, { type: "text/csv" }));
    return items;
  }, [readFileSync(file, "utf8"), as]);
  for (const type of ["dragenter", "dragover", "drop"]) await page.dispatchEvent("body", type, { dataTransfer: transfer });
}
