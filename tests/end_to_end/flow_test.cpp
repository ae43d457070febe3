// Volume flow in service, and the viscosity laws of fluids.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <cmath>

namespace pelmora::test {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;

// Meter "P", series "S": Strouhal = 100 + Roshko / 10, in pulses per gallon.
class flow : public CommandTest {
 protected:
  flow() {
    init();
    std::string text = "x,y\n";
    for (int i = 1; i <= 40; ++i)
      text += std::to_string(i * 10) + "," + std::to_string(100 + i) + "\n";
    done({"raw", curves, write("s.csv", text), "--meter", "P", "--register", "--series", "S"});
    done({"fit", curves, "--meter", "P", "--series", "S", "--choose", "adjusted-r2", "--equations",
          write("line.txt", "Line\ta+b*x\n")});
  }
  Arguments of(const Arguments& more) const {
    Arguments arguments{"flow", curves, "--meter", "P", "--series", "S"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  Arguments fluid(const std::string& action, const Arguments& more = {}) const {
    Arguments arguments{"fluid", action, curves};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  json flowOf(Arguments more) const {
    more.emplace_back("--json");
    return done(of(more)).json();
  }
};

// 115 pulses per litre, not per gallon; and a body of brass, whose expansion is recorded.
TEST_F(flow, has_the_units_and_the_expansion_that_are_recorded) {
  done({"meter", "set", curves, "--meter", "P", "--strouhal-unit", "pulses/l", "--expansion",
        "18e-6 1/K"});
  const json value = flowOf({"--frequency", "300", "--viscosity", "2"});
  EXPECT_EQ(value["flowUnit"], "l/s");
  EXPECT_NEAR(value["flow"].get<double>(), 300 / 115.0, 1e-7);
  EXPECT_NEAR(flowOf({"--frequency", "300", "--viscosity", "2", "--unit", "m3/h"})["flow"],
              300 / 115.0 * 3.6, 1e-7);
  // 100 F are 55.56 K: Roshko x (1 + 2e-3), flow x (1 + 3e-3).
  const json warm = flowOf({"--frequency", "300", "--viscosity", "2", "--temperature", "170 F"});
  EXPECT_NEAR(warm["roshko"].get<double>(), 150 * 1.002, 1e-9);
  EXPECT_NEAR(warm["flow"].get<double>(), 300 * 1.003 / (100 + 15 * 1.002), 1e-7);
  EXPECT_THAT(done(of({"--frequency", "300", "--viscosity", "2"})).output,
              AllOf(HasSubstr("Flow l/s"), HasSubstr("expansion of the meter's body 1.8e-05 1/K")));
}

// By hand: Roshko 300 / 2 = 150, Strouhal 115, and at 170 F the body of stainless steel has grown
// by 100 F x 9.6E-6: Roshko x 1.00192, flow x 1.00288.
TEST_F(flow, is_the_frequency_over_the_strouhal_number) {
  const json value = flowOf({"--frequency", "300", "--viscosity", "2"});
  EXPECT_NEAR(value["roshko"].get<double>(), 150, 1e-9);
  EXPECT_NEAR(value["strouhal"].get<double>(), 115, 1e-6);
  EXPECT_NEAR(value["flow"].get<double>(), 300 / 115.0, 1e-7);
  EXPECT_EQ(value["flowUnit"], "gal/s");
  EXPECT_EQ(value["curveAges"][0]["curveAge"], "current");
  const json warm =
      flowOf({"--frequency", "0.3 kHz", "--viscosity", "2 mm2/s", "--temperature", "170 F"});
  EXPECT_NEAR(warm["roshko"].get<double>(), 150 * 1.00192, 1e-6);
  EXPECT_NEAR(warm["flow"].get<double>(), 300 * 1.00288 / (100 + 15 * 1.00192), 1e-7);
  const json litres = flowOf({"--frequency", "300", "--viscosity", "2", "--unit", "l/min"});
  EXPECT_NEAR(litres["flow"].get<double>(), 300 / 115.0 * 3.785411784 * 60, 1e-5);
  EXPECT_NEAR(litres["expandedUncertaintyPercent"].get<double>(),
              value["expandedUncertaintyPercent"].get<double>(), 1e-12);
  EXPECT_THAT(done(of({"--frequency", "300", "--viscosity", "2"})).output,
              AllOf(HasSubstr("2.6086957 gal/s"), HasSubstr("contains nothing of"),
                    HasSubstr("--instruments")));
}

// d ln q / d ln f = 1 - 15 / 115, d ln q / d ln v = 15 / 115.
TEST_F(flow, contains_the_instruments_as_the_steepness_of_the_curve_weighs_them) {
  const std::string file =
      write("service.ini", "[frequency]\nstandard = 0.1 %\n[viscosity]\nstandard = 0.02 cSt\n");
  const json value = flowOf({"--frequency", "300", "--viscosity", "2", "--instruments", file});
  const double q = 300 / 115.0;
  int found = 0;
  for (const json& row : value["budget"]) {
    if (row["label"] != "service") continue;
    const double expected =
        row["cause"] == "frequency" ? 0.001 * (1 - 15 / 115.0) * q : 0.01 * 15 / 115.0 * q;
    EXPECT_NEAR(std::abs(row["contribution"].get<double>()), expected, 1e-5 * q) << row["cause"];
    ++found;
  }
  EXPECT_EQ(found, 2);
  EXPECT_THAT(value["contains"].get<std::string>(), HasSubstr("the instruments in service"));
  const std::string shown =
      done(of({"--frequency", "300", "--viscosity", "2", "--instruments", file, "--budget"}))
          .output;
  EXPECT_THAT(shown, AllOf(HasSubstr("frequency: service"), HasSubstr("combined")));
}

// log10 log10 (v + 0.7) is a straight line over log10 T (ASTM D341): through 32 cSt at 40 C and
// 5.4 cSt at 100 C, it has 8.533 cSt at 80 C.
TEST_F(flow, takes_the_viscosity_from_the_law_of_a_fluid) {
  done(fluid("set", {"--name", "ISO 32", "--law", "d341", "--point", "40C:32cSt", "--point",
                     "100 C:5.4 cSt"}));
  const json law = done(fluid("show", {"--name", "iso 32", "--temperature", "80 C", "--json"}))
                       .json()["fluids"][0];
  EXPECT_NEAR(law["viscosity"].get<double>(), 8.533, 5e-4);
  const json value = flowOf({"--frequency", "1000", "--fluid", "ISO 32", "--temperature", "80 C"});
  EXPECT_EQ(value["viscosity"], law["viscosity"]);
  EXPECT_THAT(trouble(2, of({"--frequency", "1000", "--fluid", "ISO 32"})),
              HasSubstr("--temperature"));
  EXPECT_THAT(
      trouble(7, of({"--frequency", "1000", "--fluid", "ISO 32", "--temperature", "140 C"})),
      HasSubstr("40.00 C to 100.00 C"));
  EXPECT_THAT(trouble(4, of({"--frequency", "1000", "--fluid", "ISO 3", "--temperature", "80 C"})),
              HasSubstr("ISO 32"));
  const std::string removed = done(fluid("remove", {"--name", "ISO 32"})).output;
  EXPECT_THAT(removed, AllOf(HasSubstr("--name 'ISO 32' --law d341 --point 40C:32cSt"),
                             HasSubstr("--point 100C:5.4cSt")));
  EXPECT_THAT(done(fluid("show")).output, HasSubstr("No viscosity law"));
}

TEST_F(flow, names_the_option_that_it_cannot_use) {
  EXPECT_THAT(trouble(2, of({"--frequency", "300 cSt", "--viscosity", "2"})),
              HasSubstr("--frequency"));
  EXPECT_THAT(trouble(2, of({"--frequency", "300", "--viscosity", "2", "--unit", "cSt"})),
              HasSubstr("--unit"));
  EXPECT_THAT(trouble(2, of({"--frequency", "300", "--viscosity", "2", "--frequency-b", "290"})),
              HasSubstr("--series"));
  EXPECT_THAT(trouble(5, of({"--frequency", "300"})), HasSubstr("viscosity is not known"));
  EXPECT_THAT(trouble(5, of({"--frequency", "-1", "--viscosity", "2"})), HasSubstr("frequency"));
  EXPECT_THAT(trouble(2, fluid("set", {"--name", "F", "--point", "20C:1", "--constant", "1"})),
              HasSubstr("points or of constants"));
  EXPECT_THAT(trouble(2, fluid("set", {"--name", "F", "--law", "d341", "--constant", "9.5"})),
              HasSubstr("--from"));
  EXPECT_THAT(trouble(5, fluid("set", {"--name", "F", "--point", "20C:1", "--point", "40C:2"})),
              HasSubstr("does not fall"));
}

TEST_F(flow, beyond_the_curve_has_no_uncertainty) {
  const json value = flowOf({"--frequency", "3000", "--viscosity", "2"});
  EXPECT_TRUE(value["extrapolated"].get<bool>());
  EXPECT_TRUE(value["expandedUncertainty"].is_null());
  EXPECT_THAT(done(of({"--frequency", "3000", "--viscosity", "2"})).output,
              HasSubstr("beyond the calibrated range"));
}

// Job 1001 of the example stand: both rotors show the flow that the stand measured, V2 / V1.
TEST_F(flow, by_both_rotors_is_what_the_stand_measured) {
  done(twoFluids());
  const auto rows = rowsOf(data("stand-dual-rotor.csv"));
  const auto& row = rows[6];
  const auto v = [&](int n) {
    return std::stod(row[columnOf(rows.front(), "V" + std::to_string(n))]);
  };
  ASSERT_EQ(row[columnOf(rows.front(), "JobRecordID")], "1001");
  const Arguments arguments{"flow",          curves,
                            "--meter",       "M1",
                            "--frequency",   std::to_string(v(4) / v(3)),
                            "--frequency-b", std::to_string(v(21) / v(20)),
                            "--temperature", std::to_string(v(12)) + " F",
                            "--json"};
  Arguments known = arguments;
  known.insert(known.end(), {"--viscosity", std::to_string(v(5))});
  const json both = done(known).json();
  EXPECT_NEAR(both["flow"].get<double>() / (v(2) / v(1)), 1, 0.002);
  EXPECT_LT(std::abs(both["differencePercent"].get<double>()), 0.4);
  EXPECT_GT(both["differenceUncertaintyPercent"].get<double>(), 0);
  const json found = done(arguments).json();
  EXPECT_TRUE(found["viscosityFromRotors"].get<bool>());
  EXPECT_TRUE(found["differencePercent"].is_null());
  EXPECT_NEAR(found["flow"].get<double>() / (v(2) / v(1)), 1, 0.01);
}

}  // namespace
}  // namespace pelmora::test
