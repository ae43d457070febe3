// What no locale may change: stored numbers, fits, equation files, stand exports.
// SPDX-License-Identifier: MIT
#include "tests/support/comma_locale.h"
#include "tests/support/host_test.h"
#include "tests/support/stand_export.h"

#include <pelmora/stand.h>

namespace pelmora::test {
namespace {

class locale_independence : public HostTest {
 protected:
  // Under the C locale, then under the German one.
  template <class Action>
  void expectSame(Action&& action) {
    const auto expected = action();
    const CommaLocale comma(LC_ALL);
    if (!comma.isSet()) GTEST_SKIP() << CommaLocale::missing;
    EXPECT_EQ(action(), expected);
    EXPECT_THAT(boxes, testing::IsEmpty());
  }

  // Fitted, stored and read back.
  PointArray fitted() {
    const auto data = newObject();
    data->setMeterSN("M1");
    data->SetRaw("S", "M1", ripplingPoints(10.25, 1000.5, 20, 1000), 0, false);
    bool isEmpty = true;
    double xMin = 10.5;
    double xMax = 999.5;
    data->determineFittedCurve("S", "M1", isEmpty, xMin, xMax, "Roshko", "Strouhal", false);
    EXPECT_FALSE(isEmpty);
    EXPECT_TRUE(data->SetLastFitted(false));
    const MeterInfo stored = data->getFittedCurve("S", "M1");
    return stored.Series.empty() ? PointArray() : stored.Series.front().Fitted;
  }
};

TEST_F(locale_independence, of_raw_points_in_the_database) {
  expectSame([&] {
    const auto data = newObject();
    data->setMeterSN("M1");
    data->SetRaw("S", "M1", {{0.1, 1.0 / 3}, {1e-300, -2.5e300}}, 0, false);
    const MeterInfo read = data->GetRaw("S", "M1", 1);
    return read.Series.empty() ? PointArray() : read.Series.front().Raw[0].Points;
  });
}

TEST_F(locale_independence, of_fitted_curves) {
  expectSame([&] { return fitted(); });
}

TEST_F(locale_independence, of_numbers_in_equation_files) {
  std::ofstream(scratch.file("equations.txt"), std::ios::binary)
      << "Halves\ta+0.5*b*log(x)+2.5e-1*c*log(x)^2\r\n";
  expectSame([&] { return fitted(); });
}

TEST_F(locale_independence, of_a_stands_export) {
  const std::string file = scratch.file("stand.csv");
  std::ofstream(file) << standHeader() << '\n'
                      << exportLine("1001", {{1, "1.5"}, {2, "2e-3"}}) << '\n';
  expectSame([&] {
    const ValueTable points = standPoints(openDatabase(file), "1001");
    return std::vector<Value>{points(0, 0), points(1, 0)};
  });
}

}  // namespace
}  // namespace pelmora::test
