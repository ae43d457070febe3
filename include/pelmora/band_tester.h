// The band test, which decides whether a fitted curve may be used.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <functional>
#include <span>
#include <string>

namespace pelmora {

// The role of Kestrand: tests points against a predicted curve, read as a table.
class PELMORA_API BandTester {
 public:
  virtual ~BandTester() = default;
  std::function<void(const std::string& sMessage)> StatusUpdate;
  bool RatioMode = false;
  float BandWidth = 0;  // per cent, for TestPoint

  // Is the predicted curve acceptable as a rotor ratio curve?
  virtual bool TestRatioCurve(std::span<const double> x, std::span<const double> y) = 0;
  // Do the raw points lie within bandPercent of the predicted curve?
  virtual bool TestBand(std::span<const double> rawX, std::span<const double> rawY,
                        std::span<const double> predictedX, std::span<const double> predictedY,
                        float& bandPercent) = 0;
  // The segment that TestPoint tests against.
  virtual void SetSegment(double x0, double y0, double x1, double y1) = 0;
  // Is the point inside the band around the segment?
  virtual bool TestPoint(double x, double y) = 0;
  // Explains the last failed test.
  [[nodiscard]] virtual std::string FailureText() const = 0;
};

}  // namespace pelmora
