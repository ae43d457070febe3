// When somebody last used the workbench.
// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>
#include <string_view>

namespace pelmora::cli::workbench {

class LastUse {
 public:
  using Time = std::chrono::steady_clock::time_point;

  explicit LastUse(Time begin) : at_(begin) {}
  // path: of a request that was let in, without the room. A page asks by itself, every few seconds,
  // whether something has changed: one that was left open must not keep the workbench open.
  void note(std::string_view path, Time now) {
    if (path != "api/revision") at_ = std::max(at_, now);
  }
  [[nodiscard]] bool isIdle(Time now, std::chrono::minutes limit) const {
    return now - at_ >= limit;
  }

 private:
  Time at_;
};

}  // namespace pelmora::cli::workbench
