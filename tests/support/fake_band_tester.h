// A band tester that answers as the test tells it.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/journal.h"

#include <pelmora/band_tester.h>

#include <cmath>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace pelmora::test {

using Values = std::vector<double>;

// One call of TestBand.
struct FakeBandCall {
  Values rawX, rawY, predictedX, predictedY;
  float percent = 0;
  bool ratioMode = false;
};

// A point lies inside the band when its y differs from the straight line between the segment's ends
// by at most `percent` per cent of the line's y.
struct Segment {
  double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
  [[nodiscard]] bool holds(double x, double y, double percent) const {
    const double line = x1 == x0 ? y0 : y0 + (y1 - y0) * (x - x0) / (x1 - x0);
    return std::abs(y - line) <= percent / 100 * std::abs(line);
  }
};

// Journal lines: "ratio test", "band test".
struct FakeBandScript {
  Journal& journal;
  std::function<bool(std::span<const double> x, std::span<const double> y)> ratioCurve{};
  std::function<bool(const FakeBandCall&, float& percent)> band{};
  std::string failureText = "outside the band";
  std::vector<std::string> statusTexts{};  // raised during each band test
  std::vector<FakeBandCall> bandCalls{};
  std::vector<float> bandWidths{};  // as they stood at each tested point
  int alive = 0;
};

class FakeBandTester : public BandTester {
 public:
  explicit FakeBandTester(FakeBandScript& script) : script_(script) { ++script_.alive; }
  ~FakeBandTester() override { --script_.alive; }

  bool TestRatioCurve(std::span<const double> x, std::span<const double> y) override {
    script_.journal.push_back("ratio test");
    return script_.ratioCurve ? script_.ratioCurve(x, y) : true;
  }
  bool TestBand(std::span<const double> rawX, std::span<const double> rawY,
                std::span<const double> predictedX, std::span<const double> predictedY,
                float& bandPercent) override {
    script_.journal.push_back("band test");
    const FakeBandCall call{{rawX.begin(), rawX.end()},
                            {rawY.begin(), rawY.end()},
                            {predictedX.begin(), predictedX.end()},
                            {predictedY.begin(), predictedY.end()},
                            bandPercent,
                            RatioMode};
    script_.bandCalls.push_back(call);
    for (const std::string& text : script_.statusTexts) StatusUpdate(text);
    return script_.band ? script_.band(call, bandPercent) : true;
  }
  void SetSegment(double x0, double y0, double x1, double y1) override {
    segment_ = {x0, y0, x1, y1};
  }
  bool TestPoint(double x, double y) override {
    script_.bandWidths.push_back(BandWidth);
    return segment_.holds(x, y, static_cast<double>(BandWidth));
  }
  std::string FailureText() const override { return script_.failureText; }

 private:
  FakeBandScript& script_;
  Segment segment_;
};

}  // namespace pelmora::test
