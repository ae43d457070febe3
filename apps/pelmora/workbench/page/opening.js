// Opening a meter and one of its series. SPDX-License-Identifier: MIT
import { ApiError, get } from "./api.js";
import { ask, byId, counted, h, unnotice } from "./dom.js";
import { Draft, keyOf } from "./draft.js";
import { fit } from "./fitting.js";
import { showCalibrations } from "./meters.js";
import { loadShownPanel } from "./panels.js";
import { pointsOf } from "./series_points.js";
import { activate } from "./selecting.js";
import { refresh } from "./showing.js";
import { guarded, open } from "./work.js";

export async function openMeter(serial, calibration, series) {
  performance.mark("open");
  const meter = await guarded(get("meter", { meter: serial }));
  if (!meter) return null;
  open.meter = meter;
  open.place = { meter: meter.serialNumber };
  const wanted = meter.calibrations.find((entry) => entry.meter.calibration === calibration) ?? meter.calibrations[0];
  const name = wanted?.series.find((entry) => entry.name === series)?.name ?? wanted?.series.find((entry) => entry.name === "Rotor A")?.name ?? wanted?.series[0]?.name;
  byId("bench").hidden = !name;
  byId("welcome").hidden = Boolean(name);
  if (name) await openSeries(wanted.meter.calibration, name, false);
  showSide();
  lookForWarnings(meter);
  return meter.serialNumber;
}
// The states of the meter's series, once something was stored.
export async function loadMeter() {
  const meter = await guarded(get("meter", { meter: open.place.meter }));
  if (!meter) return;
  open.meter = meter;
  showSide();
  lookForWarnings(meter);
}
function showSide() { showCalibrations(byId("calibrations"), open.meter, open.place, leaveForSeries); }

// Warnings need a fit of each series: they come one after the other, only of the newest calibration, and not where a fit
// takes seconds.
async function lookForWarnings(meter) {
  for (const series of meter.calibrations[0]?.series ?? []) {
    const isLong = series.rawPoints.reduce((a, b) => a + b, 0) > 5000;
    if (series.curveAge === "none" || isLong || open.meter !== meter) continue;
    try {
      const check = await get("check", { meter: meter.serialNumber, calibration: meter.calibrations[0].meter.calibration, series: series.name });
      series.warnings = check.warnings.length;
    } catch (error) { if (!(error instanceof ApiError)) throw error; }
  }
  if (open.meter === meter) showSide();
}

// True if nothing is lost by opening something else, or if the person says so.
export async function mayLeave() {
  return !open.draft?.isChanged || Boolean(await ask("Leave without storing?", h("p", {}, "Your changes to this series are not stored."), "Leave"));
}
async function leaveForSeries(calibration, series) {
  if (!await mayLeave()) return;
  await openSeries(calibration, series, false);
  showSide();
  // Where the list stands above the plot.
  if (matchMedia("(max-width: 48rem)").matches) byId("bench").scrollIntoView();
}

export async function openSeries(calibration, name, keepsView) {
  const number = ++open.opened, place = { meter: open.place.meter, calibration, series: name };
  document.body.dataset.details = "loading";
  const series = await guarded(get("series", place));
  if (!series || number !== open.opened) return;
  open.place = place;
  location.hash = new URLSearchParams(place).toString();
  const active = keepsView && open.points?.active >= 0 ? open.points.key(open.points.active) : null;
  open.series = series;
  open.draft = new Draft(series.excluded, series.settings);
  open.points = pointsOf(series, open);
  open.preview = open.trouble = null;
  unnotice("conflict");
  unnotice("other");
  byId("bench").hidden = false;
  byId("welcome").hidden = true;
  byId("title").textContent = `${name} of ${place.meter}, calibration ${calibration}`;
  byId("state").textContent = [series.equation, series.fittedAt ? `stored ${series.fittedAt.replace("T", " ").replace("Z", " UTC")}` : null, counted(series.points.part.length, "point")].filter(Boolean).join(" · ");
  document.title = `${name} of ${place.meter} – Pelmora workbench`;
  refresh(keepsView);
  // The same point may have another place in the list now.
  activate(active === null ? -1 : open.points.index.get(active) ?? -1, false);
  requestAnimationFrame(() => requestAnimationFrame(() => performance.mark("drawn")));
  fit();
  loadDetails(place, number);
  loadShownPanel();
}
export const openAgain = () => openSeries(open.place.calibration, open.place.series, true);

// Fluids, sigmas and what the merge cut come after the first picture.
async function loadDetails(place, number) {
  const listed = await guarded(get("points", place));
  if (!listed || number !== open.opened) return;
  for (const point of listed.points) {
    const i = open.points.index.get(keyOf(point.part, point.number));
    if (i !== undefined) open.points.details[i] = point;
  }
  refresh();
  document.body.dataset.details = "done";
}
