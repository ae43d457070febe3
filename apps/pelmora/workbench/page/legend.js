// The legend of the plot. SPDX-License-Identifier: MIT
import { fill, h, number, s } from "./dom.js";

const keyOfShape = (shape, colour, isHollow) => {
  const form = { circle: s("circle", { cx: 10, cy: 6, r: 4 }), square: s("rect", { x: 6, y: 2, width: 8, height: 8 }), triangle: s("path", { d: "M10 1L15 10H5Z" }), diamond: s("path", { d: "M10 0L15 6L10 12L5 6Z" }),
    line: s("path", { d: "M1 6H19" }), dash: s("path", { d: "M1 6H19", "stroke-dasharray": "5 3" }), area: s("rect", { x: 1, y: 1, width: 18, height: 10 }), cross: s("path", { d: "M7 3L13 9M13 3L7 9" }) }[shape];
  form.setAttribute("fill", isHollow || ["line", "dash", "cross"].includes(shape) ? "none" : `var(--${colour})`);
  form.setAttribute("stroke", shape === "area" ? "var(--strong)" : `var(--${colour})`);
  form.setAttribute("stroke-width", shape === "area" ? "0.5" : "1.6");
  return s("svg", { viewBox: "0 0 20 12", "aria-hidden": "true" }, form);
};
export function showLegend(root, { points, preview, series, draft }, hasOld) {
  const present = new Set(points.part), shapes = ["circle", "square", "triangle", "diamond"];
  const item = (key, text) => h("li", {}, key, text);
  const fluidOf = (part) => { const i = points.part.findIndex((p, k) => p === part && points.details[k]?.fluid); return i < 0 ? "" : `, ${points.fluid(i)}`; };
  // Without a fit, those that the stored merge has cut.
  const hasCut = points.cut ? points.cut.size > 0 : points.details.some((point) => point?.state === "cut");
  fill(root, [...present].sort().map((part) => item(keyOfShape(shapes[part - 1], `p${part}`), `Part ${part}${fluidOf(part)}`)),
    draft.excluded.size ? item(keyOfShape("circle", "ink", true), "Left out") : null, hasCut ? item(keyOfShape("cross", "soft"), "Cut") : null,
    preview?.curve.length || series.curve.length ? item(keyOfShape("line", "curve"), hasOld ? "New curve" : "Curve") : null, hasOld ? item(keyOfShape("dash", "old"), "Stored") : null,
    item(keyOfShape("area", "band"), `Band ${number(draft.settings.band, 4)} %`), preview?.referenceCurve.length ? item(keyOfShape("area", "refband"), "Reference ± 2σ") : null);
}
