// Packs the plot library and the page's script: node pack.mjs OUTPUT LIBRARY LICENCE SCRIPT...
//
// The scripts share one scope and run in their order.
//
// OUTPUT.packed: gzip as base64, a third of the page's size otherwise; OUTPUT.hash: SHA-256 of the unpacked script as
// base64, for the page's policy.
// SPDX-License-Identifier: MIT
import { createHash } from "node:crypto";
import { readFileSync, writeFileSync } from "node:fs";
import { gzipSync } from "node:zlib";

const [output, library, licence, ...scripts] = process.argv.slice(2);
const whole = scripts.map((script) => readFileSync(script, "utf8")).join("");
const ours = `(function () {\n"use strict";\n${whole}})();\n`.replace(/^\s*\/\/.*\n/gm, "").replace(/^\s+/gm, "");
const text = `/*! uPlot\n${readFileSync(licence, "utf8")}*/\n${readFileSync(library, "utf8")}\n${ours}`;
writeFileSync(`${output}.packed`, gzipSync(text, { level: 9 }).toString("base64"));
writeFileSync(`${output}.hash`, createHash("sha256").update(text).digest("base64"));
