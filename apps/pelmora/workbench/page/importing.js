// Importing a file that was dropped or chosen: what it is, what would be stored, and then storing it.
// SPDX-License-Identifier: MIT
import { ApiError, post, upload } from "./api.js";
import { byId, counted, fill, h, number } from "./dom.js";

export function takeFiles(imported) {
  const begin = (file) => file && importFile(file, imported);
  byId("file").addEventListener("change", (event) => { begin(event.target.files[0]); event.target.value = ""; });
  let depth = 0;
  const mark = (on) => document.body.classList.toggle("drop", on);
  addEventListener("dragenter", (event) => { event.preventDefault(); if (++depth === 1) mark(true); });
  addEventListener("dragleave", () => { if (--depth <= 0) { depth = 0; mark(false); } });
  addEventListener("dragover", (event) => event.preventDefault());
  addEventListener("drop", (event) => { event.preventDefault(); depth = 0; mark(false); begin(event.dataTransfer.files[0]); });
}

async function importFile(file, imported) {
  const dialog = h("dialog", { "aria-labelledby": "import-title" });
  const close = h("button", { type: "button", onclick: () => dialog.close() }, "Cancel");
  dialog.addEventListener("close", () => dialog.remove());
  fill(dialog, h("h2", { id: "import-title" }, `Import ${file.name}`), h("p", {}, "Reading the file …"), h("div", { class: "tools" }, close));
  document.body.append(dialog);
  dialog.showModal();
  try {
    const found = await upload(file);
    const form = found.kind === "stand" ? standForm(found) : pointsForm(found);
    show(dialog, file, form, imported);
  } catch (error) {
    if (!(error instanceof ApiError)) throw error;
    fill(dialog, h("h2", { id: "import-title" }, `${file.name} cannot be imported`), h("p", { class: "bad" }, error.text), h("div", { class: "tools" }, close));
    close.textContent = "Close";
    close.focus();
  }
}

const field = (id, title, input) => h("div", { class: "field" }, h("label", { for: id }, title), input);

function commonFields() {
  const meter = h("input", { id: "import-meter", required: true, autocomplete: "off", value: new URLSearchParams(location.hash.slice(1)).get("meter") ?? "" });
  const fresh = h("input", { type: "checkbox", id: "import-new" });
  return { meter, fresh, fields: [field("import-meter", "Meter", meter), h("label", {}, fresh, " Begin a new calibration of this meter")] };
}

function standForm(found) {
  const { meter, fresh, fields } = commonFields();
  const runs = found.jobs.map((job) => ({ job,
    takes: h("input", { type: "checkbox", "aria-label": `Import job ${job}` }),
    fluid: h("input", { "aria-label": `Fluid of job ${job}`, placeholder: "Fluid" }),
    operator: h("input", { "aria-label": `Operator of job ${job}`, placeholder: "Operator" }) }));
  for (const run of runs) run.fluid.addEventListener("input", () => { if (run.fluid.value) run.takes.checked = true; });
  const body = h("div", {}, h("p", { id: "recognised" }, `Recognised: a stand's file with ${counted(found.jobs.length, "job")}. Tick the jobs of this meter and name the fluid of each.`), fields,
    h("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": "Jobs of the stand" }, h("table", {}, h("thead", {}, h("tr", {}, ["Take", "Job", "Fluid", "Operator"].map((title) => h("th", { scope: "col" }, title)))),
      h("tbody", {}, runs.map((run) => h("tr", {}, h("td", {}, run.takes), h("td", {}, run.job), h("td", {}, run.fluid), h("td", {}, run.operator)))))));
  const request = () => ({ upload: found.upload, meter: meter.value.trim(), newCalibration: fresh.checked,
    runs: runs.filter((run) => run.takes.checked).map((run) => ({ job: run.job, fluid: run.fluid.value.trim(), operator: run.operator.value.trim() })) });
  return { body, request, path: "import", first: meter,
    lines: (done) => [...done.series.map((series) => `Series ${series.name}: ${counted(series.rawPoints.reduce((a, b) => a + b, 0), "point")}`), ...done.notes, done.error] };
}

function pointsForm(found) {
  const { meter, fresh, fields } = commonFields();
  const series = h("input", { id: "import-series", required: true, value: "Rotor A" });
  const part = h("select", { id: "import-part" }, [1, 2, 3, 4].map((n) => h("option", { value: String(n) }, String(n))));
  const words = `a table of ${counted(found.count, "point")}, Roshko ${number(found.range.min)} to ${number(found.range.max)}${found.recognised ? `; ${found.recognised}` : ""}`;
  const body = h("div", {}, h("p", { id: "recognised" }, `Recognised: ${words}.`),
    h("table", {}, h("caption", { class: "fine" }, "The first points"), h("thead", {}, h("tr", {}, ["Roshko", "Strouhal"].map((title) => h("th", { scope: "col", class: "n" }, title)))),
      h("tbody", {}, found.first.map((row) => h("tr", {}, row.map((value) => h("td", { class: "n" }, number(value, 9))))))),
    fields, field("import-series", "Series", series), field("import-part", "Raw part", part),
    h("p", { class: "fine" }, "The points take the place of that part's old points, which the history keeps."));
  const request = () => ({ upload: found.upload, meter: meter.value.trim(), newCalibration: fresh.checked, series: series.value.trim(), part: Number(part.value) });
  return { body, request, path: "raw", first: meter, lines: (done) => [`Series ${done.series}, part ${done.rawPart}: ${counted(done.points.length, "point")}`] };
}

function show(dialog, file, form, imported) {
  const result = h("div", { role: "status" });
  const run = async (dryRun) => {
    try {
      const done = await post(form.path, { ...form.request(), dryRun });
      if (!dryRun) { dialog.close(); return imported(done); }
      fill(result, h("h3", {}, `Would be stored, calibration ${done.meter.calibration} of meter ${done.meter.serialNumber}`), h("ul", {}, form.lines(done).filter(Boolean).map((line) => h("li", {}, line))));
    } catch (error) {
      if (!(error instanceof ApiError)) throw error;
      fill(result, h("p", { class: "bad" }, error.text));
    }
  };
  fill(dialog, h("h2", { id: "import-title" }, `Import ${file.name}`),
    h("form", { method: "dialog", onsubmit: (event) => { event.preventDefault(); run(false); } }, form.body, result, h("div", { class: "tools" },
      h("button", { type: "button", onclick: () => dialog.close() }, "Cancel"), h("button", { type: "button", onclick: () => run(true) }, "Preview"), h("button", { type: "submit", class: "main" }, "Import"))));
  form.first.focus();
}
