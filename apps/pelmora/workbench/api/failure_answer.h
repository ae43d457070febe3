// What ends a request, as its answer: what, where and remedy, as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/workbench/http/message.h"

#include <nlohmann/json_fwd.hpp>

#include <exception>

namespace pelmora::cli::workbench {

[[nodiscard]] http::Response jsonAnswer(const nlohmann::json& value, int status = 200);

// The answer for the exception that is being handled:
//
//   {"error": {"kind": "notFound", "what": "...", "where": "...", "remedy": "..."}}
//
// Interrupted and std::bad_alloc pass through.
[[nodiscard]] http::Response failureAnswer();

// The answer to what was under way when the workbench was asked to end.
[[nodiscard]] http::Response endingAnswer();

}  // namespace pelmora::cli::workbench
