// The ids that rows of the source have in the target, where they do not keep their own.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>

namespace pelmora::calibration {

class NewIds {
 public:
  // From now on rows of that table have the ids that add() says.
  void renew(const std::string& table) { (void)tables_[table]; }
  [[nodiscard]] bool isRenewed(const std::string& table) const { return tables_.contains(table); }
  void add(const std::string& table, std::int64_t old, std::int64_t renewed) {
    tables_[table].emplace(old, renewed);
  }
  // Nothing if no row with that id has been copied.
  [[nodiscard]] std::optional<std::int64_t> of(const std::string& table, std::int64_t old) const {
    const auto ids = tables_.find(table);
    if (ids == tables_.end()) return old;
    const auto found = ids->second.find(old);
    return found == ids->second.end() ? std::nullopt : std::optional(found->second);
  }

 private:
  std::map<std::string, std::unordered_map<std::int64_t, std::int64_t>> tables_;
};

}  // namespace pelmora::calibration
