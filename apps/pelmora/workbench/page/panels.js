// The panels that ask when they come to the front: history, budget and drift. SPDX-License-Identifier: MIT
import { get } from "./api.js";
import { byId, h } from "./dom.js";
import { showBudget, showDrift, showHistory } from "./views.js";
import { guarded, open } from "./work.js";

let restore = null;
export function onRestore(act) { restore = act; }

const loads = { history: loadHistory, budget: () => loadBudget(), drift: () => loadDrift() };
export function loadPanel(name) { if (open.series) loads[name]?.(); }
export function loadShownPanel() {
  for (const name of Object.keys(loads)) if (!byId(`panel-${name}`).hidden) loadPanel(name);
}

async function loadHistory() {
  const found = await guarded(get("history", open.place));
  if (found) showHistory(byId("panel-history"), found.entries, restore);
}
async function loadBudget(at = {}) {
  if (!open.series.curve.length) return showBudget(byId("panel-budget"), null, loadBudget);
  const found = await guarded(get("budget", { ...open.place, ...at }));
  if (found) showBudget(byId("panel-budget"), found, loadBudget);
}
async function loadDrift(limit = null) {
  const root = byId("panel-drift"), { meter, series } = open.place;
  const known = open.meter.calibrations.filter((entry) => entry.series.some((other) => other.name === series && other.curvePoints > 1));
  if (known.length < 2) return root.replaceChildren(h("p", { class: "fine" }, "A drift takes two calibrations with a stored curve of this series."));
  const found = await guarded(get("drift", { meter, series, limit }));
  if (found) showDrift(root, found, limit, loadDrift);
}
