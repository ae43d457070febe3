// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/shift_output.h"

#include <nlohmann/json.hpp>

namespace pelmora::cli {

nlohmann::json judgedShiftJson(const std::optional<calibration::CurveShift>& shift) {
  if (!shift) return nullptr;
  return {{"roshko", shift->roshko},
          {"percent", shift->percent},
          {"uncertaintyPercent", shift->uncertaintyPercent},
          {"coverageFactor", shift->coverageFactor},
          {"en", shift->en},
          {"isSignificant", shift->isSignificant()}};
}

}  // namespace pelmora::cli
