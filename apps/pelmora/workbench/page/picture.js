// The drawing: points and curves above, residuals below, on one canvas. SPDX-License-Identifier: MIT
import { h } from "./dom.js";
import { shapePath, Squares } from "./marks.js";
import { Axis, quantile, reader, ticks, tickText } from "./scale.js";

// In pixels at the usual size of letters.
const usual = { left: 64, right: 12, top: 8, bottom: 34, gap: 14 };
const shapes = ["circle", "square", "triangle", "diamond"];

// What is drawn: `data` (see Plot.set), `view` in x (null: everything), `selection`, `active` point, `drag` with its box.
export class Picture {
  constructor(root) {
    this.root = root;
    this.view = this.data = this.drag = null;
    this.active = -1;
    this.selection = new Set();
    this.canvas = h("canvas", { "aria-hidden": "true" });
    new ResizeObserver(() => this.draw()).observe(root);
    this.dark = matchMedia("(prefers-color-scheme: dark)");
    this.dark.addEventListener("change", () => this.draw());
  }

  colours() {
    const style = getComputedStyle(this.root), take = (name) => style.getPropertyValue(name).trim();
    const scheme = `${style.colorScheme} ${this.dark.matches}`;
    if (scheme === this.scheme) return this.colour;
    // light-dark() is only worked out where a property uses it.
    const probe = h("i", { class: "unseen" });
    this.root.append(probe);
    const colour = {};
    for (const name of ["ink", "soft", "line", "paper", "p1", "p2", "p3", "p4", "curve", "old", "ref", "bad", "band", "refband", "accent"]) {
      probe.style.color = take(`--${name}`);
      colour[name] = getComputedStyle(probe).color;
    }
    probe.remove();
    this.scheme = scheme;
    return this.colour = colour;
  }

  axes(width, height) {
    const { points, curve, stored } = this.data, { roshko, strouhal } = points;
    const xs = [], ys = [], n = roshko.length;
    let low = Infinity, high = -Infinity;
    const add = (x) => { if (x < low) low = x; if (x > high) high = x; };
    for (let i = 0; i < n; ++i) add(roshko[i]);
    for (const [x] of curve) add(x);
    if (!(low < high)) { low = (low === Infinity ? 1 : low) * 0.9; high = low * 1.3; }
    const full = new Axis(low, high, true), edge = (full.b - full.a) * 0.025;
    this.full = [full.from(full.a - edge), full.from(full.b + edge)];
    const view = this.view ?? this.full;
    const x = new Axis(view[0], view[1], full.isLog);
    const inside = (value) => value >= view[0] && value <= view[1];
    for (let i = 0; i < n; ++i) if (inside(roshko[i])) { xs.push(i); ys.push(strouhal[i]); }
    let bottom = Infinity, top = -Infinity;
    const addY = (y) => { if (Number.isFinite(y)) { if (y < bottom) bottom = y; if (y > top) top = y; } };
    ys.forEach(addY);
    for (const table of [curve, stored]) for (const [cx, cy] of table) if (inside(cx)) addY(cy);
    if (!(bottom < top)) { bottom = (Number.isFinite(bottom) ? bottom : 0) - 1; top = bottom + 2; }
    const spare = (top - bottom) * 0.06;
    const y = new Axis(bottom - spare, top + spare, false);
    const read = reader(this.base), residuals = [];
    for (const i of xs) {
      const at = read(roshko[i]);
      if (at && (points.state(i) === "used" || points.state(i) === "distrusted")) residuals.push(Math.abs(100 * (strouhal[i] / at - 1)));
    }
    const most = Math.max(1.6 * this.data.band, 1.25 * quantile(residuals, residuals.length > 500 ? 0.999 : 0.97), 1e-6);
    const r = new Axis(-most, most, false);
    const u = this.unit, margin = Object.fromEntries(Object.entries(usual).map(([side, size]) => [side, size * u]));
    const plotHeight = height - margin.top - margin.bottom - margin.gap;
    const main = { left: margin.left, right: width - margin.right, top: margin.top, bottom: margin.top + plotHeight * 0.64 };
    const rest = { left: main.left, right: main.right, top: main.bottom + margin.gap, bottom: height - margin.bottom };
    return { x, y, r, main, rest, read };
  }
  // The table that residuals are of: the new curve, else the stored one, else the reference curve.
  get base() {
    const { curve, stored, reference } = this.data;
    return curve.length ? curve : stored.length ? stored : reference.map(([x, y]) => [x, y]);
  }

  draw() {
    if (!this.data || this.waits) return;
    this.waits = true;
    requestAnimationFrame(() => { this.waits = false; this.paint(); });
  }

  paint() {
    const box = this.root.getBoundingClientRect(), ratio = window.devicePixelRatio || 1;
    const width = Math.floor(box.width), height = Math.floor(box.height);
    if (width < 60 || height < 60) return;
    if (this.canvas.width !== Math.round(width * ratio) || this.canvas.height !== Math.round(height * ratio)) {
      this.canvas.width = Math.round(width * ratio);
      this.canvas.height = Math.round(height * ratio);
      this.canvas.style.width = `${width}px`;
      this.canvas.style.height = `${height}px`;
    }
    const c = this.canvas.getContext("2d"), colour = this.colours();
    c.setTransform(ratio, 0, 0, ratio, 0, 0);
    c.clearRect(0, 0, width, height);
    this.unit = parseFloat(getComputedStyle(this.root).fontSize) / 15;
    c.font = `${12 * this.unit}px system-ui, sans-serif`;
    const at = this.geometry = this.axes(width, height);
    this.frame(c, colour, at);
    this.clipped(c, at.main, () => {
      this.bands(c, colour, at);
      this.curves(c, colour, at);
      this.points(c, colour, at, at.main, (i) => this.place(i, at.main));
    });
    this.clipped(c, at.rest, () => {
      this.residualCurves(c, colour, at);
      this.points(c, colour, at, at.rest, (i) => this.place(i, at.rest));
    });
    if (this.drag?.box) {
      const { x0, y0, x1, y1 } = this.drag;
      c.strokeStyle = colour.accent;
      c.setLineDash([5, 4]);
      c.strokeRect(Math.min(x0, x1), Math.min(y0, y1), Math.abs(x1 - x0), Math.abs(y1 - y0));
      c.setLineDash([]);
    }
  }

  clipped(c, area, body) {
    c.save();
    c.beginPath();
    c.rect(area.left, area.top, area.right - area.left, area.bottom - area.top);
    c.clip();
    body();
    c.restore();
  }

  frame(c, colour, { x, y, r, main, rest }) {
    const xs = ticks(x), sideways = (value) => main.left + x.share(value) * (main.right - main.left);
    c.strokeStyle = colour.line;
    c.lineWidth = 1;
    c.fillStyle = colour.soft;
    c.textAlign = "center";
    c.textBaseline = "top";
    for (const value of xs) {
      const at = Math.round(sideways(value)) + 0.5;
      for (const area of [main, rest]) { c.beginPath(); c.moveTo(at, area.top); c.lineTo(at, area.bottom); c.stroke(); }
      c.fillText(tickText(value, x.isLog && x.max / x.min >= 20 ? [value] : xs), at, rest.bottom + 4 * this.unit);
    }
    c.fillText("Roshko number", (main.left + main.right) / 2, rest.bottom + 18 * this.unit);
    c.textAlign = "right";
    c.textBaseline = "middle";
    for (const [axis, area, most] of [[y, main, 7], [r, rest, 5]]) {
      const list = ticks(axis, most);
      for (const value of list) {
        const at = Math.round(area.bottom - axis.share(value) * (area.bottom - area.top)) + 0.5;
        c.beginPath();
        c.moveTo(area.left, at);
        c.lineTo(area.right, at);
        c.stroke();
        if (at > area.top + 5 && at < area.bottom - 4) c.fillText(tickText(value, list), area.left - 6, at);
      }
      c.strokeRect(area.left + 0.5, area.top + 0.5, area.right - area.left, area.bottom - area.top);
    }
    c.save();
    c.textAlign = "center";
    c.translate(11 * this.unit, (main.top + main.bottom) / 2);
    c.rotate(-Math.PI / 2);
    c.fillText(this.data.isRatio ? "Rotor ratio" : "Strouhal number", 0, 0);
    c.restore();
    c.save();
    c.textAlign = "center";
    c.translate(11 * this.unit, (rest.top + rest.bottom) / 2);
    c.rotate(-Math.PI / 2);
    c.fillText("Residual, %", 0, 0);
    c.restore();
  }

  sideways(value) { const { x, main } = this.geometry; return main.left + x.share(value) * (main.right - main.left); }
  upwards(value, axis, area) { return area.bottom - axis.share(value) * (area.bottom - area.top); }

  line(c, table, area, axis, value = (row) => row[1]) {
    c.beginPath();
    let begun = false;
    for (const row of table) {
      const y = value(row);
      if (!Number.isFinite(y)) { begun = false; continue; }
      const px = this.sideways(row[0]), py = this.upwards(y, axis, area);
      if (begun) c.lineTo(px, py); else c.moveTo(px, py);
      begun = true;
    }
    c.stroke();
  }
  area(c, table, area, axis, low, high) {
    c.beginPath();
    table.forEach((row, i) => {
      const px = this.sideways(row[0]), py = this.upwards(high(row), axis, area);
      if (i) c.lineTo(px, py); else c.moveTo(px, py);
    });
    for (let i = table.length - 1; i >= 0; --i) c.lineTo(this.sideways(table[i][0]), this.upwards(low(table[i]), axis, area));
    c.closePath();
    c.fill();
  }

  bands(c, colour, { y, main }) {
    const { band, reference } = this.data, base = this.base;
    c.fillStyle = colour.band;
    if (base.length > 1) this.area(c, base, main, y, ([, v]) => v * (1 - band / 100), ([, v]) => v * (1 + band / 100));
    c.fillStyle = colour.refband;
    if (reference.length > 1) this.area(c, reference, main, y, ([, v, sd]) => v - 2 * sd, ([, v, sd]) => v + 2 * sd);
  }
  curves(c, colour, { y, main }) {
    const { curve, stored, reference, isNew } = this.data;
    c.lineWidth = 1.2;
    c.strokeStyle = colour.ref;
    this.line(c, reference, main, y);
    if (isNew) {
      c.setLineDash([6, 4]);
      c.strokeStyle = colour.old;
      c.lineWidth = 1.6;
      this.line(c, stored, main, y);
      c.setLineDash([]);
    }
    c.strokeStyle = colour.curve;
    c.lineWidth = 1.8;
    this.line(c, curve.length ? curve : stored, main, y);
  }
  residualCurves(c, colour, { r, rest, read }) {
    const { band, stored, reference, isNew } = this.data, base = this.base;
    c.fillStyle = colour.band;
    if (base.length > 1) this.area(c, base, rest, r, () => -band, () => band);
    c.fillStyle = colour.refband;
    const known = reference.filter(([x]) => read(x));
    const of = (value, x) => 100 * (value / read(x) - 1);
    if (known.length > 1) this.area(c, known, rest, r, ([x, v, sd]) => of(v - 2 * sd, x), ([x, v, sd]) => of(v + 2 * sd, x));
    c.strokeStyle = colour.ref;
    c.lineWidth = 1.2;
    this.line(c, known, rest, r, ([x, v]) => of(v, x));
    if (isNew) {
      c.setLineDash([6, 4]);
      c.strokeStyle = colour.old;
      this.line(c, stored.filter(([x]) => read(x)), rest, r, ([x, v]) => of(v, x));
      c.setLineDash([]);
    }
    c.strokeStyle = colour.curve;
    c.lineWidth = 1.2;
    if (base.length > 1) this.line(c, [base[0], base[base.length - 1]], rest, r, () => 0);
  }

  // The place of a point; beyond the residual scale, the edge of the scale.
  place(i, area) {
    const { points } = this.data, { x, y, r, main, read } = this.geometry, value = points.roshko[i];
    if (value < x.min || value > x.max) return null;
    const px = this.sideways(value);
    if (area === main) return [px, this.upwards(points.strouhal[i], y, area), false];
    const at = read(value);
    if (!at) return null;
    const residual = 100 * (points.strouhal[i] / at - 1), limit = r.max * 0.97;
    const shown = Math.max(-limit, Math.min(limit, residual));
    return [px, this.upwards(shown, r, area), shown !== residual];
  }

  points(c, colour, at, area, place) {
    const { points } = this.data, n = points.roshko.length, r = (n > 4000 ? 1.3 : n > 600 ? 2.4 : 4) * this.unit;
    const solid = [1, 2, 3, 4].map(() => new Path2D()), hollow = [1, 2, 3, 4].map(() => new Path2D());
    const cut = new Path2D(), marked = new Path2D(), chosen = new Path2D();
    const squares = n > 4000 ? new Squares(area, window.devicePixelRatio || 1, 2 * r) : null;
    for (let i = 0; i < n; ++i) {
      const p = place(i);
      if (!p) continue;
      const [px, py, isBeyond] = p, part = points.part[i] - 1, state = points.state(i), shape = shapes[part];
      if (state === "excluded") shapePath(hollow[part], shape, px, py, Math.max(r, 3.4));
      else if (state === "cut") { const k = Math.max(r * 0.8, 2); cut.moveTo(px - k, py - k); cut.lineTo(px + k, py + k); cut.moveTo(px + k, py - k); cut.lineTo(px - k, py + k); }
      else if (squares) squares.add(px, py, colour[`p${part + 1}`]);
      else shapePath(isBeyond ? hollow[part] : solid[part], isBeyond ? "triangle" : shape, px, py, r);
      if (state === "distrusted" || (state === "used" && points.isSuspect(i))) { marked.moveTo(px + r + 4, py); marked.arc(px, py, r + 4, 0, 2 * Math.PI); }
      if (this.selection.has(i)) { chosen.moveTo(px + r + 3, py); chosen.arc(px, py, r + 3, 0, 2 * Math.PI); }
    }
    squares?.paint(c);
    c.lineWidth = 1.2;
    c.strokeStyle = colour.soft;
    c.stroke(cut);
    for (let part = 0; part < 4; ++part) {
      c.fillStyle = c.strokeStyle = colour[`p${part + 1}`];
      c.fill(solid[part]);
      c.lineWidth = 1.6;
      c.stroke(hollow[part]);
    }
    c.strokeStyle = colour.bad;
    c.lineWidth = 1.5;
    c.stroke(marked);
    c.strokeStyle = colour.accent;
    c.lineWidth = 2.4;
    c.stroke(chosen);
    if (this.active >= 0) {
      const p = place(this.active);
      if (p) {
        c.strokeStyle = colour.ink;
        c.lineWidth = 1.5;
        c.strokeRect(p[0] - r - 6, p[1] - r - 6, 2 * r + 12, 2 * r + 12);
      }
    }
  }
}
