// A meter's calibration from the stand's measurements to the stored curve.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/true_curve.h"
#include "tests/support/environment.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace pelmora::test {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr double allowedPercent = 0.3;  // what a flow computer may be off by

// Where the fluids overlap, fluid 1 runs at its smallest flows, where bearing drag pulls it off the
// common curve: there the curve is that of fluid 2.
TrueCurve trueCurve(const std::string& xName, const std::string& yName, bool isReciprocal) {
  TrueCurve curve = trueCurveOf("2", xName, yName, isReciprocal);
  const double endOfFluid2 = curve.back().x;
  for (const TruePoint& point : trueCurveOf("1", xName, yName, isReciprocal)) {
    if (point.x > endOfFluid2) curve.push_back(point);
  }
  return curve;
}

class main_job : public CommandTest {
 protected:
  json stored(const std::string& series) const {
    return done({"show", curves, "--meter", "M1", "--series", series, "--json"}).json();
  }
  // The stored curve covers the merged points and is true within 0.3 % there.
  void expectTrue(const std::string& series, const TrueCurve& truth) const {
    const json found = stored(series);
    const json &curve = found["curve"], &merged = found["merged"];
    ASSERT_EQ(curve.size(), 40U) << series;
    EXPECT_NEAR(curve.front()[0].get<double>() / merged.front()[0].get<double>(), 1, 1e-9);
    EXPECT_NEAR(curve.back()[0].get<double>() / merged.back()[0].get<double>(), 1, 1e-9);
    EXPECT_LT(curve.front()[0].get<double>(), 1) << "fluid 2 reaches below Roshko 1";
    EXPECT_GT(curve.back()[0].get<double>(), 1000) << "fluid 1 reaches above 1000";
    const Deviation worst = worstDeviation(curve, truth);
    EXPECT_GT(worst.points, 90U);
    EXPECT_LE(worst.percent, allowedPercent) << series;
    RecordProperty("worst_percent_" + series, std::to_string(worst.percent));
  }
};

TEST_F(main_job, stores_curves_that_are_true_within_the_allowed_percentage) {
  initCalibrated();
  expectTrue("Rotor A", trueCurve("roshko_a", "strouhal_a", false));
  expectTrue("Rotor B", trueCurve("roshko_b", "strouhal_b", false));
  expectTrue("Rotor Sum", trueCurve("roshko_sum", "quotient_b_over_a", true));
  expectTrue("Ratio", trueCurve("roshko_sum", "quotient_b_over_a", false));
}

TEST_F(main_job, derives_the_series_of_both_fluids_as_the_exact_formulas_tell) {
  initCalibrated();
  const auto rows = rowsOf(data("stand-dual-rotor-truth.csv"));
  std::map<std::string, std::size_t> column;
  for (std::size_t i = 0; i < rows.front().size(); ++i) column[rows.front()[i]] = i;
  const std::map<std::string, std::pair<std::string, std::string>> columns{
      {"Rotor A", {"roshko_a", "strouhal_a"}},
      {"Rotor B", {"roshko_b", "strouhal_b"}},
      {"Rotor Sum", {"roshko_sum", "quotient_a_over_b"}},
      {"Ratio", {"roshko_sum", "quotient_b_over_a"}}};
  for (const auto& [series, names] : columns) {
    const json raw = stored(series)["raw"];
    for (std::size_t part = 0; part < 2; ++part) {
      std::size_t k = 0;
      for (const auto& row : rows) {
        if (row[0] != (part == 0 ? "1001" : "1002")) continue;
        ASSERT_LT(k, raw[part].size());
        EXPECT_NEAR(raw[part][k][0].get<double>() / std::stod(row[column[names.first]]), 1, 1e-9);
        EXPECT_NEAR(raw[part][k][1].get<double>() / std::stod(row[column[names.second]]), 1, 1e-9);
        ++k;
      }
      EXPECT_EQ(k, 24U);
      EXPECT_EQ(raw[part].size(), 24U);
    }
  }
}

TEST_F(main_job, cuts_the_trailing_points_of_fluid_1) {
  initCalibrated();
  const json found = stored("Rotor A");
  EXPECT_EQ(found["raw"][0].size() + found["raw"][1].size(), 48U);
  // Fluid 1's eight points below the end of fluid 2 read up to 7 % low.
  EXPECT_EQ(found["merged"].size(), 40U);
}

TEST_F(main_job, tells_the_same_as_text_and_as_json) {
  init();
  constexpr std::size_t shortName = 20;
  const CommandResult text = done(twoFluids());
  std::filesystem::remove(curves);
  EXPECT_EQ(newCurvePlace(scratch), curves);  // empty again
  init();
  const json value = done(twoFluids({"--json"})).json();
  EXPECT_EQ(value["meter"]["serialNumber"], "M1");
  EXPECT_EQ(value["database"], curves);
  ASSERT_EQ(value["setups"].size(), 2U);
  EXPECT_EQ(value["setups"][1]["fluid"], "glycol");
  EXPECT_EQ(value["setups"][1]["jobs"], json({"1002"}));
  EXPECT_EQ(value["setups"][1]["operator"], "Ada");
  ASSERT_EQ(value["fits"].size(), 4U);
  for (const json& fit : value["fits"]) {
    EXPECT_TRUE(fit["stored"].get<bool>());
    EXPECT_EQ(fit["rawPoints"], json({24, 24, 0, 0}));
    EXPECT_THAT(text.output, HasSubstr(fit["series"].get<std::string>()));
    // A long name is cut in the table.
    EXPECT_THAT(text.output, HasSubstr(fit["chosen"].get<std::string>().substr(0, shortName)));
  }
}

TEST_F(main_job, writes_tables_of_80_columns) {
  init();
  // A short name, because a location is never broken. Nor is a command to copy.
  const std::string before = std::filesystem::current_path().string();
  std::filesystem::current_path(scratch.path());
  const Environment environment(isRunOnServer() ? variablesOf(curves)
                                                : std::map<std::string, std::string>());
  const std::string name = isRunOnServer() ? "postgresql://" : "curves.db";
  Arguments arguments = twoFluids();
  arguments[1] = name;
  std::string output = done(arguments).output;
  output += done({"show", name}).output;
  output += done({"show", name, "--meter", "M1"}).output;
  std::istringstream lines(output);
  std::filesystem::current_path(before);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("    pelmora ")) continue;
    EXPECT_LE(line.size(), 80U) << line;
  }
}

TEST_F(main_job, can_be_run_again_with_the_same_result) {
  initCalibrated();
  const json first = stored("Rotor A");
  done(twoFluids());
  const json second = stored("Rotor A");
  EXPECT_EQ(first["curve"], second["curve"]);
  EXPECT_EQ(first["raw"], second["raw"]);
}

TEST_F(main_job, keeps_the_old_calibration_when_a_new_one_begins) {
  initCalibrated();
  done(twoFluids({"--new-calibration"}));
  const json meters = done({"show", curves, "--json"}).json()["meters"];
  ASSERT_EQ(meters.size(), 2U);
  EXPECT_EQ(meters[0]["calibration"], 1);
  EXPECT_EQ(meters[1]["calibration"], 0);
  EXPECT_EQ(meters[1]["series"].size(), 4U);
}

TEST_F(main_job, leaves_rotor_b_out_where_the_stand_did_not_measure_it) {
  init();
  const CommandResult result =
      done({"import", curves, "--meter", "M2", "--stand", data("stand-dual-rotor.csv"), "--job",
            "1003", "--fluid", "spirit", "--json"});
  const json value = result.json();
  ASSERT_EQ(value["series"].size(), 1U);
  EXPECT_EQ(value["series"][0]["name"], "Rotor A");
  EXPECT_THAT(value["notes"][0].get<std::string>(),
              HasSubstr("job 1003 has no readings of rotor B"));
  EXPECT_EQ(value["setups"][0]["operator"], "Unknown");
}

}  // namespace
}  // namespace pelmora::test
