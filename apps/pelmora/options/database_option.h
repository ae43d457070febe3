// The curve database that a command works on, as the command line names it.
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>

namespace pelmora::cli {

struct DatabaseOption {
  std::string path;
  // For a lock of another program. People who share a file wait for each other rather than for
  // an error.
  std::chrono::milliseconds wait = std::chrono::seconds(30);
};

}  // namespace pelmora::cli
