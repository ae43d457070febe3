// The damaged places of a file, in words.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace pelmora::sqlite::salvage {

// Where the names of what is damaged go; each is named once.
class DamageList {
 public:
  void add(const std::string& text);
  [[nodiscard]] std::vector<std::string> take();

 private:
  static constexpr std::size_t most_ = 50;
  std::size_t count_ = 0;
  std::set<std::string> known_;
  std::vector<std::string> texts_;
};

}  // namespace pelmora::sqlite::salvage
