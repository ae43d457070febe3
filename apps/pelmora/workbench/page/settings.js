// The form of a fit's settings. SPDX-License-Identifier: MIT
import { h } from "./dom.js";

const numbers = [["band", "Test band, %", { min: 0, max: 100, step: "any" }], ["points", "Points of the table", { min: 2, max: 32767, step: 1 }],
  ["range.min", "Curve from Roshko", { step: "any" }], ["range.max", "Curve to Roshko", { step: "any" }],
  ["fitRange.min", "Fit points from", { step: "any" }], ["fitRange.max", "Fit points to", { step: "any" }],
  ["mergeBand", "Merge band, %", { min: 0, max: 100, step: "any" }], ["maxOrder", "Highest order", { min: 0, max: 32767, step: 1 }]];
const flags = [["cutsOverlap", "Cut overlapping ends that disagree"], ["inverted", "Merge from the other end"], ["ratio", "The series is a rotor ratio"],
  ["ignoreResiduals", "Skip the residual test"]];
// What has changed, in words.
const titles = { band: "test band", points: "points of the table", range: "range of the curve", fitRange: "range of the fitted points", mergeBand: "merge band", maxOrder: "highest order",
  choose: "choice of the curve", spacing: "spacing of the table", outside: "range beyond the points", cutsOverlap: "cut of the overlap", inverted: "order of the merge", ratio: "rotor ratio",
  ignoreResiduals: "residual test", equations: "your own equations", without: "equations", only: "equations" };
export const titleOf = (name) => titles[name] ?? name;

const required = new Set(["band", "points"]);

const read = (settings, path) => path.split(".").reduce((value, name) => value?.[name], settings);
function write(settings, path, value) {
  const [first, second] = path.split(".");
  if (second) settings[first] = { ...settings[first], [second]: value }; else settings[first] = value;
}

export class SettingsForm {
  constructor(root, changed) {
    this.changed = changed;
    this.inputs = new Map();
    const field = (path, title, limits) => {
      const input = h("input", { type: "number", id: `set-${path}`, inputmode: "decimal", placeholder: required.has(path) ? "" : "automatic", ...limits, onchange: () => this.take(path, input) });
      this.inputs.set(path, input);
      return h("div", { class: "field" }, h("label", { for: input.id }, title), input);
    };
    const flag = (path, title) => {
      const input = h("input", { type: "checkbox", onchange: () => this.put(path, input.checked) });
      this.inputs.set(path, input);
      return h("label", {}, input, " ", title);
    };
    const select = (path, title, choices) => {
      const input = h("select", { id: `set-${path}`, onchange: () => this.put(path, input.value) }, choices.map(([value, text]) => h("option", { value }, text)));
      this.inputs.set(path, input);
      return h("div", { class: "field" }, h("label", { for: input.id }, title), input);
    };
    this.equations = h("textarea", { id: "set-equations", rows: "5", spellcheck: "false", "aria-describedby": "equations-help", onchange: () => this.put("equations", this.equations.value.trim() ? this.equations.value : null) });
    root.append(h("form", { onsubmit: (event) => event.preventDefault() },
      select("choose", "Curve by", [["trusted", "the reference curve (trusted)"], ["adjusted-r2", "adjusted R²"]]),
      numbers.map(([path, title, limits]) => field(path, title, limits)),
      select("spacing", "Table points stand", [["usual", "evenly in the logarithm"], ["optimal", "where reading errs least"]]),
      select("outside", "Range beyond the points", [["refuse", "refuse"], ["wholeRange", "use the points' range"], ["extrapolate", "extrapolate"]]),
      h("fieldset", {}, h("legend", {}, "Merge and tests"), flags.map(([path, title]) => h("div", {}, flag(path, title)))),
      h("details", {}, h("summary", {}, "Your own equations"), h("label", { for: "set-equations" }, "One per line: name, tab, expression in x"), this.equations,
        h("p", { class: "fine", id: "equations-help" }, "Leave it empty to fit the built-in equations."))));
  }
  set(settings) {
    this.settings = settings;
    for (const [path, input] of this.inputs) {
      const value = read(settings, path);
      if (input.type === "checkbox") input.checked = value;
      else if (document.activeElement !== input || input.tagName === "SELECT") input.value = value ?? "";
    }
    if (document.activeElement !== this.equations) this.equations.value = settings.equations ?? "";
  }
  take(path, input) {
    if (input.value === "" && !input.validity.badInput && !required.has(path)) return this.put(path, null);
    const value = input.valueAsNumber;
    input.setCustomValidity("");
    if (!Number.isFinite(value) || !input.checkValidity()) { input.reportValidity(); return; }
    this.put(path, value);
  }
  put(path, value) {
    const next = { ...this.settings };
    write(next, path, value);
    this.changed(next);
  }
}
