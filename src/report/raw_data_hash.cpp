// SPDX-License-Identifier: MIT
#include "report/raw_data_hash.h"

#include "base/full_number.h"
#include "base/sha256.h"

namespace pelmora::report {

std::string rawDataHash(std::span<const calibration::StoredSeries* const> series) {
  std::string lines;
  for (const calibration::StoredSeries* entry : series) {
    for (std::size_t part = 0; part < entry->raw.size(); ++part) {
      const PointArray& points = entry->raw[part];
      for (std::size_t i = 0; i < points.size(); ++i) {
        lines += entry->name + '\t' + std::to_string(part + 1) + '\t' +
                 fullNumberText(points(i, 0)) + '\t' + fullNumberText(points(i, 1)) + '\n';
      }
    }
  }
  return sha256Hex(lines);
}

}  // namespace pelmora::report
