// What is open, and the errors of working with it. SPDX-License-Identifier: MIT
import { ApiError } from "./api.js";
import { notice, unnotice } from "./dom.js";

// place: {meter, calibration, series}; meter, series: the answers of api/meter and api/series; points: see series_points.js;
// preview: the last answer of api/fit (isOfChange: of what is not stored), trouble: why there is none; opened: counts what was opened, so that a late answer is
// not taken for one about the open series.
export const open = { place: {}, meter: null, series: null, points: null, draft: null, preview: null, trouble: null, fitting: false, opened: 0 };

let loadAgain = () => {};
// What the button does with which somebody takes over what was changed elsewhere.
export function onConflict(load) { loadAgain = load; }
const takeOver = () => [["Load it and keep my changes", () => loadAgain()]];

export function tellConflict() {
  notice("Somebody has changed this series since you opened it. Nothing of yours is stored and nothing was overwritten.", takeOver(), "conflict");
}
export function tellChange() { notice("This series was changed elsewhere.", takeOver(), "other"); }

export function failed(error) {
  if (!(error instanceof ApiError)) throw error;
  if (error.kind === "changed") return tellConflict();
  notice(error.text, [], error.kind === "gone" ? "gone" : error.text);
}
// The answer, or null once its error has been shown.
export async function guarded(promise) {
  try { const value = await promise; unnotice("gone"); return value; } catch (error) { failed(error); return null; }
}
