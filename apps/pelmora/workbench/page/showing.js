// Plot, table, panels and bar show what is open. SPDX-License-Identifier: MIT
import { byId, counted } from "./dom.js";
import { keyOf } from "./draft.js";
import { showLegend } from "./legend.js";
import { Plot } from "./plot.js";
import { PointTable } from "./points.js";
import { reader } from "./scale.js";
import { SettingsForm, titleOf } from "./settings.js";
import { showRanking, showSigning, showVerdict } from "./views.js";
import { open } from "./work.js";

export const shown = { plot: null, table: null, settings: null };
let act = null;

// actions: {select(indices, how), active(index, reveals), keys(event), settings(settings), sign(name, remark), keep(href)}
export function makeShown(actions) {
  act = actions;
  shown.plot = new Plot(byId("plot"), { select: act.select, active: (i) => act.active(i, true), keys: act.keys });
  shown.table = new PointTable(byId("panel-points"), { select: act.select, active: act.active });
  shown.settings = new SettingsForm(byId("panel-settings"), act.settings);
}

// The curve to draw. It is new where it is not the stored one, by more than rounding.
function curveOf() {
  const stored = open.series.curve, preview = open.preview;
  const curve = preview?.curve ?? [];
  const isNew = curve.length > 0 && (preview.isOfChange || !stored.length || (preview.difference && Math.abs(preview.difference.largest.percent) > 1e-4));
  return { stored, curve: isNew || !stored.length ? curve : stored, isNew: Boolean(isNew) };
}

export function refresh(keepsView = true) {
  const { series, points, draft, preview } = open, { stored, curve, isNew } = curveOf();
  const reference = preview?.referenceCurve ?? [];
  if (points.preview !== preview) {
    points.preview = preview;
    points.cut = preview ? new Set(preview.cut.map((point) => keyOf(point.part, point.number))) : null;
    points.judged = new Map((preview?.judged ?? []).map((point) => [keyOf(point.part, point.number), point]));
  }
  points.read = reader(curve.length ? curve : stored.length ? stored : reference.map(([x, y]) => [x, y]));
  shown.plot.set({ points, curve, stored, isNew: isNew && stored.length > 0, reference, band: draft.settings.band, isRatio: draft.settings.ratio }, keepsView);
  shown.plot.select(points.selection);
  shown.table.set(points);
  shown.settings.set(draft.settings);
  byId("verdict").setAttribute("aria-busy", String(open.fitting));
  showVerdict(byId("verdict"), { preview, isNew: isNew && preview.isOfChange, trouble: open.trouble, isOld: draft.isChanged ? null : series.ageWarning });
  showEquations();
  showSigning(byId("panel-sign"), { series, place: open.place, isChanged: draft.isChanged, sign: act.sign, keep: act.keep });
  showBar();
  showLegend(byId("legend"), open, isNew && stored.length > 0);
  showSelection();
}

// As soon as somebody looks at it: it is the longest of the panels.
export function showEquations() {
  if (open.draft && !byId("panel-equations").hidden) showRanking(byId("panel-equations"), open.preview, open.draft.settings, act.settings);
}

// What is not stored, and what can be done about it.
export function showBar() {
  const { draft, series } = open, { out, back, settings } = draft.changes;
  const words = [out.length ? `${counted(out.length, "point")} left out` : null, back.length ? `${counted(back.length, "point")} taken back` : null,
    settings.length ? `${[...new Set(settings.map(titleOf))].join(", ")} changed` : null].filter(Boolean);
  const isFirst = !series.curve.length;
  byId("changes").textContent = words.length ? `Not stored: ${words.join("; ")}` : isFirst ? "No curve is stored yet" : series.curveAge === "outdated" ? "The stored curve is older than its points" : "Everything is stored";
  byId("undo").disabled = !draft.canUndo;
  byId("redo").disabled = !draft.canRedo;
  byId("discard").disabled = !draft.isChanged;
  // Without a curve, points can be left out and taken back all the same.
  const hasCurve = open.preview?.curve.length > 0;
  const canStore = !open.fitting && (hasCurve ? draft.isChanged || isFirst || series.curveAge === "outdated" : out.length + back.length > 0);
  byId("store").disabled = !canStore;
  byId("derivedBox").hidden = !(out.length || back.length);
}

// The selected points or, while the plot has the focus, the active one.
export function selected() {
  const { points } = open;
  const chosen = points.selection.size ? [...points.selection] : points.active >= 0 && document.activeElement === byId("plot") ? [points.active] : [];
  return chosen.map((i) => ({ part: points.part[i], number: points.number[i], isOut: open.draft.excluded.has(points.key(i)) }));
}
export function showSelection() {
  const chosen = selected(), out = chosen.filter((point) => point.isOut).length;
  byId("leave").disabled = chosen.length === out;
  byId("back").disabled = out === 0;
  byId("chosen").textContent = open.points.selection.size ? `${counted(open.points.selection.size, "point")} selected` : "Nothing selected";
}
