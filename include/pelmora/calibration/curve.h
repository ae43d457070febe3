// A curve evaluated at any Roshko number, and its shift since an earlier calibration.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>
#include <pelmora/types.h>

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace pelmora::calibration {

// A point of a curve's table.
struct CurvePoint {
  double roshko = 0, strouhal = 0;
  // Half-widths of the 95 % bands in units of Strouhal; absent if they are not known.
  std::optional<double> confidence, prediction;
};

// A curve's value between its points.
struct CurveValue {
  double roshko = 0, strouhal = 0;
  // Half-widths of the 95 % bands in units of the requested value; absent if they are
  // not known.
  std::optional<double> confidence, prediction;
  // Beyond the ends: on the straight line through the two outermost points, without a band.
  bool isExtrapolated = false;
};

// A curve given by its table and evaluated as a flow computer does: by linear interpolation between
// neighbouring points, the bands too. A value, independent of the database that it came from.
//
//   const Curve curve = lab.curve(meter, "Rotor A");
//   const CurveValue at = curve(120.0);
class PELMORA_API Curve {
 public:
  // Errors: BadData for fewer than two points, or if Roshko does not strictly increase.
  explicit Curve(std::vector<CurvePoint> points);
  explicit Curve(const PointArray& table);

  [[nodiscard]] const std::vector<CurvePoint>& points() const { return points_; }
  // The table alone: n points, Roshko and Strouhal.
  [[nodiscard]] PointArray table() const;
  [[nodiscard]] double lowestRoshko() const { return points_.front().roshko; }
  [[nodiscard]] double highestRoshko() const { return points_.back().roshko; }

  // Strouhal at a Roshko number.
  [[nodiscard]] CurveValue operator()(double roshko) const;

  // Roshko at a Strouhal number. The bands are those of Strouhal divided by the slope of the table.
  //
  // Errors: BadData if Strouhal neither strictly rises nor strictly falls throughout (it names the
  //         Roshko number at which the curve turns); OutOfRange if the straight line beyond an end
  //         does not reach that Strouhal number at any Roshko number above 0.
  [[nodiscard]] CurveValue inverse(double strouhal) const;

 private:
  std::vector<CurvePoint> points_;
};

struct Shift {
  double roshko = 0, percent = 0;  // of the earlier curve
};

// The change from an earlier curve to the current one.
struct Comparison {
  // At every point of either table within their common range, with linear interpolation: no larger
  // or smaller shift lies between two of them. Empty if the curves have no range in common.
  std::vector<Shift> shifts;
  double meanPercent = 0;  // over ln Roshko
  Shift lowest, highest;

  // Whichever of lowest and highest is farther from 0.
  [[nodiscard]] const Shift& largest() const {
    const auto size = [](double percent) { return percent < 0 ? -percent : percent; };
    return size(lowest.percent) > size(highest.percent) ? lowest : highest;
  }
};

// 100 (now - earlier) / |earlier|. Table rows that are not finite are left out.
[[nodiscard]] PELMORA_API Comparison compareCurves(const PointArray& earlier,
                                                   const PointArray& now);

}  // namespace pelmora::calibration
