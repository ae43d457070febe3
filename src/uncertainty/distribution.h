// The distributions that describe what is known about an input quantity.
// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace pelmora::uncertainty {

enum class Distribution { normal, rectangular, triangular, uShaped };

// "normal", "rectangular", "triangular", "U-shaped".
[[nodiscard]] std::string_view distributionName(Distribution distribution);

// Half-width over standard uncertainty: sqrt(3), sqrt(6) and sqrt(2); 0 for the normal
// distribution, which has none.
//
// Source: JCGM 100:2008, 4.3.7, 4.3.9; JCGM 101:2008, 6.4.6.
[[nodiscard]] double halfWidthDivisor(Distribution distribution);

}  // namespace pelmora::uncertainty
