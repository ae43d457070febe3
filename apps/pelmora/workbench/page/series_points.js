// The points of a series as plot and table read them: what is stored, with the draft and the last fit on top.
// SPDX-License-Identifier: MIT
import { keyOf } from "./draft.js";

// series: the answer of api/series; open.draft: what is not stored. Later come details[i] (api/points), judged and cut (of
// a fit), and read (the curve that residuals are of).
export function pointsOf(series, open) {
  const { part, number: numbers, roshko, strouhal } = series.points, n = part.length;
  const index = new Map();
  for (let i = 0; i < n; ++i) index.set(keyOf(part[i], numbers[i]), i);
  const points = { part, number: numbers, roshko, strouhal, index, details: new Array(n), preview: null, judged: new Map(), selection: new Set(), active: -1, cut: null, read: () => undefined };
  points.key = (i) => keyOf(part[i], numbers[i]);
  points.state = (i) => {
    const key = points.key(i);
    if (open.draft.excluded.has(key)) return "excluded";
    if (points.cut) {
      if (points.cut.has(key)) return "cut";
      if (isOutside(open.draft.settings.fitRange, roshko[i])) return "outside range";
      return points.judged.get(key)?.distrusted ? "distrusted" : "used";
    }
    const state = points.details[i]?.state;
    return state && state !== "excluded" ? state : "used";
  };
  points.residual = (i) => { const at = points.read(roshko[i]); return at ? 100 * (strouhal[i] / at - 1) : null; };
  points.hasSigmas = (i) => points.judged.has(points.key(i));
  points.sigmas = (i) => points.judged.get(points.key(i))?.sigmas ?? points.details[i]?.sigmas ?? null;
  // It contradicts the others: its state is "distrusted" if the curve was fitted without it, "used" otherwise.
  points.isSuspect = (i) => points.judged.size ? points.judged.get(points.key(i))?.distrusted === true : points.details[i]?.suspect === true;
  points.reason = (i) => open.draft.excluded.get(points.key(i))?.reason ?? null;
  points.fluid = (i) => points.details[i]?.fluid ?? "";
  points.label = (i) => `Point ${numbers[i]} of part ${part[i]}${points.fluid(i) ? `, ${points.fluid(i)}` : ""}, ${points.state(i)}${points.reason(i) ? `: ${points.reason(i)}` : ""}${points.isSuspect(i) && points.state(i) === "used" ? ", suspect" : ""}`;
  return points;
}
function isOutside({ min, max }, roshko) {
  return (min !== null && roshko < min) || (max !== null && roshko > max);
}
