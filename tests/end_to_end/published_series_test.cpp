// Published measurements that a user brings as plain points.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <cmath>

namespace pelmora::test {
namespace {

using nlohmann::json;

class published_series : public CommandTest {
 protected:
  // For each equation by name.
  static json equation(const json& fit, const std::string& name) {
    for (const json& one : fit["equations"]) {
      if (one["name"] == name) return one;
    }
    ADD_FAILURE() << "no equation " << name;
    return {};
  }
};

// Least squares on Chebyshev polynomials of log10 x, computed apart from this program, gives the
// adjusted R2 of the orders 6, 8 and 10 (six printed digits) and the worst residual (two).
TEST_F(published_series, vortex_shedding_fits_as_an_independent_computation_does) {
  init();
  done({"raw", curves, data("real-vortex-shedding-strouhal.csv"), "--meter", "V", "--register",
        "--series", "Shedding", "--where", "set=2"});
  const json fit = done({"fit", curves, "--meter", "V", "--series", "Shedding", "--band", "1",
                         "--choose", "adjusted-r2", "--json"})
                       .json();
  EXPECT_EQ(fit["rawPoints"][0], 57);
  const std::vector<std::tuple<std::string, double, double>> expected{
      {"Polynomial 6th Order", 0.999661, 0.97},
      {"Polynomial 8th Order", 0.999716, 0.96},
      {"Polynomial 10th Order", 0.999754, 0.96}};
  for (const auto& [name, adjusted, worst] : expected) {
    const json found = equation(fit, name);
    EXPECT_NEAR(found["adjustedR2"].get<double>(), adjusted, 0.5e-6) << name;
    // The residual here is relative to the observed value, there to the curve: up to 1 % of it
    // apart.
    EXPECT_NEAR(std::fabs(found["worstResidualPercent"].get<double>()), worst, 0.02) << name;
  }
  EXPECT_TRUE(fit["stored"].get<bool>());
}

TEST_F(published_series, error_curve_of_eleven_points_is_fitted_and_stored) {
  init();
  done({"raw", curves, data("real-flow-meter-error-11pt.csv"), "--meter", "F", "--register",
        "--series", "Error", "--x", "flow_rate", "--y", "strouhal_relative"});
  const json fit = done({"fit", curves, "--meter", "F", "--series", "Error", "--json"}).json();
  EXPECT_TRUE(fit["stored"].get<bool>());
  EXPECT_EQ(fit["rawPoints"][0], 11);
  EXPECT_EQ(fit["range"]["min"], 3.25);
  EXPECT_EQ(fit["range"]["max"], 3110);
  const json stored = done({"show", curves, "--meter", "F", "--series", "Error", "--json"}).json();
  EXPECT_EQ(stored["curve"], fit["curve"]);
  EXPECT_EQ(stored["merged"].size(), 11U);
}

TEST_F(published_series, a_raw_part_replaces_its_own_points_alone) {
  init();
  const std::string first = write("a.csv", "1,10\n2,20\n"),
                    second = write("b.csv", "x,y\n3,30\n4,40\n5,50\n");
  done({"raw", curves, first, "--meter", "P", "--register", "--series", "S", "--part", "1"});
  done({"raw", curves, first, "--meter", "P", "--series", "S", "--part", "2"});
  done({"raw", curves, second, "--meter", "P", "--series", "S", "--part", "2"});
  const json raw = done({"show", curves, "--meter", "P", "--series", "S", "--json"}).json()["raw"];
  EXPECT_EQ(raw[0], json::parse("[[1,10],[2,20]]"));
  EXPECT_EQ(raw[1], json::parse("[[3,30],[4,40],[5,50]]"));
}

TEST_F(published_series, numbers_come_back_to_the_last_digit) {
  init();
  const std::string file =
      write("a.csv", "0.1,1234.56789012345678\n1e-300,-7\n1.7976931348623157e308,2\n");
  done({"raw", curves, file, "--meter", "P", "--register", "--series", "S"});
  const json raw =
      done({"show", curves, "--meter", "P", "--series", "S", "--json"}).json()["raw"][0];
  EXPECT_EQ(raw[0][0].get<double>(), 0.1);
  EXPECT_EQ(raw[0][1].get<double>(), 1234.56789012345678);
  EXPECT_EQ(raw[1][0].get<double>(), 1e-300);
  EXPECT_EQ(raw[2][0].get<double>(), 1.7976931348623157e308);
}

}  // namespace
}  // namespace pelmora::test
