// SPDX-License-Identifier: MIT
#include "report/raw_data_hash.h"

#include "report/sha256.h"

#include <array>
#include <charconv>

namespace pelmora::report {
namespace {

std::string exactText(double value) {
  std::array<char, 40> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                 std::chars_format::general, 17);
  return {buffer.data(), end.ptr};
}

}  // namespace

std::string rawDataHash(std::span<const calibration::StoredSeries* const> series) {
  std::string lines;
  for (const calibration::StoredSeries* entry : series) {
    for (std::size_t part = 0; part < entry->raw.size(); ++part) {
      const PointArray& points = entry->raw[part];
      for (std::size_t i = 0; i < points.size(); ++i) {
        lines += entry->name + '\t' + std::to_string(part + 1) + '\t' + exactText(points(i, 0)) +
                 '\t' + exactText(points(i, 1)) + '\n';
      }
    }
  }
  return sha256Hex(lines);
}

}  // namespace pelmora::report
