// Any equation file is read and fitted, or refused with a message.
// SPDX-License-Identifier: MIT
#include "fuzz/scratch_file.h"

#include <pelmora/calibration.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

namespace {

pelmora::PointArray calibrationPoints() {
  pelmora::PointArray points(14, 2);
  for (std::size_t i = 0; i < points.size(); ++i) {
    points(i, 0) = 10 * std::pow(1.6, static_cast<double>(i));
    points(i, 1) = 1000 * (1 - 2 / points(i, 0));
  }
  return points;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pelmora::calibration;
  static const std::array parts{calibrationPoints()};
  try {
    FitSettings settings;
    settings.equations =
        EquationList::parse(std::string(pelmora::fuzz::textOf(data, size)), "the fuzzed file");
    const auto& equations = settings.equations.equations();
    // More equations take long and show nothing new.
    if (equations.size() > 2) return -1;
    for (const auto& equation : equations) {
      const auto count = parameterCount(equation.Expression);
      if (count && *count > 25) __builtin_trap();
    }
    settings.points = 10;
    settings.choice = Choice::adjustedR2;
    const Fit result = fit(parts, settings);
    if (result.accepted() != result.reason().empty()) __builtin_trap();
  } catch (const Failure& failure) {
    if (std::string(failure.what()).empty()) __builtin_trap();
  }
  return 0;
}
