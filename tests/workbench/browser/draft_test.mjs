// What a person has changed and not yet stored: node --test draft_test.mjs (PAGE names the folder of draft.js)
// SPDX-License-Identifier: MIT
import assert from "node:assert/strict";
import test from "node:test";
import { pathToFileURL } from "node:url";

const { Draft } = await import(pathToFileURL(`${process.env.PAGE}/draft.js`));
const { Axis, reader, ticks } = await import(pathToFileURL(`${process.env.PAGE}/scale.js`));
const stored = [{ part: 1, number: 2, reason: "air" }], settings = { band: 0.3, range: { min: null, max: null } };
const numbers = (draft) => draft.list().map((point) => point.number).sort((a, b) => a - b);

test("a draft begins as what is stored", () => {
  const draft = new Draft(stored, settings);
  assert.equal(draft.isChanged, false);
  assert.deepEqual(draft.list(), stored);
  assert.equal(draft.canUndo, false);
});

test("undo and redo walk through every state", () => {
  const draft = new Draft(stored, settings);
  draft.exclude([{ part: 1, number: 5 }, { part: 2, number: 1 }], "spike");
  draft.include([{ part: 1, number: 2 }]);
  draft.set({ ...settings, band: 0.5 });
  assert.deepEqual(draft.changes.settings, ["band"]);
  draft.undo();
  draft.undo();
  assert.deepEqual(numbers(draft), [1, 2, 5]);
  draft.undo();
  assert.equal(draft.isChanged, false);
  draft.undo();
  draft.redo();
  draft.redo();
  draft.redo();
  draft.redo();
  assert.equal(draft.settings.band, 0.5);
  assert.deepEqual(numbers(draft), [1, 5]);
});

test("a new change ends what could be done again", () => {
  const draft = new Draft([], settings);
  draft.exclude([{ part: 1, number: 5 }], "one");
  draft.undo();
  draft.exclude([{ part: 1, number: 6 }], "other");
  assert.equal(draft.canRedo, false);
  assert.deepEqual(numbers(draft), [6]);
});

test("a change to the same is no change", () => {
  const draft = new Draft(stored, settings);
  draft.exclude([{ part: 1, number: 2 }], "another reason");
  draft.set({ band: 0.3, range: { min: null, max: null } });
  assert.equal(draft.canUndo, false);
  assert.equal(draft.list()[0].reason, "air");
});

test("discarding can be undone", () => {
  const draft = new Draft(stored, settings);
  draft.exclude([{ part: 1, number: 5 }], "spike");
  draft.discard();
  assert.equal(draft.isChanged, false);
  draft.undo();
  assert.deepEqual(numbers(draft), [2, 5]);
});

test("changes go on top of what somebody else has stored", () => {
  const draft = new Draft(stored, settings);
  draft.include([{ part: 1, number: 2 }]);
  draft.exclude([{ part: 1, number: 5 }], "mine");
  draft.set({ ...settings, range: { min: 1, max: null } });
  const next = draft.onTopOf([...stored, { part: 3, number: 9, reason: "theirs" }], { ...settings, band: 0.4 });
  assert.deepEqual(next.list().map((p) => [p.part, p.number, p.reason]).sort(), [[1, 5, "mine"], [3, 9, "theirs"]]);
  assert.deepEqual([next.settings.band, next.settings.range.min], [0.4, 1]);
});

test("a table is read linearly and not beyond its ends", () => {
  const read = reader([[1, 10], [2, 20], [4, 0]]);
  assert.deepEqual([read(1), read(1.5), read(2), read(3), read(4)], [10, 15, 20, 10, 0]);
  assert.deepEqual([read(0.99), read(4.01)], [undefined, undefined]);
  assert.ok(Math.abs(read(4.0000001)) < 1e-5, "an end that was rounded");
});

test("ticks stand inside the axis", () => {
  for (const [min, max, isLog] of [[0.3, 1200, true], [1, 9, true], [-0.4, 0.4, false], [1309.2, 1309.9, false]]) {
    const list = ticks(new Axis(min, max, isLog));
    assert.ok(list.length >= 2 && list.length < 20 && list.every((v) => v >= min - 1e-9 && v <= max + 1e-9), `${min} ${max}: ${list}`);
  }
});
