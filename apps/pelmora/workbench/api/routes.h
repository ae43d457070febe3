// The requests of the workbench, one function each; openapi.json describes them.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/workbench/api/bench.h"
#include "apps/pelmora/workbench/http/message.h"

namespace pelmora::cli::workbench {

// Reading.
[[nodiscard]] http::Response getState(Bench& bench, const http::Request& request);
[[nodiscard]] http::Response getMeters(Bench& bench, const http::Request& request);
[[nodiscard]] http::Response getMeter(Bench& bench, const http::Request& request);
[[nodiscard]] http::Response getSeries(Bench& bench, const http::Request& request);
[[nodiscard]] http::Response getRevision(Bench& bench, const http::Request& request);
[[nodiscard]] http::Response getPoints(Bench& bench, const http::Request& request);
[[nodiscard]] http::Response getCheck(Bench& bench, const http::Request& request);
[[nodiscard]] http::Response getDrift(Bench& bench, const http::Request& request);
[[nodiscard]] http::Response getHistory(Bench& bench, const http::Request& request);
[[nodiscard]] http::Response getBudget(Bench& bench, const http::Request& request);
[[nodiscard]] http::Response getReport(Bench& bench, const http::Request& request);
[[nodiscard]] http::Response getTable(Bench& bench, const http::Request& request);
[[nodiscard]] http::Response getInterface(Bench& bench, const http::Request& request);
// Working something out; nothing is stored.
[[nodiscard]] http::Response postFit(Bench& bench, const http::Request& request);
[[nodiscard]] http::Response postUpload(Bench& bench, const http::Request& request);
// Storing.
[[nodiscard]] http::Response postStore(Bench& bench, const http::Request& request);
[[nodiscard]] http::Response postSign(Bench& bench, const http::Request& request);
[[nodiscard]] http::Response postRestore(Bench& bench, const http::Request& request);
[[nodiscard]] http::Response postImport(Bench& bench, const http::Request& request);
[[nodiscard]] http::Response postPoints(Bench& bench, const http::Request& request);

}  // namespace pelmora::cli::workbench
