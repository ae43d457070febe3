// Stopping the work on a reference curve before it is done.
// SPDX-License-Identifier: MIT
#pragma once

#include <exception>
#include <functional>

namespace pelmora::solver::reference {

// Called before every pass over the points. True ends the work with Stopped.
using StopRequested = std::function<bool()>;

class Stopped : public std::exception {
 public:
  [[nodiscard]] const char* what() const noexcept override { return "stopped on request"; }
};

inline void requireGoOn(const StopRequested& stop) {
  if (stop && stop()) throw Stopped();
}

}  // namespace pelmora::solver::reference
