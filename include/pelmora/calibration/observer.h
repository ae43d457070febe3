// How a caller follows an operation, ends it early, and waits for others.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <stop_token>
#include <string>

namespace pelmora::calibration {

// Every member is optional. Functions are called in the thread that runs the operation, unless the
// operation says otherwise. An exception from one of them ends the operation like its own failure.
struct Observer {
  // The current step, as a sentence for people.
  std::function<void(const std::string& text)> status{};
  // `done` of `of` steps are finished.
  std::function<void(std::size_t done, std::size_t of)> progress{};
  // Requesting a stop ends the operation with Cancelled, and nothing is stored.
  std::stop_token stop{};
};

}  // namespace pelmora::calibration
