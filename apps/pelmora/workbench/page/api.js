// The JSON interface. SPDX-License-Identifier: MIT
import { sentence } from "./dom.js";

export class ApiError extends Error {
  constructor(status, error) {
    super(error.what);
    Object.assign(this, { status, kind: error.kind, where: error.where, remedy: error.remedy });
  }
  // For people: what, and what to do.
  get text() {
    return sentence(this.message) + (this.remedy ? ` To do: ${this.remedy}.` : "");
  }
}

async function answerOf(response) {
  if (response.headers.get("content-type")?.startsWith("application/json")) {
    const value = await response.json();
    if (response.ok) return value;
    if (value.error.kind === "ending") throw gone();
    throw new ApiError(response.status, value.error);
  }
  throw new ApiError(response.status, { kind: "failed", what: (await response.text()).trim() || `status ${response.status}`, where: "", remedy: "" });
}

async function ask(address, options) {
  let response;
  try {
    response = await fetch(address, options);
  } catch {
    throw gone();
  }
  return answerOf(response);
}
const gone = () => new ApiError(0, { kind: "gone", what: "the workbench does not answer", where: "", remedy: "look at its terminal: it may have ended; start it again and open the new address" });

export const address = (path, query = {}) => {
  const words = new URLSearchParams(Object.entries(query).filter(([, value]) => value !== null && value !== undefined));
  return `api/${path}${words.size ? `?${words}` : ""}`;
};
export const get = (path, query) => ask(address(path, query));
export const post = (path, body) => ask(`api/${path}`, { method: "POST", headers: { "Content-Type": "application/json" }, body: JSON.stringify(body) });
export const upload = (file) => ask(address("upload", { name: file.name }), { method: "POST", headers: { "Content-Type": "application/octet-stream" }, body: file });

// A file to keep; what goes wrong is an ApiError instead of a file with an error in it.
export async function download(href) {
  let response;
  try { response = await fetch(href); } catch { throw gone(); }
  if (!response.ok) return answerOf(response);
  const link = document.createElement("a");
  link.href = URL.createObjectURL(await response.blob());
  link.download = /filename="([^"]+)"/.exec(response.headers.get("content-disposition") ?? "")?.[1] ?? "report";
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 60000);
  return link.download;
}
