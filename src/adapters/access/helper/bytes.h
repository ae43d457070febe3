// Reading numbers from the bytes of a file that may be damaged anywhere.
// SPDX-License-Identifier: MIT
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>

namespace pelmora::access {

// A part of the file is damaged; the rest may be intact.
struct Damage : std::runtime_error {
  using std::runtime_error::runtime_error;
};

using Bytes = std::span<const unsigned char>;

// Errors of all functions below: Damage if the bytes end too early.
[[nodiscard]] inline Bytes part(Bytes bytes, std::size_t at, std::size_t size) {
  if (at > bytes.size() || size > bytes.size() - at) throw Damage("it ends early");
  return bytes.subspan(at, size);
}

[[nodiscard]] inline std::uint64_t numberAt(Bytes bytes, std::size_t at, std::size_t size) {
  std::uint64_t value = 0;
  const Bytes own = part(bytes, at, size);
  for (std::size_t i = 0; i < size; ++i) value |= std::uint64_t{own[i]} << (8 * i);
  return value;
}
[[nodiscard]] inline std::uint16_t u16(Bytes bytes, std::size_t at) {
  return static_cast<std::uint16_t>(numberAt(bytes, at, 2));
}
[[nodiscard]] inline std::uint32_t u24(Bytes bytes, std::size_t at) {
  return static_cast<std::uint32_t>(numberAt(bytes, at, 3));
}
[[nodiscard]] inline std::uint32_t u32(Bytes bytes, std::size_t at) {
  return static_cast<std::uint32_t>(numberAt(bytes, at, 4));
}

// Where a row lies: the page, and the number of the row on it.
struct RowPlace {
  std::uint32_t page = 0;
  std::uint8_t row = 0;
  auto operator<=>(const RowPlace&) const = default;
};
[[nodiscard]] inline RowPlace rowPlaceAt(Bytes bytes, std::size_t at) {
  const Bytes own = part(bytes, at, 4);
  return {u24(own, 1), own[0]};
}
[[nodiscard]] inline std::string placeText(const RowPlace& place) {
  return "page " + std::to_string(place.page) + ", row " + std::to_string(place.row);
}

}  // namespace pelmora::access
