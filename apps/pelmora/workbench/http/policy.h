// The headers of every answer.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/workbench/http/message.h"

namespace pelmora::cli::http {

// The answer with its policy: nothing from outside, no inline script, no frame, no copy kept.
[[nodiscard]] Response secured(Response response);

}  // namespace pelmora::cli::http
