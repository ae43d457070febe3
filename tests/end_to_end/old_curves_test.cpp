// Commands that read a curve say if it is older than its points, and which points were left out.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"
#include "tests/support/plain_database.h"

#include <algorithm>
#include <map>
#include <utility>

namespace pelmora::test {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

// Meter M1 is calibrated twice. Then a point of Rotor A is excluded, which makes its curve old.
class old_curve : public CommandTest {
 protected:
  old_curve() {
    initCalibrated();
    done(twoFluids({"--new-calibration"}));
    excluded = done({"exclude", curves, "--meter", "M1", "--series", "Rotor A", "--part", "1",
                     "--point", "12", "--reason", "air in the line"})
                   .output;
  }
  static Arguments rotorA(const std::string& command, const std::string& file,
                          const Arguments& more = {}) {
    Arguments arguments{command, file, "--meter", "M1", "--series", "Rotor A"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  // Each command that reads curves.
  std::vector<Arguments> readers(const Arguments& more = {}) const {
    std::vector<Arguments> all{rotorA("evaluate", curves, {"100"}),
                               rotorA("export", curves),
                               rotorA("show", curves),
                               rotorA("compare", curves),
                               {"show", curves, "--meter", "M1"}};
    for (Arguments& arguments : all) arguments.insert(arguments.end(), more.begin(), more.end());
    return all;
  }
  json reported() const {
    const CommandResult result = run(rotorA("report", curves, {"-o", "-", "--json"}));
    EXPECT_EQ(result.exitCode, 0);
    return result.json()["series"][0];
  }

  std::string excluded;
};

TEST_F(old_curve, never_passes_silently) {
  auto all = readers();
  all.push_back(rotorA("report", curves, {"-o", scratch.file("m1.html")}));
  all.push_back(rotorA("plot", curves));
  for (const Arguments& arguments : all) {
    const CommandResult result = run(arguments);
    EXPECT_EQ(result.exitCode, 0) << arguments[0];
    EXPECT_THAT(
        result.error,
        AllOf(StartsWith("pelmora: note: the curve of series 'Rotor A' of meter 'M1', "
                         "calibration 1, is older than its raw points"),
              HasSubstr("pelmora refit " + shownCurves() + " --meter M1 --series 'Rotor A'\n")))
        << arguments[0];
    EXPECT_EQ(std::ranges::count(result.error, '\n'), 1) << arguments[0];
  }
}

TEST_F(old_curve, is_a_member_of_the_json) {
  const auto jsonOf = [&](const Arguments& arguments) { return run(arguments).json(); };
  const auto all = readers({"--json"});
  EXPECT_EQ(jsonOf(all[0])["curveAge"], "outdated");
  EXPECT_EQ(jsonOf(all[1])["curveAges"], (json{{{"series", "Rotor A"}, {"curveAge", "outdated"}}}));
  EXPECT_EQ(jsonOf(all[2])["curveAge"], "outdated");
  EXPECT_EQ(jsonOf(all[3])["curveAge"], "outdated");
  EXPECT_EQ(jsonOf(all[3])["earlierCurveAge"], "current");
  const json shown = jsonOf(all[4])["series"];
  ASSERT_THAT(shown, SizeIs(4));
  for (const json& series : shown)
    EXPECT_EQ(series["curveAge"], series["name"] == "Rotor A" ? "outdated" : "current");
  const json series = reported();
  EXPECT_EQ(series["curveAge"], "outdated");
  EXPECT_EQ(series["warnings"][0]["kind"], "outdated");
}

TEST_F(old_curve, is_current_again_after_the_suggested_command) {
  EXPECT_THAT(excluded,
              HasSubstr("pelmora refit " + shownCurves() + " --meter M1 --series 'Rotor A'"));
  done(rotorA("refit", curves));
  for (const Arguments& arguments : readers()) EXPECT_EQ(run(arguments).error, "") << arguments[0];
  EXPECT_EQ(reported()["curveAge"], "current");
}

// A point that the merge had cut was not fitted, so that the curve stays the same without it.
TEST_F(old_curve, is_current_again_where_the_refit_finds_the_same_curve) {
  done(rotorA("refit", curves));
  const json points = done(rotorA("points", curves, {"--json"})).json()["points"];
  const auto cut = std::ranges::find_if(points, [](const json& p) { return p["state"] == "cut"; });
  ASSERT_NE(cut, points.end());
  done(rotorA("exclude", curves,
              {"--part", (*cut)["part"].dump(), "--point", (*cut)["number"].dump(), "--reason",
               "air in the line"}));
  EXPECT_EQ(reported()["curveAge"], "outdated");
  EXPECT_EQ(done(rotorA("refit", curves, {"--json"})).json()["series"][0]["outcome"], "kept");
  EXPECT_EQ(reported()["curveAge"], "current");
}

TEST_F(old_curve, does_not_matter_to_raw_points) {
  EXPECT_EQ(run(rotorA("export", curves, {"--points", "raw"})).error, "");
}

TEST_F(old_curve, comes_with_the_points_that_were_left_out) {
  EXPECT_THAT(run(rotorA("show", curves)).output, HasSubstr("air in the line"));
  EXPECT_THAT(run({"show", curves, "--meter", "M1"}).output,
              HasSubstr("Excluded: 1 point of Rotor A"));
  const json shown = run(rotorA("show", curves, {"--json"})).json()["excluded"];
  ASSERT_THAT(shown, SizeIs(1));
  EXPECT_EQ(shown[0]["number"], 12);
  EXPECT_EQ(shown[0]["reason"], "air in the line");
  done(rotorA("refit", curves));
  EXPECT_THAT(done({"history", curves}).output, HasSubstr("Out"));
  const json points = reported()["rawPoints"];
  ASSERT_THAT(points, SizeIs(48));
  std::map<std::string, int> states;
  for (const json& point : points) ++states[point["state"]];
  // What the fit distrusts is its own matter.
  states["used"] += std::exchange(states["distrusted"], 0);
  EXPECT_EQ(states, (std::map<std::string, int>{
                        {"cut", 8}, {"distrusted", 0}, {"excluded", 1}, {"used", 39}}));
  EXPECT_EQ(points[11]["exclusion"]["reason"], "air in the line");
  for (const char* format : {"--html", "--csv"}) {
    EXPECT_THAT(done(rotorA("report", curves, {"-o", "-", format})).output,
                HasSubstr("air in the line"))
        << format;
  }
}

// A host that does not know exclusions stores the part again.
TEST_F(old_curve, of_points_that_another_program_brought_back_is_found_by_the_doctor) {
  const auto findings = [&] { return run({"doctor", curves, "--json"}).json()["findings"]; };
  const auto isThere = [&] {
    return std::ranges::any_of(findings(),
                               [](const json& f) { return f["id"] == "exclusions-not-in-force"; });
  };
  EXPECT_FALSE(isThere());
  PlainDatabase(curves).run(R"(insert into raw1 ("seriesID", "Roshko", "Strouhal") )"
                            R"(select "SeriesID", "Roshko", "Strouhal" from pelmora_excluded1)");
  EXPECT_TRUE(isThere());
  EXPECT_THAT(run({"doctor", curves}).output,
              AllOf(HasSubstr("raw part 1"), HasSubstr("Rotor A"), HasSubstr("pelmora points")));
}

}  // namespace
}  // namespace pelmora::test
