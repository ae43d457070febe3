// Series that cannot be read, for one line of trouble.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/trouble.h"

#include <optional>
#include <string>
#include <vector>

namespace pelmora::cli {

class UnreadableSeries {
 public:
  // place: how the list names the series; why: Trouble badInput that names it too.
  void add(const std::string& place, const Trouble& why);
  // "series 'A' of meter 'M1' cannot be read: why; nor can 'B', 'C'". Names at most 20 others.
  [[nodiscard]] std::optional<Trouble> trouble() const;
  // Errors: trouble(), where there is one.
  void throwIfAny() const;

 private:
  std::optional<Trouble> first_;
  std::vector<std::string> others_;
};

}  // namespace pelmora::cli
