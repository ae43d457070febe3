// Several texts as one.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace pelmora::report {

// "1001, 1002"
[[nodiscard]] inline std::string joined(const std::vector<std::string>& texts) {
  std::string result;
  for (const std::string& entry : texts) result += (result.empty() ? "" : ", ") + entry;
  return result;
}

}  // namespace pelmora::report
