// The two plots of one series over one x axis: strouhal and deviation, or the shift alone.
// SPDX-License-Identifier: MIT
var style = getComputedStyle(document.documentElement);
var colour = function (name) { return style.getPropertyValue("--" + name).trim(); };
// In pixels of the screen, around 0,0; the same shapes as the static markers.
var shapes = {
  raw1: function (c) { c.arc(0, 0, 4, 0, 7); },
  raw2: function (c) { c.rect(-3.6, -3.6, 7.2, 7.2); },
  raw3: function (c) { c.moveTo(0, -4.6); c.lineTo(4.4, 3.4); c.lineTo(-4.4, 3.4); c.closePath(); },
  raw4: function (c) { c.moveTo(0, -4.9); c.lineTo(4.9, 0); c.lineTo(0, 4.9); c.lineTo(-4.9, 0); c.closePath(); },
  out: function (c) { c.rect(-4, -4, 8, 8); c.moveTo(-4, 0); c.lineTo(4, 0); c.moveTo(0, -4); c.lineTo(0, 4); },
  cut: function (c) { c.moveTo(-4, -4); c.lineTo(4, 4); c.moveTo(-4, 4); c.lineTo(4, -4); },
  dis: function (c) { c.arc(0, 0, 3, 0, 7); c.moveTo(6, 0); c.arc(0, 0, 6, 0, 7); },
  merged: function (c) { c.arc(0, 0, 1.5, 0, 7); }
};

// The predicted table of a section: Roshko, Strouhal, half widths of confidence and prediction. Which
// columns a table has differs; those of the curve name themselves.
function curveOf(section) {
  var c = { x: [], y: [], confidence: [], prediction: [] };
  section.querySelectorAll(".predicted").forEach(function (table) {
    var keys = [].map.call(table.tHead.rows[0].cells, function (cell) { return cell.dataset.key; });
    [].forEach.call(table.tBodies[0].rows, function (row) {
      Object.keys(c).forEach(function (name) {
        var cell = row.cells[keys.indexOf(name)], value = cell ? parseFloat(cell.textContent) : NaN;
        c[name].push(isFinite(value) ? value : null);
      });
    });
  });
  return c;
}

// Points that came packed: two bytes for each x and y, steps between the ends.
function unpacked(set) {
  if (!set.packed) return set;
  var bytes = atob(set.packed), step = function (at) { return (bytes.charCodeAt(at) + 256 * bytes.charCodeAt(at + 1)) / 65535; };
  var between = function (ends, share, log) {
    return log ? ends[0] * Math.pow(ends[1] / ends[0], share) : ends[0] + (ends[1] - ends[0]) * share;
  };
  set.x = []; set.y = [];
  for (var i = 0; i < bytes.length; i += 4) {
    set.x.push(between(set.xEnds, step(i), set.log));
    set.y.push(between(set.yEnds, step(i + 2), false));
  }
  return set;
}

// One series: two plots over one x axis.
function Pair(box, data) {
  this.box = box;
  this.data = data;
  this.hidden = {};
  data.curve = curveOf(document.getElementById(data.id));
  if (data.attempt) data.curve = { x: data.attempt.x, y: data.attempt.y, confidence: [], prediction: [] };
  this.read = box.parentNode.querySelector(".read");
  this.panels = [].map.call(box.querySelectorAll(".panel"), function (g) {
    var d = g.dataset;
    return { name: d.name, x: [+d.x0, +d.x1], y: [+d.y0, +d.y1], log: d.log === "1", top: +d.top, height: +d.height };
  });
  this.full = this.panels[0].x;
  this.window = this.full.slice();
  this.points = [];
  data.points.forEach(function (set) {
    if (!unpacked(set).x) {
      this.points.slice().forEach(function (p) {
        if (/^(raw|dis)/.test(p.key)) this.points.push(Object.assign({}, p, { key: set.key, label: set.label }));
      }, this);
      return;
    }
    set.x.forEach(function (x, i) {
      var y = set.y[i], on = this.curveAt(x);
      this.points.push({ key: set.key, label: set.label, x: x, y: y, p: on ? (y - on) / Math.abs(on) * 100 : null });
    }, this);
  }, this);
  this.points.sort(function (a, b) { return a.x - b.x; });
  this.at = -1;
  this.build();
  this.controls();
}

Pair.prototype.size = function () {
  var width = this.box.clientWidth, height = this.box.clientHeight, total = this.panels.length > 1 ? height : 0;
  var first = total ? Math.round(height * 0.62) : height;
  return [{ width: width, height: first }, { width: width, height: height - first }];
};

Pair.prototype.shown = function (panel, value) {
  return panel.name === "percent" ? value.p : value.y;
};

// The lines of a panel over the points of the curve: middle, band, confidence, prediction.
Pair.prototype.columns = function (panel) {
  var c = this.data.curve, inPercent = panel.name === "percent", band = this.data.band / 100;
  if (!c.x.length) return [this.full, [null, null]];
  var middle = inPercent ? c.y.map(function () { return 0; }) : c.y;
  var list = [c.x, middle];
  if (this.data.attempt) return list;
  [1, -1].forEach(function (sign) {
    list.push(c.y.map(function (y) { return inPercent ? sign * band * 100 : y * (1 + sign * band); }));
  });
  [c.confidence, c.prediction].forEach(function (half) {
    [1, -1].forEach(function (sign) {
      list.push(c.y.map(function (y, i) {
        if (half[i] === null) return null;
        return inPercent ? sign * half[i] / Math.abs(y) * 100 : y + sign * half[i];
      }));
    });
  });
  return list;
};

Pair.prototype.yRange = function (panel, columns) {
  if (this.window[0] === this.full[0] && this.window[1] === this.full[1]) return panel.y;
  var low = Infinity, high = -Infinity, self = this;
  function take(value) { if (value !== null && isFinite(value)) { low = Math.min(low, value); high = Math.max(high, value); } }
  function within(x) { return x >= self.window[0] && x <= self.window[1]; }
  this.points.forEach(function (p) {
    var isFar = panel.name === "percent" && /^(cut|out)/.test(p.key);
    if (within(p.x) && !self.hidden[p.key] && !isFar) take(self.shown(panel, p));
  });
  // A line may cross the window between two of its points.
  columns.slice(1, this.hidden.band ? 2 : 4).forEach(function (column) {
    column.forEach(function (value, i) {
      if (within(columns[0][i]) || within(columns[0][i + 1]) || within(columns[0][i - 1])) take(value);
    });
  });
  if (!(high >= low)) return panel.y;
  var margin = (high - low || Math.abs(high) / 10 || 1) * 0.05;
  return [low - margin, high + margin];
};

Pair.prototype.build = function () {
  var self = this, live = this.box.querySelector(".live"), sizes = this.size();
  this.plots = this.panels.map(function (panel, k) {
    var isLast = k === self.panels.length - 1, columns = self.columns(panel);
    var line = function (key, dash) {
      return {
        scale: "y", width: 1.5, dash: dash, points: { show: false },
        stroke: function () { return colour(key === "band" ? "band" : "ink"); }, spanGaps: true, key: key
      };
    };
    var edge = function (key) { return { scale: "y", width: 0, points: { show: false }, spanGaps: true, key: key }; };
    var list = [{}, self.data.attempt ? line("attempt", [2, 3]) : line("curve")];
    if (columns.length > 2) list.push(line("band", [6, 4]), line("band", [6, 4]), edge("conf"), edge("conf"), edge("pred"), edge("pred"));
    var fill = function (share) { return function () { return colour("ink") + share; }; };
    var axis = function (more) {
      return Object.assign({
        stroke: function () { return colour("ink"); }, font: "12px system-ui,sans-serif", labelFont: "12px system-ui,sans-serif",
        labelSize: 20, grid: { stroke: function () { return colour("grid"); }, width: 1 },
        ticks: { stroke: function () { return colour("axis"); }, width: 1, size: 5 },
        border: { show: true, stroke: function () { return colour("axis"); }, width: 1 }
      }, more);
    };
    var labelled = function (u, splits) {
      return splits.map(function (v) { return hasLabel(panel.log, u.scales.x.min, u.scales.x.max, v) ? v : null; });
    };
    var x = axis({
      splits: function (u, i, low, high) { return xTicks(panel.log, low, high); },
      values: function (u, splits) {
        var low = u.scales.x.min, high = u.scales.x.max, linear = !panel.log || high / low < Math.sqrt(10);
        return splits.map(function (v) {
          return v === null || !isLast ? "" : linear ? tickText(v, niceStep(high - low, 8)) : String(+v.toPrecision(6));
        });
      },
      filter: labelled, size: isLast ? 30 : 12
    });
    if (isLast) x.label = self.data.xLabel;
    x.grid.filter = labelled;
    x.ticks.filter = function (u, splits) { return splits; };
    var y = axis({
      scale: "y", size: 58, label: self.data.yLabels[k],
      splits: function (u, i, low, high) { return linearTicks(low, high, Math.max(4, u.bbox.height / devicePixelRatio / 45)); },
      values: function (u, splits) {
        var step = splits.length > 1 ? splits[1] - splits[0] : 1;
        return splits.map(function (v) { return tickText(v, step); });
      }
    });
    return new uPlot({
      width: sizes[k].width, height: sizes[k].height, padding: [10, 12, 0, 0], legend: { show: false },
      scales: {
        x: { time: false, distr: panel.log ? 3 : 1, log: 10, range: function () { return self.window; } },
        y: { range: function () { return self.yRange(panel, columns); } }
      },
      axes: [x, y], series: list,
      bands: columns.length > 2 ? [{ series: [6, 7], fill: fill("17") }, { series: [4, 5], fill: fill("38") }] : [],
      cursor: {
        drag: { x: true, y: false, dist: 6, setScale: false }, points: { show: false }, sync: { key: self.data.id },
        bind: { dblclick: function () { return function () { self.zoom(self.full); return null; }; } }
      },
      hooks: {
        draw: [function (u) { self.draw(u, panel); }],
        ready: [function (u) { u.over.addEventListener("mousedown", function () { self.dragged = u; }); }],
        setSelect: [function (u) { self.select(u); }],
        setCursor: [function (u) { self.hover(u, panel); }]
      }
    }, columns, live);
  });
};

Pair.prototype.draw = function (u, panel) {
  var c = u.ctx, ratio = devicePixelRatio, self = this;
  c.save();
  c.beginPath();
  c.rect(u.bbox.left - 6 * ratio, u.bbox.top, u.bbox.width + 12 * ratio, u.bbox.height);
  c.clip();
  c.setLineDash([]);  // of the last line that was drawn
  this.points.forEach(function (p, i) {
    var value = self.shown(panel, p);
    if (value === null || self.hidden[p.key] || p.x < self.window[0] || p.x > self.window[1]) return;
    var isMerged = p.key === "merged";
    c.save();
    c.translate(u.valToPos(p.x, "x", true), u.valToPos(value, "y", true));
    c.scale(ratio, ratio);
    c.beginPath();
    (shapes[p.key] || shapes[p.key.slice(0, 3)])(c);
    c.lineWidth = 1.6;
    c.strokeStyle = c.fillStyle = isMerged ? colour("ink") : colour("p" + p.key.slice(-1));
    if (isMerged) c.fill(); else c.stroke();
    if (i === self.at) {
      c.beginPath();
      c.arc(0, 0, 8, 0, 7);
      c.lineWidth = 2;
      c.strokeStyle = colour("ink");
      c.stroke();
    }
    c.restore();
  });
  c.restore();
};

Pair.prototype.redraw = function () { this.plots.forEach(function (u) { u.redraw(false); }); };
