// What a person has changed and not yet stored: points left out with their reasons, and settings. Every state is kept, for
// undo and redo. No document here: node tests it as it is. SPDX-License-Identifier: MIT
export const keyOf = (part, number) => part * 65536 + number;

export class Draft {
  // excluded: [{part, number, reason}], as stored
  constructor(excluded, settings) {
    this.stored = { excluded: new Map(excluded.map((point) => [keyOf(point.part, point.number), point])), settings };
    this.states = [this.stored];
    this.at = 0;
  }
  get now() { return this.states[this.at]; }
  get excluded() { return this.now.excluded; }
  get settings() { return this.now.settings; }
  get canUndo() { return this.at > 0; }
  get canRedo() { return this.at + 1 < this.states.length; }
  undo() { if (this.canUndo) --this.at; }
  redo() { if (this.canRedo) ++this.at; }
  #push(state) {
    this.states.length = this.at + 1;
    this.states.push(state);
    ++this.at;
  }
  // points: [{part, number}]. A point that is out already keeps its reason.
  exclude(points, reason) {
    const excluded = new Map(this.excluded);
    for (const { part, number } of points) {
      const key = keyOf(part, number);
      if (!excluded.has(key)) excluded.set(key, { part, number, reason });
    }
    if (excluded.size !== this.excluded.size) this.#push({ ...this.now, excluded });
  }
  include(points) {
    const excluded = new Map(this.excluded);
    for (const { part, number } of points) excluded.delete(keyOf(part, number));
    if (excluded.size !== this.excluded.size) this.#push({ ...this.now, excluded });
  }
  set(settings) {
    if (JSON.stringify(settings) !== JSON.stringify(this.settings)) this.#push({ ...this.now, settings });
  }
  discard() {
    if (this.isChanged) this.#push(this.stored);
  }
  // What differs from what is stored.
  get changes() {
    const out = [...this.excluded.values()].filter((point) => !this.stored.excluded.has(keyOf(point.part, point.number)));
    const back = [...this.stored.excluded.values()].filter((point) => !this.excluded.has(keyOf(point.part, point.number)));
    const names = Object.keys(this.settings).filter((name) => JSON.stringify(this.settings[name]) !== JSON.stringify(this.stored.settings[name]));
    return { out, back, settings: names };
  }
  get isChanged() {
    const { out, back, settings } = this.changes;
    return out.length + back.length + settings.length > 0;
  }
  // The same changes on what is stored now.
  onTopOf(excluded, settings) {
    const { out, back, settings: names } = this.changes;
    const next = new Draft(excluded, settings);
    next.include(back);
    for (const point of out) next.exclude([point], point.reason);
    next.set({ ...settings, ...Object.fromEntries(names.map((name) => [name, this.settings[name]])) });
    return next;
  }
  list() { return [...this.excluded.values()].map(({ part, number, reason }) => ({ part, number, reason })); }
}
