// Choosing points, leaving them out and taking them back. SPDX-License-Identifier: MIT
import { ask, byId, counted, h } from "./dom.js";
import { changed } from "./fitting.js";
import { selected, shown, showSelection } from "./showing.js";
import { open } from "./work.js";

// how: "only", "toggle" or "add"
export function select(indices, how) {
  const { points } = open;
  const next = how === "only" ? new Set() : new Set(points.selection);
  for (const i of indices) if (how === "toggle" && next.has(i)) next.delete(i); else next.add(i);
  points.selection = next;
  shown.plot.select(next);
  shown.table.draw();
  showSelection();
}

// The point under the pointer or the arrow keys. reveals: the table scrolls to it.
export function activate(i, reveals) {
  const { points } = open, { plot, table } = shown;
  points.active = i;
  plot.setActive(i);
  byId("read").textContent = i >= 0 ? plot.reading(i) : "";
  for (const row of table.body.children) row.classList.toggle("active", Number(row.dataset?.index) === i);
  if (reveals && document.activeElement === byId("plot")) table.reveal(i);
}

export async function leaveOut() {
  const chosen = selected().filter((point) => !point.isOut);
  if (!chosen.length) return;
  const reason = h("input", { id: "reason", required: true, maxlength: "500", autocomplete: "off" });
  const given = await ask(`Leave out ${counted(chosen.length, "point")}`, h("div", { class: "field" }, h("label", { for: "reason" }, "Reason"), reason), "Leave out", () => reason.value.trim() || undefined);
  if (given === null) return;
  open.draft.exclude(chosen, given);
  open.points.selection = new Set();
  changed(`${counted(chosen.length, "point")} left out`);
}
export function takeBack() {
  const chosen = selected().filter((point) => point.isOut);
  if (!chosen.length) return;
  open.draft.include(chosen);
  open.points.selection = new Set();
  changed(`${counted(chosen.length, "point")} taken back`);
}

export function keyOnPlot(event) {
  // The dialog that opens must not get the key as its first letter.
  if (["x", "Delete", "b", "a"].includes(event.key)) event.preventDefault();
  if (event.key === "x" || event.key === "Delete") leaveOut();
  if (event.key === "b") takeBack();
  if (event.key === "a") select(open.points.roshko.map((_, i) => i), "only");
}
