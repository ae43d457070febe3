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

std::string rawDataHash(std::span<const SeriesInfo* const> series) {
  std::string lines;
  for (const SeriesInfo* entry : series) {
    for (std::size_t part = 0; part < entry->Raw.size(); ++part) {
      const PointArray& points = entry->Raw[part].Points;
      for (std::size_t i = 0; i < points.size(); ++i) {
        lines += entry->SeriesName + '\t' + std::to_string(part + 1) + '\t' +
                 exactText(points(i, 0)) + '\t' + exactText(points(i, 1)) + '\n';
      }
    }
  }
  return sha256Hex(lines);
}

}  // namespace pelmora::report
