// The text of a stand's CSV export.
// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>

namespace pelmora::test {

inline std::string standHeader() {
  std::string header = "JobRecordID";
  for (int i = 1; i <= 37; ++i) header += ",V" + std::to_string(i);
  return header;
}

// A line with `job` and the texts of some columns; Vn is n in all others.
inline std::string exportLine(const std::string& job,
                              const std::map<int, std::string>& values = {}) {
  std::string line = job;
  for (int i = 1; i <= 37; ++i) {
    const auto found = values.find(i);
    line += "," + (found == values.end() ? std::to_string(i) : found->second);
  }
  return line;
}

}  // namespace pelmora::test
