// What stands around the work: tabs, keys, colours. SPDX-License-Identifier: MIT
import { ask, byId, fill, h } from "./dom.js";

// shown(name): a panel has come to the front.
export function makeTabs(shown) {
  const names = [["points", "Points"], ["settings", "Settings"], ["equations", "Equations"], ["history", "History"], ["budget", "Budget"], ["drift", "Drift"], ["sign", "Sign"]];
  const pick = (name, focuses) => {
    for (const [other] of names) {
      const tab = byId(`tab-${other}`);
      tab.setAttribute("aria-selected", String(other === name));
      tab.tabIndex = other === name ? 0 : -1;
      byId(`panel-${other}`).hidden = other !== name;
    }
    if (focuses) byId(`tab-${name}`).focus();
    shown(name);
  };
  fill(byId("tabs"), names.map(([name, title]) => h("button", { type: "button", role: "tab", id: `tab-${name}`, "aria-controls": `panel-${name}`, onclick: () => pick(name) }, title)));
  byId("tabs").addEventListener("keydown", (event) => {
    const step = { ArrowRight: 1, ArrowLeft: -1 }[event.key], at = names.findIndex(([name]) => `tab-${name}` === document.activeElement.id);
    if (step && at >= 0) pick(names[(at + step + names.length) % names.length][0], true);
  });
  fill(byId("panels"), names.map(([name]) => h("div", { class: "panel", role: "tabpanel", id: `panel-${name}`, "aria-labelledby": `tab-${name}` })));
  return pick;
}

const keysHelp = [["/", "search a meter"], ["← →", "next point by Roshko (in the plot)"], ["Space", "select the point"], ["Shift + arrows", "select while moving"], ["x, Delete", "leave out what is selected"],
  ["b", "take it back"], ["+ − 0", "zoom in, out, all"], ["Esc", "select nothing"], ["Ctrl + Z, Ctrl + Y", "undo, redo"], ["Ctrl + S", "store"]];
export function showKeys() {
  return ask("Keys", h("table", {}, h("tbody", {}, keysHelp.map(([key, text]) => h("tr", {}, h("td", {}, h("kbd", {}, key)), h("td", {}, text))))), "Close");
}

export function setTheme(theme) {
  document.documentElement.style.colorScheme = theme === "system" ? "light dark" : theme;
  byId("theme").textContent = `Theme: ${theme}`;
  localStorage.setItem("theme", theme);
}
