// Any result file gives sorted points, or one of the documented errors.
// SPDX-License-Identifier: MIT
#include "calibration/steps/result_file.h"
#include "fuzz/scratch_file.h"

#include <pelmora/error.h>

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pelmora;
  PointArray points;
  try {
    calibration::steps::parseResultFile(std::string(fuzz::textOf(data, size)), points);
    for (std::size_t i = 1; i < points.size(); ++i) {
      if (points(i, 0) < points(i - 1, 0)) __builtin_trap();
    }
  } catch (const Error& error) {
    if (error.number() != 6 && error.number() != 9 && error.number() != 13) __builtin_trap();
  }
  return 0;
}
