// What a fit says, in words and tables; drift; signatures. SPDX-License-Identifier: MIT
import { address } from "./api.js";
import { counted, fill, h, moment, number, s, sentence, signed } from "./dom.js";
import { flowTableForm } from "./flow_table.js";
import { Axis, ticks, tickText } from "./scale.js";

// Under the plot: the curve, how it differs from the stored one, warnings and what to do.
export function showVerdict(root, { preview, isNew, trouble, isOld }) {
  if (trouble) return fill(root, h("p", { class: "big bad" }, trouble));
  if (!preview) return fill(root, h("p", { class: "fine" }, "Fitting …"));
  const chosen = preview.ranking.find((entry) => entry.verdict === "chosen");
  const head = chosen
    ? h("p", { class: "big" }, h("b", {}, chosen.name), chosen.worstResidualPercent === null ? "" : `, worst residual ${signed(chosen.worstResidualPercent, 3)} %`,
      isNew ? "; not stored" : "")
    : h("p", { class: "big bad" }, `No curve: ${preview.reason}`);
  const change = preview.difference;
  const difference = isNew && change
    ? h("p", { id: "difference" }, Math.abs(change.largest.percent) < 5e-5 ? "The new curve is the stored one, to 0.0001 %." : `New against stored: ${signed(change.largest.percent, 4)} % at Roshko ${number(change.largest.roshko, 4)} at most, ${signed(change.meanPercent, 4)} % on average.`)
    : null;
  const old = isOld ? h("p", { class: "bad" }, sentence(isOld)) : null;
  const warnings = preview.warnings.length ? h("ul", { "aria-label": "Warnings" }, preview.warnings.map((warning) => h("li", {}, warning.text))) : null;
  const advice = preview.advice.length ? h("details", {}, h("summary", {}, "What would help"), h("ul", {}, preview.advice.map((step) => h("li", {}, step.text)))) : null;
  fill(root, head, difference, old, warnings, advice);
}

export function showRanking(root, preview, settings, change) {
  if (!preview) return fill(root, h("p", { class: "fine" }, "Fitting …"));
  const left = new Set(settings.without ?? []);
  const toggle = (name, isIn) => change({ ...settings, without: isIn ? [...left].filter((other) => other !== name) : [...left, name] });
  const gone = [...left].filter((name) => !preview.ranking.some((entry) => entry.name === name));
  const box = (name, isIn) => h("input", { type: "checkbox", ".checked": isIn, "aria-label": `Try ${name}`, onchange: (event) => toggle(name, event.target.checked) });
  fill(root, h("p", { class: "fine" }, "Best first. Clear a box to fit without that equation."),
    h("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": "Equations from best to worst" }, h("table", {}, h("thead", {}, h("tr", {},
      ["Try", "#", "Equation", "Verdict", "Worst %", "Adj. R²", "AICc"].map((title, i) => h("th", { scope: "col", class: i > 3 || i === 1 ? "n" : "" }, title)))),
    h("tbody", {}, preview.ranking.map((entry) => [h("tr", { class: `${entry.verdict === "chosen" ? "best" : ""} ${entry.why ? "tied" : ""}` }, h("td", {}, box(entry.name, !left.has(entry.name))),
      h("td", { class: "n" }, String(entry.rank)), h("td", { title: entry.expression }, entry.name), h("td", {}, entry.verdictText),
      h("td", { class: "n" }, signed(entry.worstResidualPercent, 3)), h("td", { class: "n" }, entry.adjustedR2 === null ? "–" : entry.adjustedR2.toFixed(6)),
      h("td", { class: "n" }, entry.aicc === null ? "–" : entry.aicc.toFixed(1).replace("-", "−"))),
    entry.why ? h("tr", {}, h("td"), h("td"), h("td", { colspan: "5", class: "fine" }, entry.why)) : null]),
    gone.map((name) => h("tr", { class: "out" }, h("td", {}, box(name, false)), h("td"), h("td", {}, name), h("td", {}, "left out"), h("td"), h("td"), h("td")))))));
}

const rowWords = { meter: ["meter"], series: ["series", "series"], curve: ["point of the curve", "points of the curve"], merged: ["merged point"], reports: ["report"], fitSettings: ["set of settings", "sets of settings"] };
function rowsText([name, count]) {
  const raw = /^(raw|excluded)([1-4])$/.exec(name);
  if (raw) return counted(count, `${raw[1] === "raw" ? "" : "excluded "}point of part ${raw[2]}`, `${raw[1] === "raw" ? "" : "excluded "}points of part ${raw[2]}`);
  return rowWords[name] ? counted(count, ...rowWords[name]) : `${count} ${name}`;
}
export function showHistory(root, entries, restore) {
  if (!entries.length) return fill(root, h("p", { class: "fine" }, "Nothing of this series has been replaced yet."));
  fill(root, h("p", { class: "fine" }, "What changes have replaced, newest first. Restoring keeps in turn what it replaces."),
    h("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": "History" }, h("table", {}, h("thead", {}, h("tr", {},
      ["Before", "When", "By", "Rows", "Bring back"].map((title) => h("th", { scope: "col" }, title)))),
    h("tbody", {}, entries.map((entry) => h("tr", {}, h("td", {}, entry.command), h("td", {}, moment(entry.changedAt)), h("td", {}, entry.user || "–"),
      h("td", {}, Object.entries(entry.rows).map(rowsText).join(", ")),
      h("td", {}, h("button", { type: "button", "aria-label": `Restore entry ${entry.entry}, as before ${entry.command} of ${moment(entry.changedAt)}`, onclick: () => restore(entry) }, "Restore"))))))));
}

// again({roshko, viscosity}): asks for another place.
export function showBudget(root, found, again) {
  if (!found) return fill(root, h("p", { class: "fine" }, "Store a curve first: the budget is that of the stored curve."));
  const roshko = h("input", { type: "number", id: "budget-roshko", step: "any", min: "0", value: String(Number(found.roshko.toPrecision(6))) });
  const viscosity = h("input", { type: "number", id: "budget-viscosity", step: "any", min: "0", placeholder: "optional" });
  const form = h("form", { onsubmit: (event) => { event.preventDefault(); again({ roshko: roshko.value || null, viscosity: viscosity.value || null }); } },
    h("div", { class: "field" }, h("label", { for: "budget-roshko" }, "At Roshko"), roshko, h("button", { type: "submit" }, "Show")),
    h("div", { class: "field" }, h("label", { for: "budget-viscosity" }, "Viscosity, cSt"), viscosity));
  if (!found.budget) return fill(root, form, h("p", {}, `Strouhal ${number(found.strouhal, 7)} (${found.source}). Its uncertainty is not known ${found.extrapolated ? "beyond the ends of the curve" : "there"}.`));
  const rows = [...found.budget].sort((a, b) => Math.abs(b.contribution) - Math.abs(a.contribution));
  const all = rows.reduce((sum, row) => sum + row.contribution ** 2, 0);
  fill(root, form, h("p", { class: "big" }, h("b", {}, `U = ${number(found.expandedUncertainty, 2)} (${number(found.expandedUncertaintyPercent, 2)} %)`), `, k = ${found.coverageFactor.toFixed(2)}, of Strouhal ${number(found.strouhal, 7)}`),
    h("p", { class: "fine" }, found.contains), h("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": "Rows of the budget" }, h("table", {},
      h("thead", {}, h("tr", {}, ["Cause", "u", "Distribution", "Type", "Contribution", "Share %"].map((title, i) => h("th", { scope: "col", class: i === 1 || i > 3 ? "n" : "" }, title)))),
      h("tbody", {}, rows.map((row) => h("tr", {}, h("td", {}, row.label ? `${row.cause}: ${row.label}` : row.cause), h("td", { class: "n" }, `${number(row.standardUncertainty, 3)} ${row.unit}`), h("td", {}, row.distribution),
        h("td", {}, row.type), h("td", { class: "n" }, number(row.contribution, 3)), h("td", { class: "n" }, all ? (100 * row.contribution ** 2 / all).toFixed(1) : "–")))))));
}

// again(limit): asks for advice with the largest change that is allowed, in per cent.
export function showDrift(root, drift, limit, again) {
  const width = 520, height = 240, left = 52, bottom = 30;
  const shifts = drift.changes.flatMap((change) => change?.shifts ?? []);
  const xs = shifts.map(([x]) => x), most = Math.max(1e-6, ...shifts.map(([, p]) => Math.abs(p))) * 1.1;
  const x = new Axis(Math.min(...xs), Math.max(...xs), true), y = new Axis(-most, most, false);
  const px = (v) => left + x.share(v) * (width - left - 8), py = (v) => height - bottom - y.share(v) * (height - bottom - 8);
  const picture = s("svg", { class: "drift", viewBox: `0 0 ${width} ${height}`, role: "img", "aria-label": "Change of the curve from each calibration to the next, in per cent over the Roshko number" });
  const grid = (d) => s("path", { d, stroke: "var(--line)", fill: "none" });
  const word = (text, atX, atY, anchor) => { const t = s("text", { x: atX, y: atY, "text-anchor": anchor, "font-size": "11", fill: "var(--soft)" }); t.textContent = text; return t; };
  const rows = ticks(y, 5), across = ticks(x, 6);
  rows.forEach((v) => picture.append(grid(`M${left} ${py(v)}H${width - 8}`), word(tickText(v, rows), left - 5, py(v) + 4, "end")));
  across.forEach((v) => picture.append(grid(`M${px(v)} 8V${height - bottom}`), word(tickText(v, [v]), px(v), height - bottom + 14, "middle")));
  drift.changes.forEach((change, i) => {
    if (change) picture.append(s("path", { d: change.shifts.map(([v, p], k) => `${k ? "L" : "M"}${px(v).toFixed(1)} ${py(p).toFixed(1)}`).join(""),
      fill: "none", stroke: `var(--p${(i - 1) % 4 + 1})`, "stroke-width": "2", "stroke-dasharray": i > 4 ? "6 3" : "none" }));
  });
  const allowed = h("input", { type: "number", id: "drift-limit", min: "0", step: "any", value: limit ?? "", placeholder: "%" });
  const form = h("form", { onsubmit: (event) => { event.preventDefault(); again(allowed.value || null); } },
    h("div", { class: "field" }, h("label", { for: "drift-limit" }, "Largest change allowed, %"), allowed, h("button", { type: "submit" }, "Advise")));
  const advice = drift.intervalYears === null ? `No interval is recommended: ${drift.whyNoInterval}.`
    : drift.intervalYears > 0 ? `Recommended interval: ${number(drift.intervalYears, 2)} years. ${drift.assumptions}` : `The scatter of the calibrations alone exceeds the limit. ${drift.assumptions}`;
  const shiftText = (shift) => shift ? `${signed(shift.percent, 3)} ± ${number(shift.uncertaintyPercent, 2)}` : "–";
  const cells = (value) => [h("td", { class: "n" }, shiftText(value.sincePrevious)), h("td", {}, value.sincePrevious?.isSignificant ? "significant" : value.isBeyondLimits ? "beyond limits" : "")];
  fill(root, h("p", { class: "fine" }, "How the curve has moved from each calibration to the next, in per cent. U of a shift leaves out what the stand does to both alike."), picture,
    h("table", {}, h("thead", {}, h("tr", {}, ["Calibration", "Date", "Mean %", "Largest %", "at Roshko"].map((title, i) => h("th", { scope: "col", class: i > 1 ? "n" : "" }, title)))),
      h("tbody", {}, drift.calibrations.map((entry, i) => h("tr", {}, h("td", {}, String(entry.calibration)), h("td", {}, entry.date || "–"),
        h("td", { class: "n" }, signed(drift.changes[i]?.meanPercent, 3)), h("td", { class: "n" }, signed(drift.changes[i]?.largest.percent, 3)), h("td", { class: "n" }, number(drift.changes[i]?.largest.roshko, 4)))))),
    h("h3", {}, "At single Roshko numbers"),
    h("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": "Shifts at single Roshko numbers" }, h("table", {}, h("thead", {}, h("tr", {}, ["Roshko", "Calibration", "Shift ± U, %", "Judged"].map((title, i) => h("th", { scope: "col", class: i !== 3 ? "n" : "" }, title)))),
      h("tbody", {}, drift.places.flatMap((place) => place.values.slice(1).map((value) => h("tr", {}, h("td", { class: "n" }, number(place.roshko, 4)), h("td", { class: "n" }, String(value.calibration)), cells(value))))))),
    h("h3", {}, "Interval"), form, h("p", {}, advice), drift.notes.map((note) => h("p", { class: "fine" }, note)));
}

const files = [["html", "Certificate (HTML)"], ["pdf", "Certificate (PDF)"], ["xml", "Digital certificate (XML)"], ["xlsx", "Tables (XLSX)"], ["csv", "Tables (CSV)"], ["json", "JSON"], ["svg", "Picture (SVG)"]];

export function showSigning(root, { series, place, isChanged, sign, keep }) {
  const blocked = !series.curve.length ? "Store a curve first." : isChanged ? "Store or discard your changes first." : series.curveAge === "outdated" ? "The curve is older than its points: fit it and store it first." : null;
  // What somebody is typing stays until something else is shown.
  const shown = JSON.stringify([place, blocked, series.signatures]);
  if (root.dataset.shown === shown) return;
  root.dataset.shown = shown;
  const name = h("input", { id: "signer", autocomplete: "name", maxlength: "200", required: true }), remark = h("input", { id: "remark", maxlength: "500" });
  const form = h("form", { onsubmit: (event) => { event.preventDefault(); sign(name.value, remark.value); } },
    h("p", { class: "fine", id: "sign-help" }, blocked ?? "Signing freezes a fingerprint of points, exclusions, settings and curve. Later changes make the signature void."),
    h("div", { class: "field" }, h("label", { for: "signer" }, "Your name"), name), h("div", { class: "field" }, h("label", { for: "remark" }, "Remark"), remark),
    h("div", {}, h("button", { type: "submit", class: "main", disabled: Boolean(blocked), "aria-describedby": "sign-help" }, "Sign off")));
  const signatures = series.signatures.map((entry) => h("div", { class: entry.valid ? "sig" : "sig void" },
    h("b", { class: entry.valid ? "good" : "bad" }, entry.valid ? "Valid: " : "Void, changed since: "), `${entry.name}, ${moment(entry.signedAt)}`, entry.remark ? h("div", {}, entry.remark) : null,
    h("div", { class: "mono fine" }, entry.fingerprint)));
  const link = ([format, title]) => {
    const href = address("report", { meter: place.meter, calibration: place.calibration, series: place.series, format });
    return h("a", { class: "button", download: true, href, onclick: (event) => { event.preventDefault(); keep(href); } }, title);
  };
  fill(root, form, signatures.length ? h("h3", {}, "Signatures") : null, signatures, h("h3", {}, "Files"),
    series.curve.length ? null : h("p", { class: "fine" }, "No curve is stored yet; the files show the points."), h("div", { class: "files" }, files.map(link)),
    series.curve.length ? [h("h3", {}, "Table for a flow computer"), flowTableForm(place, keep)] : null);
}

export const stateWords = (entry) => ({ none: "no curve", current: "stored", outdated: "stale", unknown: "stored" })[entry.curveAge];
export function seriesTags(entry) {
  const tag = (text, kind = "") => h("span", { class: `tag ${kind}` }, text);
  return [tag(stateWords(entry), entry.curveAge === "outdated" ? "bad" : entry.curveAge === "none" ? "" : "good"),
    entry.excludedPoints ? tag(counted(entry.excludedPoints, "point") + " out") : null,
    entry.warnings ? tag(counted(entry.warnings, "warning"), "bad") : null,
    entry.signed === null ? null : tag(entry.signed ? "signed" : "signature void", entry.signed ? "good" : "bad")];
}
