// Tables for flow computers: what one would err, and files to keep. SPDX-License-Identifier: MIT
import { ApiError, address, get } from "./api.js";
import { counted, h, number } from "./dom.js";

const forms = [["roshko", "Strouhal over Roshko"], ["uvc", "K over f/v (viscosity curve)"], ["linear", "K over frequency, in one fluid"]];
const readings = [["linear", "linearly"], ["log", "linearly in the logarithm"], ["cubic", "by a cubic in the logarithm"]];
const kinds = [["csv", "Table (CSV)"], ["xlsx", "Table (XLSX)"], ["json", "Table (JSON)"]];

// How far reading the table may be off, in words.
function wordsOf(table) {
  const error = `${counted(table.values.length, "point")}: the reading error is at most ${number(table.readingErrorPercent, 2)} %, at ${table.x.name} ${number(table.readingErrorAt, 4)} ${table.x.unit}.`;
  const all = table.expandedUncertaintyPercent === null ? "The uncertainty of the curve is not known." : `With it, U is at most ${number(table.expandedUncertaintyPercent, 2)} % (k = ${table.coverageFactor.toFixed(2)}).`;
  return `${error} ${all}${table.curveAge === "outdated" ? " The curve is older than its points." : ""}`;
}

// keep(href): fetches a file.
export function flowTableForm(place, keep) {
  const select = (id, title, choices) => {
    const input = h("select", { id, onchange: show }, choices.map(([value, text]) => h("option", { value }, text)));
    return [input, h("div", { class: "field" }, h("label", { for: id }, title), input)];
  };
  const figure = (id, title, attributes) => {
    const input = h("input", { type: "number", id, step: "any", onchange: show, ...attributes });
    return [input, h("div", { class: "field" }, h("label", { for: id }, title), input)];
  };
  const [form, formField] = select("table-for", "What it looks up", forms), [read, readField] = select("table-read", "Reads between points", readings);
  const [points, pointsField] = figure("table-points", "Number of points", { min: 2, max: 5000, step: 1, value: "40", required: true });
  const [viscosity, viscosityField] = figure("table-viscosity", "Viscosity, cSt", { min: 0 });
  const [celsius, celsiusField] = figure("table-celsius", "Temperature, °C", { placeholder: "21.11" });
  const result = h("p", { role: "status", class: "fine" });
  const query = () => ({ ...place, for: form.value, read: read.value, points: points.value, viscosity: form.value === "linear" ? viscosity.value || null : null,
    temperature: form.value === "roshko" ? null : celsius.value || null });
  let asked = 0;
  async function show() {
    viscosityField.hidden = form.value !== "linear";
    celsiusField.hidden = form.value === "roshko";
    const number = ++asked;
    const say = (text, isBad) => { if (number !== asked) return; result.textContent = text; result.classList.toggle("bad", isBad); };
    try { say(wordsOf(await get("table", query())), false); } catch (error) {
      if (!(error instanceof ApiError)) throw error;
      say(error.text, true);
    }
  }
  viscosityField.hidden = celsiusField.hidden = true;
  const files = kinds.map(([format, title]) => h("button", { type: "button", onclick: () => keep(address("table", { ...query(), format })) }, title));
  return h("form", { id: "flow-table", onsubmit: (event) => event.preventDefault() }, formField, readField, pointsField, viscosityField, celsiusField,
    h("div", { class: "files" }, h("button", { type: "button", onclick: show }, "Show the reading error"), files), result);
}
