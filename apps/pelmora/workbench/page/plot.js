// The plot: its points can be reached by pointer, box and keyboard.
// SPDX-License-Identifier: MIT
import { h, number, signed } from "./dom.js";
import { Picture } from "./picture.js";
import { Axis, reader } from "./scale.js";

export class Plot extends Picture {
  // on: {select(indices, how), active(index), keys(event)}; how: "only", "toggle" or "add"
  constructor(root, on) {
    super(root);
    this.on = on;
    this.mode = "select";
    this.option = h("div", { role: "option", id: "point", class: "unseen", "aria-selected": "false" }, "No point yet: use the arrow keys");
    root.setAttribute("role", "listbox");
    root.setAttribute("aria-label", "Points of the plot, by rising Roshko number");
    root.setAttribute("aria-multiselectable", "true");
    root.tabIndex = 0;
    root.replaceChildren(this.canvas, this.option);
    root.addEventListener("pointerdown", (event) => this.down(event));
    root.addEventListener("pointermove", (event) => this.move(event));
    root.addEventListener("pointerup", (event) => this.up(event));
    root.addEventListener("pointercancel", () => { this.drag = null; this.draw(); });
    root.addEventListener("dblclick", () => this.whole());
    root.addEventListener("keydown", (event) => this.key(event));
  }

  // data: {points: {roshko, strouhal, part, state(i), isSuspect(i), label(i)}, curve, stored, reference, band, isRatio}
  // state(i): "used", "cut", "excluded", "outside range" or "distrusted"
  set(data, keepsView) {
    const n = data.points.roshko.length;
    if (data.points !== this.data?.points) {
      this.order = Array.from({ length: n }, (_, i) => i).sort((a, b) => data.points.roshko[a] - data.points.roshko[b]);
      this.rank = new Int32Array(n);
      this.order.forEach((index, rank) => { this.rank[index] = rank; });
    }
    this.data = data;
    if (!keepsView) this.view = null;
    if (this.active >= n) this.active = -1;
    this.draw();
  }
  select(selection) { this.selection = selection; this.describe(); this.draw(); }
  setActive(index) { this.active = index; this.describe(); this.draw(); }

  describe() {
    const i = this.active;
    if (i < 0 || !this.data) {
      this.root.removeAttribute("aria-activedescendant");
      return;
    }
    this.option.textContent = this.data.points.label(i);
    this.option.setAttribute("aria-selected", String(this.selection.has(i)));
    this.option.setAttribute("aria-posinset", String(this.rank[i] + 1));
    this.option.setAttribute("aria-setsize", String(this.order.length));
    this.root.setAttribute("aria-activedescendant", "point");
  }

  // The point next to a place on the screen, within some pixels.
  near(px, py, reach = 14) {
    if (!this.geometry) return -1;
    let best = -1, least = reach * reach;
    const { main, rest } = this.geometry, area = py <= main.bottom ? main : rest;
    for (let i = 0; i < this.data.points.roshko.length; ++i) {
      const p = this.place(i, area);
      if (!p) continue;
      const distance = (p[0] - px) ** 2 + (p[1] - py) ** 2;
      if (distance < least) { least = distance; best = i; }
    }
    return best;
  }
  at(event) { const box = this.root.getBoundingClientRect(); return [event.clientX - box.left, event.clientY - box.top]; }

  down(event) {
    if (event.button !== 0 || !this.data) return;
    const [x, y] = this.at(event);
    this.drag = { x0: x, y0: y, x1: x, y1: y, box: false };
    this.root.setPointerCapture(event.pointerId);
  }
  move(event) {
    if (!this.data) return;
    const [x, y] = this.at(event);
    if (!this.drag) {
      const i = this.near(x, y);
      if (i >= 0 && i !== this.active) this.on.active(i);
      return;
    }
    Object.assign(this.drag, { x1: x, y1: y });
    if (Math.hypot(x - this.drag.x0, y - this.drag.y0) > 6) this.drag.box = true;
    if (this.drag.box) this.draw();
  }
  up(event) {
    const drag = this.drag;
    this.drag = null;
    if (!drag || !this.geometry) return;
    const how = event.shiftKey ? "add" : event.ctrlKey || event.metaKey ? "toggle" : "only";
    if (!drag.box) {
      const i = this.near(drag.x0, drag.y0);
      if (i >= 0) { this.on.active(i); this.on.select([i], how === "only" ? "toggle" : how); }
      else if (how === "only") this.on.select([], "only");
      return;
    }
    const left = Math.min(drag.x0, drag.x1), right = Math.max(drag.x0, drag.x1);
    if (this.mode === "zoom") {
      const { x, main } = this.geometry, share = (px) => Math.min(1, Math.max(0, (px - main.left) / (main.right - main.left)));
      if (share(right) - share(left) > 0.004) this.view = [x.value(share(left)), x.value(share(right))];
      this.draw();
      return;
    }
    const low = Math.min(drag.y0, drag.y1), high = Math.max(drag.y0, drag.y1), found = [];
    const { main, rest } = this.geometry, area = (low + high) / 2 <= main.bottom ? main : rest;
    for (let i = 0; i < this.data.points.roshko.length; ++i) {
      const p = this.place(i, area);
      if (p && p[0] >= left && p[0] <= right && p[1] >= low && p[1] <= high) found.push(i);
    }
    this.on.select(found, how);
    this.draw();
  }

  zoom(factor) {
    if (!this.geometry) return;
    const { x } = this.geometry, full = new Axis(this.full[0], this.full[1], x.isLog);
    const middle = this.active >= 0 ? x.to(this.data.points.roshko[this.active]) : (x.a + x.b) / 2;
    const a = Math.max(full.a, middle - (middle - x.a) * factor), b = Math.min(full.b, middle + (x.b - middle) * factor);
    this.view = b - a >= (full.b - full.a) * 0.999 ? null : [x.from(a), x.from(b)];
    this.draw();
  }
  whole() { this.view = null; this.draw(); }
  show(i) {
    const value = this.data.points.roshko[i];
    if (this.view && (value < this.view[0] || value > this.view[1])) this.view = null;
  }

  key(event) {
    if (!this.data || event.altKey || event.ctrlKey || event.metaKey) return;
    const step = { ArrowRight: 1, ArrowUp: 1, ArrowLeft: -1, ArrowDown: -1, PageDown: -10, PageUp: 10 }[event.key];
    const n = this.order.length;
    if (step || event.key === "Home" || event.key === "End") {
      if (!n) return;
      event.preventDefault();
      const from = this.active < 0 ? (step > 0 ? -1 : n) : this.rank[this.active];
      const to = event.key === "Home" ? 0 : event.key === "End" ? n - 1 : Math.min(n - 1, Math.max(0, from + step));
      const index = this.order[to];
      this.show(index);
      if (event.shiftKey) this.on.select([index], "add");
      this.on.active(index);
      return;
    }
    if (event.key === " " && this.active >= 0) { event.preventDefault(); this.on.select([this.active], "toggle"); return; }
    if (event.key === "+") return this.zoom(0.5);
    if (event.key === "-") return this.zoom(2);
    if (event.key === "0") return this.whole();
    if (event.key === "Escape") { this.on.select([], "only"); this.whole(); return; }
    this.on.keys(event);
  }

  // What stands under the plot about a point.
  reading(i) {
    const { points } = this.data, at = reader(this.base)(points.roshko[i]);
    const residual = at ? `, residual ${signed(100 * (points.strouhal[i] / at - 1), 3)} %` : "";
    return `${points.label(i)}: Roshko ${number(points.roshko[i])}, ${this.data.isRatio ? "ratio" : "Strouhal"} ${number(points.strouhal[i], 7)}${residual}`;
  }
}
