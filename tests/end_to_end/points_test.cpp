// Points that a calibration engineer lists, leaves out and takes back at the command line.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class points_command : public CommandTest {
 protected:
  points_command() {
    init();
    done({"import", curves, "--meter", "M1", "--stand", data("stand-dual-rotor.csv"), "--job",
          "1007", "--fluid", "spirit", "--operator", "Ada"});
  }
  static Arguments of(const std::string& command, const std::string& file, const Arguments& more) {
    Arguments arguments{command, file, "--meter", "M1", "--series", "Rotor A"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  CommandResult rotorA(const std::string& command, const Arguments& more = {}) const {
    return done(of(command, curves, more));
  }
  [[nodiscard]] nlohmann::json point(std::size_t number) const {
    return rotorA("points", {"--json"}).json()["points"][number - 1];
  }
};

// The truth of the example data marks two bad points of job 1007.
TEST_F(points_command, names_the_bad_points_of_a_job_and_what_leaves_them_out) {
  std::vector<int> bad;
  for (const auto& row : rowsOf(data("stand-dual-rotor-truth.csv"))) {
    if (row.front() == "1007" && row.back() != "0") bad.push_back(std::stoi(row[1]));
  }
  ASSERT_THAT(bad, SizeIs(2));
  const auto listed = rotorA("points", {"--json"}).json();
  for (const auto& point : listed["points"]) {
    const bool isBad = std::count(bad.begin(), bad.end(), point["number"].get<int>()) > 0;
    EXPECT_EQ(point["suspect"].get<bool>(), isBad) << point;
  }
  EXPECT_EQ(listed["curve"], "none");
  std::string suggested =
      "pelmora exclude " + shownCurves() + " --meter M1 --series 'Rotor A' --part 1";
  for (const int number : bad) suggested += " --point " + std::to_string(number);
  EXPECT_THAT(rotorA("points").output, HasSubstr(suggested + " --reason 'up to "));

  // The default rule fits without them, and every list says so.
  (void)rotorA("fit");
  const auto fitted = rotorA("points", {"--json"}).json();
  for (const auto& point : fitted["points"]) {
    const bool isBad = std::count(bad.begin(), bad.end(), point["number"].get<int>()) > 0;
    EXPECT_EQ(point["state"], isBad ? "distrusted" : "used") << point;
  }
  const std::string text = rotorA("points").output;
  EXPECT_THAT(text, HasSubstr("24 points, 2 distrusted"));
  EXPECT_THAT(text, HasSubstr("curve was fitted without it"));
  EXPECT_THAT(text, HasSubstr(suggested + " --reason 'up to "));
  EXPECT_THAT(rotorA("plot", {"--ascii"}).output, HasSubstr("d distrusted, not fitted"));
  const auto report = done({"report", curves, "--meter", "M1", "-o", "-", "--json"}).json();
  for (const auto& series : report["series"]) {
    if (series["name"] != "Rotor A") continue;
    EXPECT_EQ(series["result"]["used"], 22) << series["result"];
    EXPECT_EQ(series["result"]["distrusted"], 2) << series["result"];
  }
}

TEST_F(points_command, excluded_points_are_listed_with_their_reason_until_they_are_included) {
  const auto before = rotorA("points", {"--json"}).json();
  const auto out = rotorA("exclude", {"--part", "1", "--point", "3-4", "--point", "7", "--reason",
                                      "air in the line", "--json"})
                       .json();
  EXPECT_THAT(out["points"], SizeIs(3));
  EXPECT_THAT(out["historyEntries"], SizeIs(1));
  EXPECT_EQ(out["sameReadings"], (nlohmann::json{"Rotor Sum", "Ratio"}));
  EXPECT_EQ(point(4)["state"], "excluded");
  EXPECT_EQ(point(4)["exclusion"]["reason"], "air in the line");
  EXPECT_EQ(point(4)["job"], "1007");
  EXPECT_EQ(point(5)["state"], "used");
  EXPECT_THAT(rotorA("points").output,
              AllOf(HasSubstr("24 points, 3 excluded"), HasSubstr("air in the line")));
  const CommandResult text = rotorA("include", {"--part", "1", "--point", "4"});
  EXPECT_THAT(text.output, HasSubstr("Included: 1 point"));
  rotorA("include", {"--all"});
  EXPECT_EQ(rotorA("points", {"--json"}).json(), before);
}

TEST_F(points_command, a_dry_run_says_what_would_be_and_changes_nothing) {
  const auto before = rotorA("points", {"--json"}).json();
  const CommandResult trial =
      rotorA("exclude", {"--all-below", "20", "--reason", "trial", "--dry-run"});
  EXPECT_THAT(trial.output,
              AllOf(HasSubstr("Would be excluded"), HasSubstr("nothing was changed")));
  EXPECT_EQ(rotorA("points", {"--json"}).json(), before);
}

TEST_F(points_command, ranges_can_be_given_in_one_part_or_in_all) {
  const auto numbers = [&](const Arguments& selection) {
    Arguments arguments = selection;
    arguments.insert(arguments.end(), {"--reason", "trial", "--dry-run", "--json"});
    std::vector<double> roshko;
    const auto excluded = rotorA("exclude", arguments).json();
    for (const auto& point : excluded["points"]) roshko.push_back(point["roshko"]);
    return roshko;
  };
  EXPECT_THAT(numbers({"--part", "1", "--all-below", "20"}),
              AllOf(SizeIs(4), testing::Each(testing::Lt(20))));
  EXPECT_THAT(numbers({"--all-above", "500"}), AllOf(SizeIs(4), testing::Each(testing::Gt(500))));
  EXPECT_THAT(
      numbers({"--all-between", "20:100"}),
      AllOf(Not(IsEmpty()), testing::Each(testing::AllOf(testing::Ge(20), testing::Le(100)))));
  EXPECT_THAT(numbers({"--all"}), SizeIs(24));
}

TEST_F(points_command, a_curve_is_fitted_without_them_and_is_said_to_be_old_before) {
  rotorA("exclude", {"--part", "1", "--point", "1", "--reason", "trial", "--with-derived"});
  const CommandResult fitted = run(of("fit", curves, {"--band", "20", "--json"}));
  ASSERT_EQ(fitted.exitCode, 0) << fitted.error;
  EXPECT_EQ(rotorA("points", {"--json"}).json()["curve"], "current");
  const CommandResult next =
      rotorA("exclude", {"--part", "1", "--point", "2", "--reason", "trial"});
  EXPECT_THAT(next.output,
              HasSubstr("pelmora refit " + shownCurves() + " --meter M1 --series 'Rotor A'"));
  EXPECT_EQ(rotorA("points", {"--json"}).json()["curve"], "outdated");
  EXPECT_THAT(rotorA("points").output, HasSubstr("older than these points"));
}

TEST_F(points_command, the_history_brings_a_point_back) {
  const auto before = rotorA("points", {"--json"}).json();
  const auto out =
      rotorA("exclude", {"--part", "1", "--point", "3", "--reason", "trial", "--json"}).json();
  const auto entry = done({"history", curves, "--json"}).json()["entries"][0];
  EXPECT_EQ(entry["command"], "exclude");
  EXPECT_EQ(entry["rows"]["raw1"], 24);
  done({"restore", curves, std::to_string(out["historyEntries"][0].get<int>())});
  EXPECT_EQ(rotorA("points", {"--json"}).json(), before);
}

TEST_F(points_command, a_new_import_says_what_became_of_the_exclusions) {
  const auto import = [&](const std::string& job) {
    return done({"import", curves, "--meter", "M1", "--stand", data("stand-dual-rotor.csv"),
                 "--job", job, "--fluid", "spirit", "--operator", "Ada"})
        .output;
  };
  rotorA("exclude", {"--part", "1", "--point", "3", "--reason", "air in the line"});
  EXPECT_THAT(import("1007"), HasSubstr("1 point stays excluded"));
  EXPECT_EQ(point(3)["state"], "excluded");
  EXPECT_THAT(import("1001"), HasSubstr("No longer excluded: part 1, point 3"));
  EXPECT_EQ(point(3)["state"], "used");
}

TEST_F(points_command, what_cannot_be_done_is_said_in_one_line) {
  const auto wrong = [&](int code, const Arguments& more) {
    return trouble(code, of("exclude", curves, more));
  };
  EXPECT_THAT(wrong(2, {"--part", "1", "--point", "3"}), HasSubstr("--reason"));
  EXPECT_THAT(wrong(5, {"--part", "1", "--point", "3", "--reason", " "}), HasSubstr("reason"));
  EXPECT_THAT(wrong(5, {"--point", "3", "--reason", "x"}), HasSubstr("part"));
  EXPECT_THAT(wrong(5, {"--part", "1", "--point", "25", "--reason", "x"}),
              HasSubstr("points 1 to 24"));
  EXPECT_THAT(wrong(2, {"--part", "1", "--point", "7-3", "--reason", "x"}), HasSubstr("7-3"));
  EXPECT_THAT(wrong(2, {"--part", "5", "--all", "--reason", "x"}), HasSubstr("--part"));
  EXPECT_THAT(wrong(2, {"--all-between", "3", "--reason", "x"}), HasSubstr("LOW:HIGH"));
  EXPECT_THAT(wrong(5, {"--reason", "x"}), HasSubstr("no points are selected"));
  EXPECT_THAT(trouble(4, {"points", curves, "--meter", "M1", "--series", "Rotor C"}),
              HasSubstr("Rotor"));
}

}  // namespace
}  // namespace pelmora::test
