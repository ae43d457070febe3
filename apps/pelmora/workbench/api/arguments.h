// What a request asks with: the query of a GET, or the JSON object of a POST.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/workbench/http/message.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::cli::workbench {

// Every reader names the argument in what it throws. Null counts as absent.
//
// Errors: BadData.
class Arguments {
 public:
  // Errors: BadData for an argument that is given twice or is not UTF-8, and for a body that is not
  // one JSON object.
  [[nodiscard]] static Arguments ofQuery(const http::Fields& query);
  [[nodiscard]] static Arguments ofBody(const std::string& body);
  // A member that is itself an object; an empty one if it is absent.
  [[nodiscard]] Arguments member(const std::string& name) const;
  [[nodiscard]] std::vector<Arguments> list(const std::string& name) const;

  // Nothing else may be given: a name that is spelt wrong must not be passed over.
  void requireOnly(std::initializer_list<std::string_view> names) const;

  [[nodiscard]] bool has(const std::string& name) const { return find(name) != nullptr; }
  [[nodiscard]] std::string text(const std::string& name) const;
  [[nodiscard]] std::optional<std::string> findText(const std::string& name) const;
  [[nodiscard]] std::vector<std::string> texts(const std::string& name) const;
  [[nodiscard]] std::optional<double> findNumber(const std::string& name) const;
  [[nodiscard]] std::int64_t integer(const std::string& name, std::int64_t lowest,
                                     std::int64_t highest) const;
  [[nodiscard]] std::optional<std::int64_t> findInteger(const std::string& name,
                                                        std::int64_t lowest,
                                                        std::int64_t highest) const;
  [[nodiscard]] bool flag(const std::string& name, bool otherwise) const;

 private:
  Arguments(nlohmann::json values, std::string place, bool areTexts)
      : values_(std::move(values)), place_(std::move(place)), areTexts_(areTexts) {}
  [[nodiscard]] const nlohmann::json* find(const std::string& name) const;
  [[noreturn]] void refuse(const std::string& name, const std::string& wanted) const;
  [[nodiscard]] std::string placeOf(const std::string& name) const;

  nlohmann::json values_;  // an object
  std::string place_;      // of it in the body: "settings.range"
  bool areTexts_ = false;  // numbers are written as texts
};

}  // namespace pelmora::cli::workbench
