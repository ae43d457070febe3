// A fit as a command to type.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/options/fit_options.h"

#include <cstdint>
#include <optional>
#include <string>

namespace pelmora::cli {

struct FitCall {
  std::string database{}, meter{}, series{};
  std::int16_t calibration = -1;
  FitTests tests{};
  FitChoices choices{};
  std::optional<double> min{}, max{};
  std::string onRange{};  // empty: not given
  bool ratio = false, inverted = false, ignoreResiduals = false;
};

[[nodiscard]] std::string fitCommand(const FitCall& call);

}  // namespace pelmora::cli
