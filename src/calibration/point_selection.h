// Which points of a series a selection means.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/steps/whole_part.h"

#include <pelmora/calibration/points.h>

#include <array>
#include <cstddef>
#include <set>
#include <string>

namespace pelmora::calibration {

using WholeParts = std::array<steps::WholePart, 4>;
using SelectedNumbers = std::array<std::set<std::size_t>, 4>;  // by part

// Errors: BadData if the selection is not valid, names a point that does not exist or selects none.
//
// place: the series, for messages.
[[nodiscard]] SelectedNumbers selectedNumbers(const PointSelection& selection,
                                              const WholeParts& parts, const std::string& place);

}  // namespace pelmora::calibration
