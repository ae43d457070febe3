// What a certificate states: recorded details, the result, the uncertainty.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/certificate_fixture.h"

namespace pelmora::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

TEST_F(certificate, details_are_recorded_and_shown) {
  recordEverything();
  const json recorded = done({"meter", "show", curves, "--meter", "M1", "--json"}).json();
  EXPECT_EQ(recorded["details"]["strouhal-unit"], "pulses/gal");
  EXPECT_EQ(recorded["details"]["remark"], (nlohmann::json{"first", "second"}));
  EXPECT_THAT(done({"laboratory", "show", curves}).output, HasSubstr("Flow <lab> & sons"));
  done(meter({"--clear", "maker"}));
  EXPECT_THAT(done({"meter", "show", curves, "--meter", "M1"}).output, Not(HasSubstr("--maker")));
}

TEST_F(certificate, details_are_shown_in_full) {
  const std::string longText =
      "Comparison with a master meter, standing start and stop, in both directions of the flow";
  done(meter({"--method", longText, "--remark", "As found", "--remark", "New filter"}));
  const std::string shown = done({"meter", "show", curves, "--meter", "M1"}).output;
  for (const std::string& word : wordsOf(longText)) EXPECT_THAT(shown, HasSubstr(word));
  EXPECT_THAT(shown, testing::ContainsRegex("--remark +As found\n +New filter\n"));
}

TEST_F(certificate, details_that_make_no_sense_change_nothing) {
  EXPECT_THAT(trouble(5, meter({"--maker", "A", "--ambient-temperature", "21 bar"})),
              HasSubstr("is a unit of pressure"));
  EXPECT_THAT(trouble(2, meter({})), HasSubstr("nothing to set"));
  EXPECT_THAT(trouble(2, meter({"--maker", "A", "--clear", "maker"})), HasSubstr("exclude"));
  done(meter({"--maker", "A", "--dry-run"}));
  EXPECT_THAT(done({"meter", "show", curves, "--meter", "M1"}).output,
              HasSubstr("Nothing is recorded"));
  done({"laboratory", "set", curves, "--name", "L", "--dry-run"});
  EXPECT_THAT(done({"laboratory", "show", curves}).output, HasSubstr("Nothing is recorded"));
}

TEST_F(certificate, page_states_what_is_recorded) {
  recordEverything();
  const std::string page = written("m1.html");
  for (const char* text :
       {"Calibration certificate", "2026-17", "Flow &lt;lab&gt; &amp; sons", "Maker T-1, 1 in",
        "A. Signer, head of laboratory", "pulses/gal", "Measured points", "PASS", "Repeatability"})
    EXPECT_THAT(page, HasSubstr(text));
  EXPECT_THAT(page, Not(HasSubstr("Stored report")));
  EXPECT_THAT(written("m2.html", {"--stored-report"}), HasSubstr("Stored report"));
}

TEST_F(certificate, fails_where_a_point_is_beyond_the_limit) {
  recordEverything();
  done(meter({"--limit", "10 ppm"}));
  EXPECT_THAT(written("m1.html"), HasSubstr("<td class=t>FAIL<"));
}

// By hand: 0.01 cSt of 1.18 or 27.9 cSt, in the fluid where it weighs more, and 2E-5 gal/s of the
// flow there.
TEST_F(certificate, states_the_uncertainty_of_a_stand_that_is_stated_in_units) {
  recordEverything();
  done({"stand", "uncertainty", curves,
        write("stand.ini",
              "[stand]\nname = S\n[flow]\nstandard = 2e-5 gal/s\n[viscosity]\nstandard = 0.01 "
              "cSt\n"),
        "--meter", "M1"});
  EXPECT_THAT(written("m1.html"), Not(HasSubstr("No U is stated")));
  const json series = json::parse(written("m1.json"))["series"][0];
  EXPECT_TRUE(series["uncertainty"]["stated"].get<bool>());
  int checked = 0;
  for (const json& point : series["rawPoints"]) {
    if (point["state"] != "used") continue;
    const double flow = 100 * 2e-5 / point["reading"]["flow"].get<double>();
    EXPECT_GE(point["expandedUncertaintyPercent"].get<double>(), 2 * flow * 0.98);
    EXPECT_LE(point["expandedUncertaintyPercent"].get<double>(), 2 * flow + 0.2);
    ++checked;
  }
  EXPECT_GT(checked, 20);
  (void)written("m1.xml");
  EXPECT_THAT(done({"check-dcc", scratch.file("m1.xml")}).output, HasSubstr("No flaw"));
}

TEST_F(certificate, states_the_uncertainty_with_its_coverage) {
  recordEverything();
  recordStand();
  const std::string xml = written("m1.xml");
  EXPECT_THAT(xml, HasSubstr("<si:coverageProbabilityXMLList>0.9545<"));
  EXPECT_THAT(done({"check-dcc", scratch.file("m1.xml"), "--cmc", "0.05"}).output,
              HasSubstr("No flaw was found"));
  // Twice what the stand states: the rule finds it.
  EXPECT_THAT(run({"check-dcc", scratch.file("m1.xml"), "--cmc", "0.5"}).output,
              HasSubstr("below the CMC"));
  const std::string page = written("m1.html");
  for (const char* text : {"everything that the stand states (Stand 3)", "CMC of 0.05 %",
                           "reference flow", "simple acceptance", "a single measured value"})
    EXPECT_THAT(page, HasSubstr(text));
}

TEST_F(certificate, says_where_nothing_of_the_stand_is_recorded) {
  recordEverything();
  const std::string nothing = "no uncertainty of the stand is recorded with the calibration";
  EXPECT_THAT(written("m1.html"), HasSubstr(nothing));
  EXPECT_THAT(written("m1.xml"), HasSubstr(nothing));
  EXPECT_THAT(written("m1.csv"), HasSubstr(nothing));
}

TEST_F(certificate, says_why_no_uncertainty_is_stated) {
  // A flow in gallons would need the flow at each point of the curve.
  done({"stand", "uncertainty", curves,
        write("stand.ini", "[stand]\nname = S\n[flow]\nstandard = 0.001 gal/s\n"), "--meter",
        "M1"});
  const std::string page = written("m1.html");
  EXPECT_THAT(page, HasSubstr("No U is stated for Rotor A: "));
  EXPECT_THAT(written("m1.csv"), HasSubstr("No expanded uncertainty U is stated: "));
}

}  // namespace
}  // namespace pelmora::test
