// A host of the whole component: a fresh curve database, real adapters, the operator's boxes kept.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/scratch_folder.h"

#include <pelmora/pelmora.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace pelmora::test {

// Points of a smooth curve with a ripple, evenly spaced in log10(x) over low..high.
inline PointArray ripplingPoints(double low, double high, std::size_t count, double level) {
  PointArray points(count);
  const double step = std::log10(high / low) / static_cast<double>(count - 1);
  for (std::size_t i = 0; i < count; ++i) {
    const double x = low * std::pow(10.0, step * static_cast<double>(i));
    points(i, 0) = x;
    points(i, 1) = level * (1 - 1 / (x + 5)) * (1 + 1e-4 * std::sin(7.0 * static_cast<double>(i)));
  }
  return points;
}

class HostTest : public testing::Test {
 protected:
  HostTest() {
    createCurveDatabase(path);
    platform().componentFolder = scratch.path().string();
    platform().messageBox = [this](const std::string& text, int, const std::string&) {
      boxes.push_back(text);
      return 1;
    };
    std::ofstream(scratch.file("equations.txt"), std::ios::binary)
        << "Cubic\ta+b*log(x)+c*log(x)^2+d*log(x)^3\r\nSquare\ta+b*log(x)+c*log(x)^2\r\n";
  }
  ~HostTest() override { platform() = saved_; }

  // An object at the test's database.
  [[nodiscard]] std::unique_ptr<RawData> newObject() const {
    auto object = std::make_unique<RawData>();
    object->dbDirSetByString(path);
    object->BandPercent(20);
    return object;
  }
  const ScratchFolder scratch;
  const std::string path = scratch.file("curves.db");
  std::vector<std::string> boxes;

 private:
  Platform saved_ = platform();
};

}  // namespace pelmora::test
