// Flow in service against rows of the stand, from which the curves were derived.
// SPDX-License-Identifier: MIT
#include "flow/volume_flow.h"

#include "tests/support/csv_table.h"

#include <pelmora/calibration/failure.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace pelmora::flow {
namespace {

double bend(double roshko) { return 1318 * (1 - 0.9 / (roshko + 6)); }

TEST(volume_flow, is_what_the_stand_measured) {
  const auto rows = test::readCsv(test::exampleData("stand-dual-rotor.csv"));
  const auto truth = test::readCsv(test::exampleData("stand-dual-rotor-truth.csv"));
  int checked = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].at("JobRecordID") != "1001" && rows[i].at("JobRecordID") != "1002") continue;
    const auto v = [&](int n) { return std::stod(rows[i].at("V" + std::to_string(n))); };
    const double strouhalA = std::stod(truth[i].at("strouhal_a"));
    const double strouhalB = std::stod(truth[i].at("strouhal_b"));
    const Service service{v(5), v(12), {}};
    const DualFlow found =
        dualFlow([&](double) { return strouhalA; }, [&](double) { return strouhalB; }, v(4) / v(3),
                 v(21) / v(20), service);
    const double gallonsPerSecond = v(2) / v(1);
    // The file's 12 digits.
    EXPECT_NEAR(found.flow / gallonsPerSecond, 1, 1e-10);
    EXPECT_NEAR(found.rotorB.flow / gallonsPerSecond, 1, 1e-10);
    EXPECT_NEAR(found.differencePercent, 0, 1e-8);
    EXPECT_NEAR(found.rotorA.roshko / std::stod(truth[i].at("roshko_a")), 1, 1e-10);
    ++checked;
  }
  EXPECT_EQ(checked, 48);
}

TEST(volume_flow, expands_with_the_material_of_the_body) {
  // Aluminium, 13E-6 per F, 100 F above the reference.
  const Service service{1, 170, {.linear = 13e-6}};
  const MeterFlow found = volumeFlow([](double) { return 1000.0; }, 500, service);
  EXPECT_DOUBLE_EQ(found.roshko, 500 * 1.0026);
  EXPECT_DOUBLE_EQ(found.flow, 0.5 * 1.0039);
}

double quotient(double roshko) { return 0.97 - 0.5 / (roshko + 8); }

TEST(viscosity_of_quotient, follows_from_both_frequencies) {
  const double temperature = 88;
  const BodyExpansion body;
  const double fB = 100, x = 80;
  const double fA = fB * quotient(x);
  const double expected = (fA + fB) * body.roshkoFactor(temperature) / x;
  EXPECT_NEAR(viscosityOfQuotient(quotient, {5, 2000}, fA, fB, temperature), expected,
              1e-9 * expected);
}

TEST(viscosity_of_quotient, is_found_at_either_end_of_the_curve) {
  const auto rising = [](double x) { return 0.9 + 0.01 * std::log(x); };
  for (const double x : {5.0, 2000.0}) {
    EXPECT_NEAR(viscosityOfQuotient(rising, {5, 2000}, 100 * rising(x), 100, 70),
                (100 * rising(x) + 100) / x, 1e-9 * 100 / x)
        << x;
  }
}

TEST(viscosity_of_quotient, is_refused_where_it_is_not_unique) {
  const auto turning = [](double x) { return 1 + 0.1 * std::pow(std::log(x / 50), 2); };
  EXPECT_THROW((void)viscosityOfQuotient(turning, {5, 500}, 105, 100, 70), calibration::BadData);
  EXPECT_THROW((void)viscosityOfQuotient(quotient, {5, 2000}, 150, 100, 70),
               calibration::OutOfRange);
}

TEST(volume_flow, refuses_what_no_meter_shows) {
  EXPECT_THROW((void)volumeFlow(bend, 0, {1.2, 70, {}}), calibration::BadData);
  EXPECT_THROW((void)volumeFlow(bend, 100, {0, 70, {}}), calibration::BadData);
  EXPECT_THROW((void)volumeFlow([](double) { return -1.0; }, 100, {1, 70, {}}),
               calibration::BadData);
}

}  // namespace
}  // namespace pelmora::flow
