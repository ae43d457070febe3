// Numbers and axis ticks as the page writes them.
// SPDX-License-Identifier: MIT
function text(value, digits) {
  if (value === null || !isFinite(value)) return "-";
  if (value !== 0 && (Math.abs(value) < 1e-4 || Math.abs(value) >= 1e7)) return value.toExponential(digits - 1);
  var whole = value === 0 ? 1 : Math.floor(Math.log10(Math.abs(value))) + 1;
  return value.toFixed(Math.max(0, digits - whole));
}
function percent(value) {
  return value === null ? "beyond the curve" : (value > 0 ? "+" : "") + value.toFixed(3) + " %";
}
function niceStep(range, wanted) {
  var rough = range / wanted, power = Math.pow(10, Math.floor(Math.log10(rough))), digit = rough / power;
  return power * (digit <= 1 ? 1 : digit <= 2 ? 2 : digit <= 5 ? 5 : 10);
}
function linearTicks(low, high, wanted) {
  var step = niceStep(high - low, wanted), list = [];
  for (var n = Math.ceil(low / step); n * step <= high; ++n) list.push(n * step);
  return list;
}
// As the static picture has them.
function xTicks(log, low, high) {
  if (!log || high / low < Math.sqrt(10)) return linearTicks(low, high, 8);
  var list = [];
  for (var k = Math.floor(Math.log10(low)); k <= Math.ceil(Math.log10(high)); ++k)
    for (var d = 1; d < 10; ++d) {
      var value = d * Math.pow(10, k);
      if (value >= low && value <= high) list.push(value);
    }
  return list;
}
function hasLabel(log, low, high, value) {
  if (!log || high / low < Math.sqrt(10)) return true;
  var digit = Math.round(value / Math.pow(10, Math.floor(Math.log10(value) + 1e-9)));
  return digit === 1 || (high / low < 100 && (digit === 2 || digit === 5));
}
function tickText(value, step) {
  if (Math.abs(value) >= 1e6 || (value !== 0 && Math.abs(value) < 1e-4)) return String(+value.toPrecision(6));
  return value.toFixed(Math.max(0, -Math.floor(Math.log10(step) + 1e-9)));
}
