// Axes and tables, without a document. SPDX-License-Identifier: MIT

// A table ends at its outermost point, but for rounding.
const rounding = 1e-6;

// Where tables are read, as a flow computer does: linearly between their points; undefined beyond the ends.
export function reader(table) {
  return (x) => {
    const n = table.length;
    const spare = rounding * Math.abs(x);
    if (n < 2 || x < table[0][0] - spare || x > table[n - 1][0] + spare) return undefined;
    let low = 0, high = n - 1;
    while (high - low > 1) {
      const middle = (low + high) >> 1;
      if (table[middle][0] <= x) low = middle; else high = middle;
    }
    const [x0, y0] = table[low], [x1, y1] = table[high];
    return x1 === x0 ? y0 : y0 + (y1 - y0) * (x - x0) / (x1 - x0);
  };
}

export class Axis {
  constructor(min, max, isLog) { this.isLog = isLog && min > 0; this.set(min, max); }
  set(min, max) { this.min = min; this.max = max; this.a = this.to(min); this.b = this.to(max); }
  to(value) { return this.isLog ? Math.log(value) : value; }
  from(value) { return this.isLog ? Math.exp(value) : value; }
  // 0 at min, 1 at max.
  share(value) { return this.b === this.a ? 0.5 : (this.to(value) - this.a) / (this.b - this.a); }
  value(share) { return this.from(this.a + share * (this.b - this.a)); }
}

export function ticks(axis, most = 8) {
  const { min, max } = axis;
  if (axis.isLog && max / min >= 20) {
    const decades = Math.log10(max / min), list = [];
    const steps = decades > most ? [1] : decades > 2.5 ? [1, 3] : [1, 2, 5];
    for (let e = Math.floor(Math.log10(min)); e <= Math.ceil(Math.log10(max)); ++e) {
      for (const step of steps) {
        const value = step * 10 ** e;
        if (value >= min && value <= max) list.push(value);
      }
    }
    return list;
  }
  const rough = (max - min) / most, unit = 10 ** Math.floor(Math.log10(rough));
  const step = [1, 2, 5, 10].map((m) => m * unit).find((size) => size >= rough) ?? unit;
  const list = [];
  for (let i = Math.ceil(min / step); i * step <= max + step * 1e-9; ++i) list.push(i * step);
  return list;
}

export function tickText(value, all) {
  if (value === 0) return "0";
  const gap = all.length > 1 ? Math.min(...all.slice(1).map((v, i) => v - all[i])) : Math.abs(value);
  const decimals = Math.max(0, Math.min(9, Math.ceil(-Math.log10(gap) - 1e-9)));
  return Math.abs(value) >= 1e6 || Math.abs(value) < 1e-5 ? value.toExponential() : String(Number(value.toFixed(decimals)));
}

// The share `part` of the values in order, from 0 to 1.
export function quantile(values, part) {
  if (!values.length) return 0;
  const sorted = Float64Array.from(values).sort();
  return sorted[Math.min(sorted.length - 1, Math.floor(part * sorted.length))];
}
