// How a caller follows an operation, ends it early, and waits for others.
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <stop_token>
#include <string>

namespace pelmora::calibration {

// Everything is optional. Functions are called in the thread that runs the operation, unless the
// operation says otherwise; what they throw ends it, as a failure of its own would.
struct Observer {
  // What is being done, a sentence for people.
  std::function<void(const std::string& text)> status{};
  // Of `of` steps `done` are finished.
  std::function<void(std::size_t done, std::size_t of)> progress{};
  // A stop that is requested here ends the operation with Cancelled, and nothing is stored.
  std::stop_token stop{};
};

// How long an operation waits while others hold the database.
struct Patience {
  std::chrono::milliseconds wait{30'000};
  // Called now and then while it waits.
  std::function<void(std::chrono::milliseconds waited)> waiting{};
};

}  // namespace pelmora::calibration
