// The size of a stand's contribution at one operating point.
// SPDX-License-Identifier: MIT
#pragma once

#include "uncertainty/stand_uncertainty.h"

#include <optional>

namespace pelmora::uncertainty {

// The values that absolute uncertainties refer to.
struct OperatingPoint {
  std::optional<units::Measure> flow, viscosity, frequency;
};

// The standard uncertainty as a share of its quantity, or in degrees F.
//
// Errors: BadData if it is absolute and the value that it refers to is not known or not above 0.
[[nodiscard]] double componentSize(const Component& component, const OperatingPoint& at);

}  // namespace pelmora::uncertainty
