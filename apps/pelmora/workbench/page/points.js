// The table of points: only the rows in sight are in the document. SPDX-License-Identifier: MIT
import { fill, h, number, signed } from "./dom.js";

// As the style has it: 2rem.
const rowHeight = 2 * parseFloat(getComputedStyle(document.documentElement).fontSize);
const columns = [["part", "Part"], ["number", "#"], ["roshko", "Roshko"], ["strouhal", "Strouhal"], ["residual", "Res. %"], ["sigmas", "Sigmas"], ["state", "State"]];

export class PointTable {
  // on: {select(indices, how), active(index)}
  constructor(root, on) {
    this.on = on;
    this.sort = { by: "sigmas", falls: true };
    this.rows = [];
    this.body = h("tbody");
    this.all = h("input", { type: "checkbox", "aria-label": "Select every point", onchange: () => this.on.select(this.all.checked ? this.rows : [], "only") });
    this.head = columns.map(([key, title]) => h("th", { scope: "col", class: key === "state" ? "" : "n", "aria-sort": "none" },
      h("button", { type: "button", onclick: () => this.sortBy(key) }, title)));
    this.scroll = h("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": "Points of the series" },
      h("table", { class: "points" }, h("thead", {}, h("tr", {}, h("th", { scope: "col" }, this.all), this.head)), this.body));
    this.scroll.addEventListener("scroll", () => this.draw());
    new ResizeObserver(() => this.draw()).observe(this.scroll);
    root.append(this.scroll);
  }
  set(points) {
    if (points !== this.points) {
      this.usual = Array.from(points.part, (_, i) => i).sort((a, b) => points.part[a] - points.part[b] || points.number[a] - points.number[b]);
    }
    this.points = points;
    this.order();
  }
  update() { this.order(); }

  sortBy(key) {
    this.sort = { by: key, falls: this.sort.by === key ? !this.sort.falls : key === "sigmas" || key === "residual" };
    this.order();
  }
  order() {
    if (!this.points) return;
    const { by, falls } = this.sort, points = this.points;
    const size = (value) => value === null || value === undefined || Number.isNaN(value) ? -1 : Math.abs(value);
    // What was left out stays in sight, above what might be left out next; what the merge cut comes last.
    const sigmas = (i) => ({ excluded: Infinity, cut: -2 })[points.state(i)] ?? size(points.sigmas(i));
    const key = { part: (i) => points.part[i], number: (i) => points.number[i], roshko: (i) => points.roshko[i], strouhal: (i) => points.strouhal[i],
      residual: (i) => size(points.residual(i)), sigmas, state: (i) => points.state(i) }[by];
    const keys = Array.from(points.part, (_, i) => key(i));
    // Equal ones keep the order of part and number.
    this.rows = this.usual.slice().sort((a, b) => {
      const order = keys[a] < keys[b] ? -1 : keys[a] > keys[b] ? 1 : 0;
      return falls ? -order : order;
    });
    this.head.forEach((cell, i) => cell.setAttribute("aria-sort", columns[i][0] !== by ? "none" : falls ? "descending" : "ascending"));
    this.draw();
  }

  draw() {
    if (!this.points) return;
    const focused = this.body.contains(document.activeElement) ? Number(document.activeElement.closest("tr")?.dataset.index) : -1;
    const first = Math.max(0, Math.floor(this.scroll.scrollTop / rowHeight) - 8);
    const last = Math.min(this.rows.length, first + Math.ceil((this.scroll.clientHeight || 600) / rowHeight) + 16);
    const space = (rows) => rows > 0 ? (() => { const row = h("tr", { "aria-hidden": "true" }, h("td", { colspan: "8" })); row.firstChild.style.height = `${rows * rowHeight}px`; row.firstChild.style.padding = "0"; return row; })() : null;
    fill(this.body, space(first), this.rows.slice(first, last).map((i) => this.row(i)), space(this.rows.length - last));
    this.all.checked = this.rows.length > 0 && this.points.selection.size === this.rows.length;
    this.all.indeterminate = this.points.selection.size > 0 && !this.all.checked;
    if (focused >= 0) this.body.querySelector(`tr[data-index="${focused}"] input`)?.focus({ preventScroll: true });
  }
  row(i) {
    const p = this.points, state = p.state(i), reason = p.reason(i), suspect = p.isSuspect(i) && state !== "excluded" && state !== "cut";
    return h("tr", { "data-index": String(i), class: `${i === p.active ? "active" : ""} ${state === "excluded" || state === "cut" || state === "distrusted" ? "out" : ""}`, onmouseenter: () => this.on.active(i, false) },
      h("td", {}, h("input", { type: "checkbox", ".checked": p.selection.has(i), "aria-label": p.label(i),
        onfocus: () => this.on.active(i, false), onchange: () => this.on.select([i], "toggle") })),
      h("td", { class: "n" }, String(p.part[i])), h("td", { class: "n" }, String(p.number[i])), h("td", { class: "n" }, number(p.roshko[i])),
      h("td", { class: "n" }, number(p.strouhal[i])), h("td", { class: "n" }, signed(p.residual(i), 3)),
      h("td", { class: suspect ? "n suspect" : "n" }, state === "excluded" && !p.hasSigmas(i) ? "–" : signed(p.sigmas(i), 1)),
      h("td", { title: reason ?? "" }, reason ? `out: ${reason}` : suspect && state === "used" ? "used, suspect" : state));
  }
  reveal(i) {
    const at = this.rows.indexOf(i) * rowHeight, view = this.scroll;
    if (at < view.scrollTop || at > view.scrollTop + view.clientHeight - 2 * rowHeight) view.scrollTop = Math.max(0, at - view.clientHeight / 2);
  }
}
