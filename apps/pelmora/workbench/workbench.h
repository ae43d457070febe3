// The workbench: a page in the browser over an open curve database.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/session.h"

#include <chrono>
#include <cstdint>

namespace pelmora::cli::workbench {

struct WorkbenchOptions {
  std::uint16_t port = 0;  // 0: a free one
  bool opensBrowser = true;
  std::chrono::minutes idle{120};  // ends when nobody has asked for anything that long
};

// Serves until a signal or the idle time ends it, and says on standard output where the page is.
//
// Errors: Trouble usage if the port cannot be used; Interrupted.
void runWorkbench(Session& session, const WorkbenchOptions& options);

}  // namespace pelmora::cli::workbench
