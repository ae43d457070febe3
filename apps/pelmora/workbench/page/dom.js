// Elements and numbers. SPDX-License-Identifier: MIT
export const byId = (id) => document.getElementById(id);

// h("td", {class: "n", onclick: f}, "text", node ...): attributes, listeners (on...), properties that start with a dot.
export function h(tag, attributes = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (value === undefined || value === null || value === false) continue;
    if (name.startsWith("on")) element.addEventListener(name.slice(2), value);
    else if (name.startsWith(".")) element[name.slice(1)] = value;
    else element.setAttribute(name, value === true ? "" : value);
  }
  element.append(...children.flat(Infinity).filter((child) => child !== null && child !== undefined && child !== false));
  return element;
}

const svgSpace = "http://www.w3.org/2000/svg";
export function s(tag, attributes = {}, ...children) {
  const element = document.createElementNS(svgSpace, tag);
  for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
  element.append(...children);
  return element;
}

const nameOf = (element) => element.getAttribute("aria-label") ?? element.textContent;
// What had the focus has it again, if it is still there: by its id, or by its kind and name.
export function fill(element, ...children) {
  const had = element.contains(document.activeElement) ? document.activeElement : null;
  element.replaceChildren(...children.flat(Infinity).filter((child) => child !== null && child !== undefined && child !== false));
  if (!had || element.contains(had)) return;
  const again = had.id ? byId(had.id) : [...element.querySelectorAll(had.tagName)].find((other) => nameOf(other) === nameOf(had));
  again?.focus({ preventScroll: true });
}

// Six significant digits, without an exponent where people need none.
export function number(value, digits = 6) {
  if (value === null || value === undefined || !Number.isFinite(value)) return "–";
  const text = Number(value.toPrecision(digits));
  return Math.abs(text) >= 1e-4 && Math.abs(text) < 1e15 || text === 0 ? String(text) : text.toExponential();
}
export function signed(value, decimals) {
  if (value === null || value === undefined || !Number.isFinite(value)) return "–";
  const size = Math.abs(value).toFixed(decimals);
  return Number(size) === 0 ? size : (value < 0 ? "−" : "+") + size;
}
// A clause as a sentence.
export const sentence = (text) => text.charAt(0).toUpperCase() + text.slice(1) + (text.endsWith(".") ? "" : ".");
export const counted = (count, one, several = one + "s") => `${count.toLocaleString("en")} ${count === 1 ? one : several}`;
export const moment = (text) => text ? text.replace("T", " ").replace(/:\d\dZ$/, " UTC") : "";

let sayTimer = 0;
// For screen readers: what has happened, without moving the focus.
export function say(text) {
  clearTimeout(sayTimer);
  sayTimer = setTimeout(() => { byId("said").textContent = text; }, 60);
}

// A bar above everything until it is closed. actions: [[label, function] ...]
export function notice(text, actions = [], key = text) {
  const old = [...byId("notices").children].find((bar) => bar.dataset.key === key);
  if (old) old.remove();
  const close = () => bar.remove();
  const bar = h("div", { class: "notice", "data-key": key }, h("span", {}, text),
    actions.map(([label, act]) => h("button", { type: "button", onclick: () => { close(); act(); } }, label)),
    h("button", { type: "button", "aria-label": "Close this message", onclick: close }, "×"));
  byId("notices").append(bar);
  return close;
}
export function unnotice(key) {
  for (const bar of [...byId("notices").children]) if (bar.dataset.key === key) bar.remove();
}

// A question in a dialog: resolves to what `read` gives when it is confirmed, else to null.
export function ask(title, body, confirm, read = () => true) {
  return new Promise((done) => {
    let answer = null;
    const form = h("form", { method: "dialog", onsubmit: (event) => {
      event.preventDefault();
      const value = read();
      if (value === undefined) return;
      answer = value;
      dialog.close();
    } }, h("h2", { id: "asked" }, title), body, h("div", { class: "tools" },
      h("button", { type: "button", onclick: () => dialog.close() }, "Cancel"),
      h("button", { type: "submit", class: "main" }, confirm)));
    const dialog = h("dialog", { "aria-labelledby": "asked" }, form);
    dialog.addEventListener("close", () => { dialog.remove(); done(answer); });
    document.body.append(dialog);
    dialog.showModal();
  });
}
