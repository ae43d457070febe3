// Reading a stored curve at given numbers.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <cmath>

namespace pelmora::test {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;

class evaluate : public CommandTest {
 protected:
  evaluate() { initCalibrated(); }
  Arguments of(const std::string& series, const Arguments& more) const {
    Arguments arguments{"evaluate", curves, "--meter", "M1", "--series", series};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
};

TEST_F(evaluate, reads_the_stored_table_between_its_points) {
  const json curve =
      done({"show", curves, "--meter", "M1", "--series", "Rotor A", "--json"}).json()["curve"];
  const auto value = [&](std::size_t row, std::size_t column) {
    return curve[row][column].get<double>();
  };
  const double middle = (value(20, 0) + value(21, 0)) / 2;
  const json values =
      done(of("Rotor A", {"--table", "--json", curve[20][0].dump(), json(middle).dump()}))
          .json()["values"];
  EXPECT_NEAR(values[0]["strouhal"].get<double>(), value(20, 1), 1e-12 * value(20, 1));
  EXPECT_NEAR(values[1]["strouhal"].get<double>(), (value(20, 1) + value(21, 1)) / 2,
              1e-9 * value(20, 1));
  EXPECT_GT(values[1]["predictionHalfWidth"].get<double>(),
            values[1]["confidenceHalfWidth"].get<double>());
  EXPECT_FALSE(values[1]["extrapolated"].get<bool>());
}

TEST_F(evaluate, states_the_uncertainty_of_the_curve_with_its_budget) {
  const std::string stand =
      write("stand.ini", "[stand]\nname = Stand 3\n[flow]\nstandard = 0.05 %\n");
  const json bare = done(of("Rotor A", {"120", "--json"})).json()["values"][0];
  done({"stand", "uncertainty", curves, stand, "--meter", "M1"});
  const json value = done(of("Rotor A", {"120", "--json"})).json()["values"][0];
  EXPECT_EQ(value["strouhal"], bare["strouhal"]);
  EXPECT_GT(value["expandedUncertainty"].get<double>(), 0.001 * value["strouhal"].get<double>());
  EXPECT_GT(value["expandedUncertainty"].get<double>(), bare["expandedUncertainty"].get<double>());
  EXPECT_NEAR(value["coverageFactor"].get<double>(), 2, 0.2);
  EXPECT_NEAR(value["probability"].get<double>(), 0.9545, 1e-4);
  double squares = 0;
  for (const json& row : value["budget"])
    squares += row["contribution"].get<double>() * row["contribution"].get<double>();
  EXPECT_NEAR(std::sqrt(squares) * value["coverageFactor"].get<double>(),
              value["expandedUncertainty"].get<double>(), 1e-6);
  EXPECT_THAT(done(of("Rotor A", {"120"})).output,
              AllOf(HasSubstr("everything that the stand states"), HasSubstr("scatter")));
  const json drawn =
      done(of("Rotor A", {"120", "--monte-carlo", "200000", "--json"})).json()["values"][0];
  EXPECT_NEAR(
      drawn["monteCarlo"]["halfWidth"].get<double>() / drawn["expandedUncertainty"].get<double>(),
      1, 0.05);
  const json table = done(of("Rotor A", {"120", "--table", "--json"})).json()["values"][0];
  EXPECT_EQ(table["budget"].back()["cause"], "table reading");
}

TEST_F(evaluate, flags_what_lies_beyond_the_curve) {
  const CommandResult result = done(of("Rotor A", {"5000"}));
  EXPECT_THAT(result.output, AllOf(HasSubstr("extrapolated"), HasSubstr("beyond the curve")));
  const json value = done(of("Rotor A", {"5000", "--json"})).json()["values"][0];
  EXPECT_TRUE(value["extrapolated"].get<bool>());
  EXPECT_TRUE(value["confidenceHalfWidth"].is_null());
}

TEST_F(evaluate, finds_roshko_and_back) {
  const json there = done(of("Ratio", {"--inverse", "1.05", "--json"})).json()["values"][0];
  const json back = done(of("Ratio", {there["roshko"].dump(), "--json"})).json()["values"][0];
  EXPECT_NEAR(back["strouhal"].get<double>(), 1.05, 1e-12);
  EXPECT_NEAR(there["expandedUncertaintyPercent"].get<double>(),
              100 * there["expandedUncertainty"].get<double>() / there["roshko"].get<double>(),
              1e-9);
  // U of the Roshko number over that of the Strouhal number: the slope of the curve.
  const double x = there["roshko"].get<double>(), h = 1e-3 * x;
  const json beside =
      done(of("Ratio", {json(x - h).dump(), json(x + h).dump(), "--json"})).json()["values"];
  const double slope =
      (beside[1]["strouhal"].get<double>() - beside[0]["strouhal"].get<double>()) / (2 * h);
  EXPECT_NEAR(there["expandedUncertainty"].get<double>() * std::abs(slope) /
                  back["expandedUncertainty"].get<double>(),
              1, 0.01);
}

TEST_F(evaluate, names_what_it_cannot_read) {
  EXPECT_THAT(trouble(2, of("Rotor A", {"x"})), HasSubstr("'x' is not a number"));
  EXPECT_THAT(trouble(4, of("Rotor Z", {"1"})), HasSubstr("did you mean"));
  done(
      {"raw", curves, write("p.csv", "1,2\n3,4\n"), "--meter", "P", "--register", "--series", "S"});
  EXPECT_THAT(trouble(5, {"evaluate", curves, "--meter", "P", "--series", "S", "1"}),
              AllOf(HasSubstr("no stored curve"), HasSubstr("pelmora fit")));
}

}  // namespace
}  // namespace pelmora::test
