// Units: shown as they are recorded, converted on request, never silently.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

namespace pelmora::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

constexpr double litresPerGallon = 3.785411784;

class units : public CommandTest {
 protected:
  units() { initCalibrated(); }
  void record() const {
    done({"meter", "set", curves, "--meter", "M1", "--roshko-unit", "Hz/cSt", "--strouhal-unit",
          "pulses/gal"});
  }
  Arguments of(const std::string& command, const Arguments& more = {},
               const std::string& series = "Rotor A") const {
    Arguments arguments{command, curves, "--meter", "M1", "--series", series};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  json jsonOf(const std::string& command, Arguments more = {},
              const std::string& series = "Rotor A") const {
    more.emplace_back("--json");
    return done(of(command, more, series)).json();
  }
};

TEST_F(units, are_null_until_they_are_recorded) {
  EXPECT_EQ(jsonOf("show")["units"], (json{{"roshko", nullptr}, {"strouhal", nullptr}}));
  EXPECT_THAT(done(of("points")).output, Not(HasSubstr("Units:")));
  record();
  for (const char* command : {"show", "points"})
    EXPECT_THAT(done(of(command)).output, HasSubstr("Units: Roshko Hz/cSt, Strouhal pulses/gal."));
  EXPECT_THAT(done(of("evaluate", {"20"})).output, HasSubstr("Strouhal pulses/gal."));
}

TEST_F(units, are_not_converted_where_the_stored_one_is_not_known) {
  const std::string error = trouble(2, of("show", {"--unit", "pulses/l"}));
  EXPECT_THAT(error, HasSubstr("the unit of the Strouhal numbers is not recorded"));
  EXPECT_THAT(error, HasSubstr("meter set"));
}

TEST_F(units, of_a_curve_are_converted_on_request) {
  record();
  const json stored = jsonOf("show"), converted = jsonOf("show", {"--unit", "pulses/l"});
  EXPECT_EQ(converted["units"], (json{{"roshko", "Hz/cSt"}, {"strouhal", "pulses/l"}}));
  for (std::size_t i = 0; i < stored["curve"].size(); ++i) {
    const double factor = stored["curve"][i][1].get<double>();
    EXPECT_EQ(converted["curve"][i][0], stored["curve"][i][0]);
    EXPECT_NEAR(converted["curve"][i][1].get<double>(), factor / litresPerGallon, 1e-11 * factor);
  }
  EXPECT_THAT(done(of("show", {"--unit", "pulses/l"})).output,
              HasSubstr("Strouhal pulses/l (converted from pulses/gal)."));
}

TEST_F(units, of_points_leave_their_deviations_as_they_are) {
  record();
  const json stored = jsonOf("points")["points"];
  const json converted = jsonOf("points", {"--unit", "pulses/l", "--unit", "Hz/(m2/s)"})["points"];
  for (std::size_t i = 0; i < stored.size(); ++i) {
    const double roshko = stored[i]["roshko"].get<double>();
    EXPECT_NEAR(converted[i]["roshko"].get<double>(), roshko * 1e6, 1e-5 * roshko);
    EXPECT_EQ(converted[i]["residualPercent"], stored[i]["residualPercent"]);
    EXPECT_EQ(converted[i]["number"], stored[i]["number"]);
  }
}

TEST_F(units, of_a_value_apply_to_its_uncertainty) {
  record();
  const json stored = jsonOf("evaluate", {"20"})["values"][0];
  // The number given is in the unit asked for, too.
  const json converted =
      jsonOf("evaluate", {"--unit", "pulses/l", "--unit", "Hz/(m2/s)", "2e7"})["values"][0];
  EXPECT_EQ(converted["roshko"], 2e7);
  for (const char* name :
       {"strouhal", "expandedUncertainty", "standardUncertainty", "confidenceHalfWidth"}) {
    const double wanted = stored[name].get<double>() / litresPerGallon;
    EXPECT_NEAR(converted[name].get<double>(), wanted, 1e-9 * wanted) << name;
  }
  EXPECT_NEAR(converted["expandedUncertaintyPercent"].get<double>(),
              stored["expandedUncertaintyPercent"].get<double>(), 1e-9);
}

TEST_F(units, of_an_inverse_value_are_those_of_roshko) {
  record();
  const json stored = jsonOf("evaluate", {"--inverse", "1.03"}, "Ratio")["values"][0];
  const json converted =
      jsonOf("evaluate", {"--inverse", "--unit", "Hz/(m2/s)", "1.03"}, "Ratio")["values"][0];
  for (const char* name : {"roshko", "expandedUncertainty", "confidenceHalfWidth"}) {
    const double wanted = stored[name].get<double>() * 1e6;
    EXPECT_NEAR(converted[name].get<double>(), wanted, 1e-9 * wanted) << name;
  }
}

TEST_F(units, of_an_export_are_named_in_the_columns) {
  record();
  EXPECT_THAT(done(of("export", {"--unit", "pulses/l"})).output,
              HasSubstr("series,points,roshko,strouhal (pulses/l)\n"));
  EXPECT_THAT(done(of("export")).output, HasSubstr("series,points,roshko,strouhal\n"));
  EXPECT_EQ(jsonOf("export", {"--unit", "pulses/l"})["tables"][0]["units"]["strouhal"], "pulses/l");
}

TEST_F(units, that_make_no_sense_are_refused) {
  record();
  EXPECT_THAT(trouble(2, of("show", {"--unit", "bar"})),
              HasSubstr("not a unit of Roshko or Strouhal numbers"));
  EXPECT_THAT(trouble(2, of("show", {"--unit", "pulses/l", "--unit", "pulses/m3"})),
              HasSubstr("are both units of Strouhal"));
  EXPECT_THAT(trouble(2, of("show", {"--unit", "pulses/l"}, "Ratio")), HasSubstr("have no unit"));
  EXPECT_THAT(trouble(2, of("export", {"--unit", "pulses/l", "--for", "uvc"})),
              HasSubstr("--y-unit"));
  EXPECT_THAT(trouble(2, {"show", curves, "--meter", "M1", "--unit", "pulses/l"}),
              HasSubstr("needs a series"));
}

}  // namespace
}  // namespace pelmora::test
