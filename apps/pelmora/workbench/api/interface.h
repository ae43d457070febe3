// The JSON interface of the workbench: from a request to its answer.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/workbench/api/bench.h"
#include "apps/pelmora/workbench/http/message.h"

#include <cstddef>
#include <string>

namespace pelmora::cli::workbench {

// path: behind "api/", without the query.
[[nodiscard]] http::Response answerOf(Bench& bench, const std::string& path,
                                      const http::Request& request);
// The largest body that a request for `path` may have.
[[nodiscard]] std::size_t bodyLimitOf(const std::string& path);

}  // namespace pelmora::cli::workbench
