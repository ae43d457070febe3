// The draft changes, and the fit follows. SPDX-License-Identifier: MIT
import { ApiError, post } from "./api.js";
import { say } from "./dom.js";
import { refresh, showBar } from "./showing.js";
import { open } from "./work.js";

// After every change of the draft. words: what has changed, for screen readers.
export function changed(words) {
  if (words) say(words);
  fit();
  refresh();
}
export function changeSettings(settings) { open.draft.set(settings); changed("Settings changed"); }
export function undo() { walk(open.draft?.canUndo, "undo", "Undone"); }
export function redo() { walk(open.draft?.canRedo, "redo", "Done again"); }
function walk(isPossible, which, words) {
  if (!isPossible) return;
  open.draft[which]();
  changed(words);
}
export function discard() { open.draft.discard(); changed("Changes discarded"); }

let fitsAgain = false;
// One fit at a time; a change meanwhile is fitted next.
export async function fit() {
  if (open.fitting) { fitsAgain = true; return; }
  const number = open.opened;
  open.fitting = true;
  document.body.dataset.fit = "running";
  showBar();
  const begin = performance.now(), isOfChange = open.draft.isChanged;
  let preview = null, trouble = null;
  try {
    preview = await post("fit", { ...open.place, excluded: open.draft.list(), settings: open.draft.settings });
    if (preview.refused) [trouble, preview] = [new ApiError(200, preview.refused).text, null];
    else preview.isOfChange = isOfChange;
  } catch (error) {
    if (!(error instanceof ApiError)) throw error;
    trouble = error.text;
  } finally { open.fitting = false; }
  if (fitsAgain || number !== open.opened) { fitsAgain = false; return fit(); }
  Object.assign(open, { preview, trouble });
  refresh();
  document.body.dataset.fit = "done";
  document.body.dataset.fitMs = String(Math.round(performance.now() - begin));
  const chosen = preview?.chosen;
  say(trouble ?? (chosen ? `Fit: ${chosen}` : `No curve: ${preview.reason}`));
}
