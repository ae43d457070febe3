// Reading a stored curve at given numbers.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

namespace pelmora::test {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;

class evaluate : public CommandTest {
 protected:
  evaluate() {
    init();
    done(twoFluids());
  }
  Arguments of(const std::string& series, const Arguments& more) const {
    Arguments arguments{"evaluate", curves, "--meter", "M1", "--series", series};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
};

TEST_F(evaluate, gives_the_stored_points_and_what_lies_between_them) {
  const json curve =
      done({"show", curves, "--meter", "M1", "--series", "Rotor A", "--json"}).json()["curve"];
  const auto value = [&](std::size_t row, std::size_t column) {
    return curve[row][column].get<double>();
  };
  const double middle = (value(20, 0) + value(21, 0)) / 2;
  const json values =
      done(of("Rotor A", {"--json", curve[20][0].dump(), json(middle).dump()})).json()["values"];
  EXPECT_EQ(values[0]["strouhal"].get<double>(), value(20, 1));
  EXPECT_NEAR(values[1]["strouhal"].get<double>(), (value(20, 1) + value(21, 1)) / 2,
              1e-9 * value(20, 1));
  EXPECT_GT(values[1]["predictionHalfWidth"].get<double>(),
            values[1]["confidenceHalfWidth"].get<double>());
  EXPECT_FALSE(values[1]["extrapolated"].get<bool>());
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
