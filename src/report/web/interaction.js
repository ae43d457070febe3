// What pointer, keys and buttons do with a pair of plots.
// SPDX-License-Identifier: MIT
// A selection was drawn; the other plot of the pair shows the same one.
Pair.prototype.select = function (u) {
  var left = u.select.left, width = u.select.width, range = [u.posToVal(left, "x"), u.posToVal(left + width, "x")];
  if (width > 0) u.setSelect({ left: 0, top: 0, width: 0, height: 0 }, false);
  if (width > 0 && this.dragged === u) this.zoom(range);
};

Pair.prototype.zoom = function (range) {
  var low = Math.max(range[0], this.full[0]), high = Math.min(range[1], this.full[1]);
  if (!(high > low)) return;
  this.window = [low, high];
  this.plots.forEach(function (u) { u.setScale("x", { min: low, max: high }); });
};

Pair.prototype.zoomBy = function (factor) {
  var log = this.panels[0].log, to = log ? Math.log : Number, from = log ? Math.exp : Number;
  var a = to(this.window[0]), b = to(this.window[1]), middle = this.at >= 0 ? to(this.points[this.at].x) : (a + b) / 2;
  if (middle < a || middle > b) middle = (a + b) / 2;
  this.zoom(factor > 1 && (b - a) * factor >= to(this.full[1]) - to(this.full[0]) ? this.full
    : [from(middle - (b - a) * factor / 2), from(middle + (b - a) * factor / 2)]);
};

// The measured point nearest to the pointer.
Pair.prototype.hover = function (u, panel) {
  var left = u.cursor.left, top = u.cursor.top, best = -1, nearest = 24 * 24, self = this;
  if (left === undefined || left < 0 || !u.over.matches(":hover")) return;
  this.points.forEach(function (p, i) {
    var value = self.shown(panel, p);
    if (value === null || self.hidden[p.key] || p.key === "merged") return;
    var dx = u.valToPos(p.x, "x") - left, dy = u.valToPos(value, "y") - top, far = dx * dx + dy * dy;
    if (far < nearest) { nearest = far; best = i; }
  });
  if (best < 0) this.tell("Roshko " + text(u.posToVal(left, "x"), 5) + this.curveText(u.posToVal(left, "x")));
  else this.tellPoint(best);
  if (best !== this.at) { this.at = best; this.redraw(); }
};

// The curve read as a table, linearly; null beyond its ends, to nine digits.
Pair.prototype.curveAt = function (x) {
  var c = this.data.curve, last = c.x.length - 1;
  if (last < 1 || x < c.x[0] * (1 - 1e-8) || x > c.x[last] * (1 + 1e-8)) return null;
  for (var i = 1; i < last && x > c.x[i];) ++i;
  return c.y[i - 1] + (c.y[i] - c.y[i - 1]) * (x - c.x[i - 1]) / (c.x[i] - c.x[i - 1]);
};
Pair.prototype.curveText = function (x) {
  var y = this.curveAt(x);
  return y === null ? "" : ", curve " + text(y, 6);
};

Pair.prototype.tell = function (words) { this.read.textContent = words; };
Pair.prototype.tellPoint = function (i) {
  var p = this.points[i];
  this.tell(p.label + ": Roshko " + text(p.x, 6) + ", " + this.data.yName + " " + text(p.y, 7) +
    (this.data.curve.x.length ? this.curveText(p.x) + ", residual " + percent(p.p) : ""));
};

Pair.prototype.step = function (by) {
  for (var i = this.at + by; i >= 0 && i < this.points.length; i += by) {
    var p = this.points[i];
    if (this.hidden[p.key] || p.key === "merged" || p.x < this.window[0] || p.x > this.window[1]) continue;
    this.at = i;
    this.tellPoint(i);
    return this.redraw();
  }
};

Pair.prototype.controls = function () {
  var self = this, root = this.box.parentNode;
  root.querySelectorAll(".tools button").forEach(function (button) {
    button.addEventListener("click", function () {
      if (button.value === "reset") self.zoom(self.full); else self.zoomBy(+button.value);
    });
  });
  root.querySelectorAll(".legend .key").forEach(function (key) {
    var button = document.createElement("button"), name = key.dataset.key;
    button.type = "button";
    button.className = "key";
    button.setAttribute("aria-pressed", "true");
    while (key.firstChild) button.appendChild(key.firstChild);
    button.addEventListener("click", function () {
      self.hidden[name] = !self.hidden[name];
      button.setAttribute("aria-pressed", String(!self.hidden[name]));
      self.plots.forEach(function (u) {
        u.series.forEach(function (s, i) { if (s.key === name) u.setSeries(i, { show: !self.hidden[name] }); });
        u.redraw(true);
      });
    });
    key.parentNode.replaceChild(button, key);
  });
  var keys = {
    ArrowLeft: function () { self.step(-1); }, ArrowRight: function () { self.step(1); },
    "+": function () { self.zoomBy(0.5); }, "-": function () { self.zoomBy(2); }, Escape: function () { self.zoom(self.full); }
  };
  var live = this.box.querySelector(".live");
  live.addEventListener("keydown", function (event) {
    if (!keys[event.key] || event.ctrlKey || event.metaKey || event.altKey) return;
    event.preventDefault();
    keys[event.key]();
  });
  new ResizeObserver(function () {
    var sizes = self.size();
    self.plots.forEach(function (u, k) { if (u.width !== sizes[k].width || u.height !== sizes[k].height) u.setSize(sizes[k]); });
  }).observe(this.box);
  matchMedia("(prefers-color-scheme:dark)").addEventListener("change", function () { self.redraw(); });
};
