// The list of meters, searched while one types, and the series of the chosen one. SPDX-License-Identifier: MIT
import { get } from "./api.js";
import { byId, counted, fill, h } from "./dom.js";
import { seriesTags } from "./views.js";

const page = 60;

export class MeterList {
  constructor(choose, failed) {
    this.choose = choose;
    this.failed = failed;
    this.asked = 0;
    this.search = byId("search");
    this.list = byId("meters");
    this.search.addEventListener("input", () => this.find());
    this.search.addEventListener("keydown", (event) => {
      if (event.key === "ArrowDown") { event.preventDefault(); this.list.querySelector("button")?.focus(); }
      if (event.key === "Enter") this.list.querySelector("button")?.click();
    });
    this.list.addEventListener("keydown", (event) => {
      const step = { ArrowDown: "nextElementSibling", ArrowUp: "previousElementSibling" }[event.key];
      if (!step) return;
      event.preventDefault();
      const next = document.activeElement.parentElement?.[step]?.querySelector("button");
      if (next) next.focus(); else if (event.key === "ArrowUp") this.search.focus();
    });
    this.list.addEventListener("scroll", () => { if (this.list.scrollTop + this.list.clientHeight > this.list.scrollHeight - 80) this.more(); });
  }
  async find() {
    const number = ++this.asked, search = this.search.value.trim();
    try {
      const found = await get("meters", { search, from: 0, limit: page });
      if (number !== this.asked) return;
      this.shown = found.serialNumbers;
      this.matching = found.matching;
      byId("found").textContent = search ? `${found.matching.toLocaleString("en")} of ${counted(found.total, "meter")}` : counted(found.total, "meter");
      fill(this.list, this.shown.map((serial) => this.row(serial)));
      this.list.scrollTop = 0;
    } catch (error) { this.failed(error); }
  }
  async more() {
    if (this.waits || this.shown.length >= this.matching) return;
    this.waits = true;
    const number = this.asked;
    try {
      const found = await get("meters", { search: this.search.value.trim(), from: this.shown.length, limit: page });
      if (number === this.asked) {
        this.shown.push(...found.serialNumbers);
        this.list.append(...found.serialNumbers.map((serial) => this.row(serial)));
      }
    } catch (error) { this.failed(error); } finally { this.waits = false; }
  }
  row(serial) {
    return h("li", {}, h("button", { type: "button", "aria-current": String(serial === this.chosen), onclick: () => this.choose(serial) }, serial));
  }
  mark(serial) {
    this.chosen = serial;
    for (const button of this.list.querySelectorAll("button")) button.setAttribute("aria-current", String(button.textContent === serial));
  }
}

export function showCalibrations(root, meter, place, choose) {
  fill(root, meter.calibrations.map((entry) => [h("h2", {}, `Calibration ${entry.meter.calibration}`),
    h("p", { class: "fine" }, entry.setups.map((run) => `${run.fluid}${run.date ? ` (${run.date})` : ""}`).join(", ")),
    h("ul", { "aria-label": `Series of calibration ${entry.meter.calibration}` }, entry.series.map((series) => h("li", {},
      h("button", { type: "button", "aria-current": String(place.calibration === entry.meter.calibration && place.series === series.name),
        onclick: () => choose(entry.meter.calibration, series.name) }, series.name, seriesTags(series)))))]));
}
