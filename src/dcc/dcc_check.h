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
  // The laboratory's calibration and measurement capability (CMC), in per cent of the value: a
  // smaller expanded uncertainty is a violation. Absent: not checked.
  std::optional<double> cmcPercent;
};

// Violations of these rules, in the order of the file:
// - Values, uncertainties, coverage factors and probabilities are finite numbers, even where the
//   schema accepts NaN and INF. Uncertainties are not negative, factors are above 0, probabilities
//   between 0 and 1.
// - A list of values has one unit or one per value; the same goes for its uncertainties, coverage
//   factors and probabilities. The quantities of a dcc:list have the same length.
// - An expanded uncertainty has its coverage factor and probability.
// - Units are SI units; in si:hybrid, the first one is.
// - No expanded uncertainty is below the CMC.
//
// Errors: BadData if the text is not XML or its root is not a digital calibration certificate;
//         `where` names the file.
[[nodiscard]] std::vector<Violation> checkCertificate(std::string_view xml,
                                                      const std::string& where,
                                                      const CheckRules& rules = {});

}  // namespace pelmora::dcc
