// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/http/message.h"

#include <algorithm>

namespace pelmora::cli::http {

std::size_t countOf(const Fields& fields, std::string_view name) {
  return static_cast<std::size_t>(std::count_if(
      fields.begin(), fields.end(), [&](const auto& field) { return field.first == name; }));
}

std::optional<std::string> onlyValue(const Fields& fields, std::string_view name) {
  if (countOf(fields, name) != 1) return std::nullopt;
  return std::find_if(fields.begin(), fields.end(),
                      [&](const auto& field) { return field.first == name; })
      ->second;
}

Response refusal(int status, const std::string& text) {
  return {status, "text/plain; charset=utf-8", text + "\n"};
}

}  // namespace pelmora::cli::http
