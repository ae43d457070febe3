// Everything that changes the database, and what others have changed in it. SPDX-License-Identifier: MIT
import { ApiError, download, get, post } from "./api.js";
import { ask, byId, h, moment, say, unnotice } from "./dom.js";
import { changed } from "./fitting.js";
import { loadMeter, openAgain } from "./opening.js";
import { failed, guarded, open, tellChange } from "./work.js";

async function seeAgain(words) {
  say(words);
  await openAgain();
  await loadMeter();
}

export async function store() {
  const fits = open.preview?.curve.length > 0;
  if (!fits && !await ask("Store without a curve?", h("p", {}, "No curve passes with these points. What you left out and took back is stored; the stored curve, if there is one, becomes stale."), "Store the exclusions")) return;
  const body = { fit: fits, ...open.place, revision: open.series.revision, excluded: open.draft.list(), settings: open.draft.settings, alsoDerived: byId("derived").checked };
  if (await guarded(post("store", body))) await seeAgain("Stored");
}
export async function sign(name, remark) {
  const done = await guarded(post("sign", { ...open.place, revision: open.series.revision, name, remark }));
  if (done) await seeAgain(`Signed by ${done.name}`);
}
export async function restore(entry) {
  const sure = await ask("Restore?", h("p", {}, `Points, exclusions and curve become as they were before "${entry.command}" of ${moment(entry.changedAt)}. What is there now is kept in the history.`), "Restore");
  if (!sure) return;
  if (await guarded(post("restore", { ...open.place, entry: entry.entry, revision: open.series.revision }))) await seeAgain("Restored");
}
// A report or a table, as a file.
export async function keep(href) {
  const name = await guarded(download(href));
  if (name) say(`${name} is ready`);
}

// What is stored now, with the changes of this page on top.
export async function reload() {
  const draft = open.draft;
  await openAgain();
  if (draft.isChanged) { open.draft = draft.onTopOf(open.series.excluded, open.series.settings); changed("Loaded what is stored now; your changes are on top"); }
  await loadMeter();
}

let told = null;
// Another tab, another person or a program: noticed within seconds, and nothing is overwritten.
export async function watch() {
  if (document.hidden || !open.series) return;
  const place = open.place, revision = open.series.revision, number = open.opened;
  try {
    const now = await get("revision", place);
    unnotice("gone");
    if (number !== open.opened || now.revision === revision || open.series.revision !== revision) return;
    if (told === now.revision) return;
    told = now.revision;
    tellChange();
  } catch (error) { if (error.kind === "gone") failed(error); else if (!(error instanceof ApiError)) throw error; }
}
