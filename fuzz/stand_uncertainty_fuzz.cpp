// Any file of a stand's uncertainty is read, or refused with a message that says where.
// SPDX-License-Identifier: MIT
#include "fuzz/scratch_file.h"
#include "uncertainty/stand_file.h"

#include <pelmora/calibration/failure.h>

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pelmora;
  try {
    (void)uncertainty::readStandUncertainty(fuzz::textOf(data, size), "stand.ini");
  } catch (const calibration::BadData& failure) {
    if (std::string(failure.what()).empty() || failure.remedy().empty()) __builtin_trap();
  }
  return 0;
}
