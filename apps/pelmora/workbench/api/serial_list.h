// The serial numbers of a database, searched as somebody types.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/database.h>

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::cli::workbench {

struct FoundSerials {
  std::vector<std::string> serials;  // a page of them
  std::size_t matching = 0, total = 0;
};

// Read from the database when it is first asked, and again when it is some seconds old.
class SerialList {
 public:
  // Serial numbers that contain `text`, without regard to case; those that begin with it first.
  [[nodiscard]] FoundSerials find(const calibration::Database& lab, const std::string& text,
                                  std::size_t from, std::size_t most);
  void forget() { readAt_.reset(); }

 private:
  void refresh(const calibration::Database& lab);

  std::optional<std::chrono::steady_clock::time_point> readAt_;
  std::vector<std::string> serials_, small_;
};

}  // namespace pelmora::cli::workbench
