// SPDX-License-Identifier: MIT
#include "adapters/sqlite/salvage/row_print.h"

#include <bit>
#include <functional>

namespace pelmora::sqlite::salvage {
namespace {

std::uint64_t printOf(const Field& field) {
  if (const auto* whole = std::get_if<std::int64_t>(&field))
    return std::hash<double>()(static_cast<double>(*whole));
  if (const auto* real = std::get_if<double>(&field)) return std::hash<double>()(*real);
  if (const auto* text = std::get_if<std::string>(&field)) return std::hash<std::string>()(*text);
  if (const auto* blob = std::get_if<Blob>(&field)) return std::hash<std::string>()(blob->bytes);
  return 1;
}

}  // namespace

void RowPrint::add(const Field& field) {
  constexpr std::uint64_t odd = 0x9E3779B97F4A7C15U;
  print_ = (std::rotl(print_, 23) ^ printOf(field)) * odd;
}

}  // namespace pelmora::sqlite::salvage
