// A stored curve's values between its points, with their uncertainty.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/curve.h>

#include <span>

namespace pelmora::calibration {

// Errors: BadData for fewer than two points, and if Roshko does not strictly rise.
void requireTable(std::span<const CurvePoint> curve);

// Read as a flow computer reads the table: linearly between neighbouring points, bands likewise.
//
// Errors: as requireTable.
[[nodiscard]] PELMORA_API CurveValue strouhalAt(std::span<const CurvePoint> curve, double roshko);

// The other way round; the bands are those of Strouhal over the slope of the table.
//
// Errors: as requireTable; BadData if Strouhal does not strictly rise or fall all along (it
//         names the Roshko number at which the curve turns); OutOfRange where the straight line
//         beyond an end does not reach that Strouhal number at any Roshko number above 0.
[[nodiscard]] PELMORA_API CurveValue roshkoAt(std::span<const CurvePoint> curve, double strouhal);

}  // namespace pelmora::calibration
