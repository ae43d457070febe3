// The workbench begins: its parts are joined here, buttons and keys among them. SPDX-License-Identifier: MIT
import { get } from "./api.js";
import { byId, h, say } from "./dom.js";
import { changeSettings, discard, redo, undo } from "./fitting.js";
import { makeTabs, setTheme, showKeys } from "./frame.js";
import { takeFiles } from "./importing.js";
import { MeterList } from "./meters.js";
import { mayLeave, openMeter } from "./opening.js";
import { loadPanel, onRestore } from "./panels.js";
import { activate, keyOnPlot, leaveOut, select, takeBack } from "./selecting.js";
import { makeShown, showEquations, shown } from "./showing.js";
import { keep, reload, restore, sign, store, watch } from "./storing.js";
import { failed, guarded, onConflict, open } from "./work.js";

const watchMs = 4000;

const pick = makeTabs((name) => {
  loadPanel(name);
  if (name === "points") shown.table?.draw();
  if (name === "equations") showEquations();
});
byId("panel-points").append(h("div", { class: "tools" }, h("button", { type: "button", id: "leave", onclick: leaveOut }, "Leave out …"), h("button", { type: "button", id: "back", onclick: takeBack }, "Take back"), h("span", { id: "chosen", class: "fine" })));
makeShown({ select, active: activate, keys: keyOnPlot, settings: changeSettings, sign, keep });
onConflict(reload);
onRestore(restore);
pick("points");

const meters = new MeterList(async (serial) => { if (await mayLeave()) await show(serial); }, failed);
async function show(...place) {
  const serial = await openMeter(...place);
  if (serial) meters.mark(serial);
}

const clicks = { undo, redo, discard, store, in: () => shown.plot.zoom(0.5), out: () => shown.plot.zoom(2), whole: () => shown.plot.whole(), help: showKeys };
for (const [id, act] of Object.entries(clicks)) byId(id).addEventListener("click", act);
const themes = ["system", "light", "dark"], theme = () => localStorage.getItem("theme") ?? "system";
byId("theme").addEventListener("click", () => { setTheme(themes[(themes.indexOf(theme()) + 1) % themes.length]); shown.plot.draw(); });
setTheme(theme());
for (const button of document.querySelectorAll("[data-mode]")) {
  button.addEventListener("click", () => {
    shown.plot.mode = button.dataset.mode;
    for (const other of document.querySelectorAll("[data-mode]")) other.setAttribute("aria-pressed", String(other === button));
  });
}
addEventListener("keydown", (event) => {
  const isTyping = /^(INPUT|TEXTAREA|SELECT)$/.test(document.activeElement?.tagName) && document.activeElement.type !== "checkbox";
  if ((event.ctrlKey || event.metaKey) && !isTyping) {
    if (event.key === "z" && !event.shiftKey) { event.preventDefault(); undo(); }
    if (event.key === "y" || (event.key.toLowerCase() === "z" && event.shiftKey)) { event.preventDefault(); redo(); }
  }
  if ((event.ctrlKey || event.metaKey) && event.key === "s") { event.preventDefault(); if (!byId("store").disabled) store(); }
  if (event.key === "/" && !isTyping) { event.preventDefault(); byId("search").focus(); }
});
addEventListener("beforeunload", (event) => { if (open.draft?.isChanged) event.preventDefault(); });
takeFiles(async (done) => {
  say("Imported");
  await meters.find();
  await show(done.meter.serialNumber, done.meter.calibration, typeof done.series === "string" ? done.series : undefined);
});
setInterval(watch, watchMs);
document.addEventListener("visibilitychange", watch);

const state = await guarded(get("state"));
if (state) byId("database").textContent = state.database;
await meters.find();
const wanted = new URLSearchParams(location.hash.slice(1));
if (wanted.get("meter")) await show(wanted.get("meter"), wanted.has("calibration") ? Number(wanted.get("calibration")) : undefined, wanted.get("series"));
document.body.dataset.ready = "true";
