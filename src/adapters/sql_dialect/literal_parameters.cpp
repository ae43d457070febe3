// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/literal_parameters.h"

#include <algorithm>

namespace pelmora::sql {

std::optional<std::string> LiteralParameters::add(const Expression& literal, Form form) {
  const auto& literals = shape_.literals;
  const auto found = std::ranges::find(literals, literal.position, &PlainLiteral::position);
  if (literal.position == 0 || found == literals.end()) return std::nullopt;
  parameters_.push_back({static_cast<std::size_t>(found - literals.begin()), form});
  return "?" + std::to_string(parameters_.size());
}

}  // namespace pelmora::sql
