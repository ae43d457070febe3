// Any file of points gives finite points, or a message of one line.
// SPDX-License-Identifier: MIT
#include "apps/pelmora/input/csv_points.h"
#include "apps/pelmora/trouble.h"
#include "fuzz/scratch_file.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pelmora;
  static const fuzz::ScratchFolder folder;
  static const std::string path = folder.file("points.csv");
  fuzz::writeFile(path, fuzz::textOf(data, size));
  try {
    const PointArray points = cli::readCsvPoints(path, {}).points;
    if (points.empty()) __builtin_trap();
    for (std::size_t i = 0; i < points.size(); ++i) {
      if (!std::isfinite(points(i, 0)) || !std::isfinite(points(i, 1))) __builtin_trap();
    }
  } catch (const cli::Trouble& trouble) {
    const std::string line = cli::errorLine(trouble);
    if (line.find('\n') != std::string::npos || line.size() > 2000) __builtin_trap();
  }
  return 0;
}
