// The curve of a meter as flow computers want it, against a measurement worked out by hand.
// SPDX-License-Identifier: MIT
#include "tables/table_forms.h"

#include <pelmora/calibration/failure.h>

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace pelmora::tables {
namespace {

Form meter() {
  return {[](std::span<const double> roshko) {
            std::vector<double> strouhal;
            for (const double x : roshko) strouhal.push_back(1000 + x);
            return strouhal;
          },
          {10, 1000}};
}

// At 120 F: Roshko = f/v (1 + 1.92E-5 x 50), Strouhal = K (1 + 2.88E-5 x 50).
constexpr double roshkoFactor = 1.00096, strouhalFactor = 1.00144;

TEST(table_forms, are_the_curve_itself_where_the_meter_does_not_expand) {
  const Form form = universalViscosityForm(meter(), {});
  EXPECT_EQ(form.range.low, 10);
  EXPECT_EQ(form.curve(std::array{50.0}).front(), 1050);
}

TEST(table_forms, take_the_expansion_out_of_the_universal_viscosity_curve) {
  const Form form = universalViscosityForm(meter(), {.temperatureF = 120, .expansion = {}});
  EXPECT_DOUBLE_EQ(form.range.high, 1000 / roshkoFactor);
  EXPECT_NEAR(form.curve(std::array{50.0}).front(), (1000 + 50 * roshkoFactor) / strouhalFactor,
              1e-9);
}

TEST(table_forms, give_the_frequency_in_a_fluid) {
  const Form form = frequencyForm(meter(), 1.2, {.temperatureF = 120, .expansion = {}});
  EXPECT_NEAR(form.range.low, 10 * 1.2 / roshkoFactor, 1e-12);
  // 60 Hz / 1.2 cSt = 50 Hz/cSt.
  EXPECT_NEAR(form.curve(std::array{60.0}).front(), (1000 + 50 * roshkoFactor) / strouhalFactor,
              1e-9);
}

TEST(table_forms, refuse_a_fluid_without_viscosity) {
  EXPECT_THROW((void)frequencyForm(meter(), 0, {}), calibration::BadData);
}

}  // namespace
}  // namespace pelmora::tables
