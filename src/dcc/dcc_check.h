// Rules for a digital calibration certificate that its schema does not check.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::dcc {

struct Violation {
  std::size_t line = 0;  // of the element
  std::string what;      // one clause
  bool operator==(const Violation&) const = default;
};

struct CheckRules {
  // The laboratory's CMC in per cent of the value: no measured value with a smaller expanded
  // uncertainty. Absent: not checked.
  std::optional<double> cmcPercent;
};

// In the order of the file:
// - values, uncertainties, coverage factors and probabilities are finite numbers, also where a
//   schema would let NaN and INF pass; uncertainties are not negative, factors above 0,
//   probabilities between 0 and 1;
// - a list of values has one unit, or one for each of them, and the same for all that belongs to
//   its uncertainty; quantities of one dcc:list are equally long;
// - an expanded uncertainty has its coverage factor and probability;
// - units are SI units; in si:hybrid the first one is;
// - no expanded uncertainty is below the CMC.
//
// Errors: BadData if the text is not XML or its root is not a digital calibration certificate;
//         `where` names the file.
[[nodiscard]] std::vector<Violation> checkCertificate(std::string_view xml,
                                                      const std::string& where,
                                                      const CheckRules& rules = {});

}  // namespace pelmora::dcc
