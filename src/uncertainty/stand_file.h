// The file in which a laboratory writes down the uncertainty of a stand.
// SPDX-License-Identifier: MIT
#pragma once

#include "uncertainty/stand_uncertainty.h"

#include <string>
#include <string_view>

namespace pelmora::uncertainty {

// The text of such a file; docs/file_formats.md, "Stand uncertainty", describes it.
//
//   [stand]
//   name = Stand 3
//   cmc = 0.05 %
//
//   [flow: master meter]
//   expanded = 0.04 %
//   k = 2
//
//   [viscosity]
//   half-width = 0.2 %
//   distribution = rectangular
//
// where: names the file in errors.
// Errors: BadData that names line, setting and remedy, for everything that is not understood.
[[nodiscard]] StandUncertainty readStandUncertainty(std::string_view text,
                                                    const std::string& where);

}  // namespace pelmora::uncertainty
