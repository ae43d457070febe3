// A curve database that the service works with, and points to fit.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/curve_place.h"
#include "tests/support/places.h"
#include "tests/support/scratch_folder.h"

#include <pelmora/calibration.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace pelmora::calibration::test {

// Strouhal falls slowly with ln Roshko: a polynomial of order 2, exact.
inline PointArray smoothPoints(std::size_t count, double low = 10, double high = 1000) {
  PointArray points(count);
  for (std::size_t i = 0; i < count; ++i) {
    const double share = static_cast<double>(i) / static_cast<double>(count - 1);
    const double x = low * std::pow(high / low, share), log = std::log10(x);
    points(i, 0) = x;
    points(i, 1) = 1300 + 20 * log - 4 * log * log;
  }
  return points;
}

inline std::string exampleData(const std::string& name) {
  return pelmora::test::sourceFolder() + "/examples/data/" + name;
}

class ServiceTest : public testing::Test {
 protected:
  void SetUp() override {
    if (const std::string lack = pelmora::test::lackOfServer(); !lack.empty()) GTEST_SKIP() << lack;
  }
  [[nodiscard]] const std::string& path() const { return path_; }
  // A file that the test makes.
  [[nodiscard]] std::string scratchFile(const std::string& name) const {
    return folder_.file(name);
  }
  [[nodiscard]] Database lab() { return isMade_ ? open(path()) : made(); }

 private:
  Database made() {
    isMade_ = true;
    return create(path());
  }

  pelmora::test::ScratchFolder folder_;
  const std::string path_ = pelmora::test::newCurvePlace(folder_);
  bool isMade_ = false;
};

// What `action` throws as a Kind; a failure of the test where it throws nothing or something else.
template <class Kind, class Action>
Kind failureOf(Action&& action) {
  try {
    action();
  } catch (const Kind& failure) {
    return failure;
  } catch (const std::exception& other) {
    ADD_FAILURE() << "another exception: " << other.what();
    return Kind({"", "", ""});
  }
  ADD_FAILURE() << "no exception";
  return Kind({"", "", ""});
}

}  // namespace pelmora::calibration::test
