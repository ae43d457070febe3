// SPDX-License-Identifier: MIT
#include "band/band.h"

#include "band/predicted_table.h"
#include "base/number_text.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace pelmora {
namespace {

using band::PredictedTable;
using band::TablePoint;
using band::TableReading;

// A limit such as 100 + 0.1 % is not a double: what is this near to it counts as on it.
constexpr double roundingOfLimit = 4 * std::numeric_limits<double>::epsilon();

// How far the point lies from the reading, in per cent of the reading; 0 inside a jump.
double deviationPercent(const TableReading& reading, double y) {
  const double nearest = std::clamp(y, reading.lowest, reading.highest);
  if (y == nearest) return 0;
  return (y - nearest) / std::fabs(nearest) * 100;  // infinite where the curve is zero
}

bool isInside(const TableReading& reading, double y, double percent) {
  const double nearest = std::clamp(y, reading.lowest, reading.highest);
  if (y == nearest) return true;
  if (percent == 0) return false;
  const double size = std::fabs(nearest);
  return std::fabs(y - nearest) <= percent / 100 * size + roundingOfLimit * size;
}

// A single's value as its shortest decimal text says: 0.1 % is meant, not 0.100000001490116 %.
double meantPercent(float percent) {
  if (!std::isfinite(percent)) return percent;
  const double scale = 1e7;
  const double meant = std::round(static_cast<double>(percent) * scale) / scale;
  return static_cast<float>(meant) == percent ? meant : static_cast<double>(percent);
}

class SegmentBandTester : public BandTester {
 public:
  bool TestRatioCurve(std::span<const double> x, std::span<const double> y) override {
    const PredictedTable table(x, y);
    if (!table.defect().empty()) return failed("Ratio curve test failed: " + table.defect() + ".");
    std::size_t rises = 0;
    TablePoint worst, worstBefore;
    double most = 0, lowestSoFar = std::numeric_limits<double>::infinity();
    TablePoint before;  // the lowest point at a smaller x
    const auto& points = table.points();
    for (std::size_t k = 0; k < points.size();) {
      std::size_t end = k;
      TablePoint lowest = points[k];
      for (; end < points.size() && points[end].x == points[k].x; ++end) {
        if (points[end].y > lowestSoFar) {
          ++rises;
          if (points[end].y - lowestSoFar > most) {
            most = points[end].y - lowestSoFar, worst = points[end], worstBefore = before;
          }
        }
        if (points[end].y < lowest.y) lowest = points[end];
      }
      if (lowest.y < lowestSoFar) lowestSoFar = lowest.y, before = lowest;
      k = end;
    }
    if (rises == 0) return passed();
    return failed("Ratio curve test failed: the curve rises at " + numberText(rises) + " of " +
                  numberText(points.size()) + " points; most from x = " +
                  numberText(worstBefore.x) + ", y = " + numberText(worstBefore.y) +
                  " to x = " + numberText(worst.x) + ", y = " + numberText(worst.y) + ".");
  }

  bool TestBand(std::span<const double> rawX, std::span<const double> rawY,
                std::span<const double> predictedX, std::span<const double> predictedY,
                float& bandPercent) override {
    const PredictedTable table(predictedX, predictedY);
    if (!table.defect().empty()) return failed("Band test failed: " + table.defect() + ".");
    if (rawX.size() != rawY.size()) {
      return failed("Band test failed: the raw points have columns of different length.");
    }
    const double percent = meantPercent(bandPercent);
    if (!(percent >= 0)) {
      return failed("Band test failed: a band of " + numberText(bandPercent) + "% is not valid.");
    }
    PredictedTable::Reader reader(table);
    std::size_t tested = 0, outside = 0, worst = 0;
    double worstPercent = 0;
    for (std::size_t k = 0; k < rawX.size(); ++k) {
      double deviation = std::numeric_limits<double>::infinity();
      if (std::isfinite(rawX[k]) && std::isfinite(rawY[k])) {
        const auto reading = reader.at(rawX[k]);
        if (!reading) continue;
        deviation = isInside(*reading, rawY[k], percent) ? 0 : deviationPercent(*reading, rawY[k]);
      }
      ++tested;
      if (deviation == 0) continue;
      if (outside++ == 0 || std::fabs(deviation) > std::fabs(worstPercent)) {
        worst = k, worstPercent = deviation;
      }
    }
    if (outside == 0) return passed();
    return failed("Band test failed: " + numberText(outside) + " of " + numberText(tested) +
                  " points outside the band of " + numberText(bandPercent) +
                  "%; the worst is x = " + numberText(rawX[worst]) +
                  ", y = " + numberText(rawY[worst]) + ", " + awayText(worstPercent) + ".");
  }

  void SetSegment(double x0, double y0, double x1, double y1) override {
    from_ = {x0, y0};
    to_ = {x1, y1};
  }

  bool TestPoint(double x, double y) override {
    const double xs[]{from_.x, to_.x}, ys[]{from_.y, to_.y};
    const PredictedTable table(xs, ys);
    const double percent = meantPercent(BandWidth);
    const std::string place = "x = " + numberText(x) + ", y = " + numberText(y);
    const auto reading = table.at(x);
    if (!reading.has_value() || !std::isfinite(y) || !(percent >= 0)) {
      return failed("Point test failed: " + place + " cannot be tested against the segment.");
    }
    if (isInside(*reading, y, percent)) return passed();
    return failed("Point test failed: 1 of 1 points outside the band of " + numberText(BandWidth) +
                  "%; the worst is " + place + ", " + awayText(deviationPercent(*reading, y)) +
                  ".");
  }

  [[nodiscard]] std::string FailureText() const override { return failure_; }

 private:
  static std::string awayText(double percent) {
    if (!std::isfinite(percent)) return "which has no distance in per cent from the curve";
    // Seven digits: the distance is a small difference of measured values.
    const auto size = static_cast<float>(std::fabs(percent));
    return numberText(size) + (percent > 0 ? "% above the curve" : "% below the curve");
  }
  bool passed() {
    failure_.clear();
    return true;
  }
  bool failed(std::string text) {
    failure_ = std::move(text);
    return false;
  }

  TablePoint from_{std::numeric_limits<double>::quiet_NaN(), 0}, to_ = from_;
  std::string failure_;
};

}  // namespace

std::unique_ptr<BandTester> createBandTester() { return std::make_unique<SegmentBandTester>(); }

}  // namespace pelmora
