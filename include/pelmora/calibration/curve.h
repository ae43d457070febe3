// A curve read at any Roshko number, and how far it has moved since an earlier calibration.
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
  // Half widths of the 95 % bands in units of Strouhal; absent where they are not known.
  std::optional<double> confidence, prediction;
};

// A curve's value between its points.
struct CurveValue {
  double roshko = 0, strouhal = 0;
  // Half widths of the 95 % bands in units of the value that was asked for; absent where they are
  // not known.
  std::optional<double> confidence, prediction;
  // Beyond the ends: on the straight line through the last two points, without a band.
  bool isExtrapolated = false;
};

// A curve as its table holds it, read as a flow computer reads it: linearly between neighbouring
// points, the bands likewise. A value: it knows nothing of the database that it came from.
//
//   const Curve curve = lab.curve(meter, "Rotor A");
//   const CurveValue at = curve(120.0);
class PELMORA_API Curve {
 public:
  // Errors: BadData for less than two points, and where Roshko does not strictly rise.
  explicit Curve(std::vector<CurvePoint> points);
  explicit Curve(const PointArray& table);

  [[nodiscard]] const std::vector<CurvePoint>& points() const { return points_; }
  // The table alone: n points, Roshko and Strouhal.
  [[nodiscard]] PointArray table() const;
  [[nodiscard]] double lowestRoshko() const { return points_.front().roshko; }
  [[nodiscard]] double highestRoshko() const { return points_.back().roshko; }

  // Strouhal at a Roshko number.
  [[nodiscard]] CurveValue operator()(double roshko) const;

  // Roshko at a Strouhal number. The bands are those of Strouhal over the slope of the table.
  //
  // Errors: BadData where Strouhal does not strictly rise or fall all along (it names the Roshko
  //         number at which the curve turns); OutOfRange where the straight line beyond an end
  //         reaches that Strouhal number at no Roshko number above 0.
  [[nodiscard]] CurveValue inverse(double strouhal) const;

 private:
  std::vector<CurvePoint> points_;
};

struct Shift {
  double roshko = 0, percent = 0;  // of the earlier curve
};

// From an earlier curve to the one of now.
struct Comparison {
  // At every point of either table within the range that both cover, both read linearly: no larger
  // or smaller shift lies between two of them. Empty where the curves have no range in common.
  std::vector<Shift> shifts;
  double meanPercent = 0;  // over ln Roshko
  Shift lowest, highest;

  // The one of lowest and highest that is farther from 0.
  [[nodiscard]] const Shift& largest() const {
    const auto size = [](double percent) { return percent < 0 ? -percent : percent; };
    return size(lowest.percent) > size(highest.percent) ? lowest : highest;
  }
};

// 100 (now - earlier) / |earlier|. Rows of a table that are not finite are left out.
[[nodiscard]] PELMORA_API Comparison compareCurves(const PointArray& earlier,
                                                   const PointArray& now);

}  // namespace pelmora::calibration
