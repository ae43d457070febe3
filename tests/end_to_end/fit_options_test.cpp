// What the options of a fit do, and what a fit without a curve says.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <algorithm>
#include <cmath>

namespace pelmora::test {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// A series "S" of meter "P" with y = 100 + 10 log10(x), and one point 0.5 % above it.
class fit_options : public CommandTest {
 protected:
  fit_options() {
    init();
    std::string text = "x,y\n";
    for (int i = 0; i <= 40; ++i) {
      const double x = std::pow(10, 1 + i * 0.05);
      const double y = (100 + 10 * std::log10(x)) * (i == 17 ? 1.005 : 1);
      text += std::to_string(x) + "," + std::to_string(y) + "\n";
    }
    done({"raw", curves, write("s.csv", text), "--meter", "P", "--register", "--series", "S"});
  }
  Arguments fit(const Arguments& more) const {
    Arguments arguments{"fit", curves, "--meter", "P", "--series", "S"};
    // Wide enough for the one point that is off.
    if (std::find(more.begin(), more.end(), "--band") == more.end())
      arguments.insert(arguments.end(), {"--band", "1"});
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  json stored() const {
    return done({"show", curves, "--meter", "P", "--series", "S", "--json"}).json();
  }
};

TEST_F(fit_options, cover_the_merged_points_by_default) {
  const json curve = done(fit({"--json"})).json()["curve"];
  EXPECT_EQ(curve.size(), 40U);
  EXPECT_NEAR(curve.front()[0].get<double>(), 10, 1e-5);
  EXPECT_NEAR(curve.back()[0].get<double>(), 1000, 1e-3);
}

TEST_F(fit_options, give_range_and_number_of_points) {
  const json curve =
      done(fit({"--min", "20", "--max", "500", "--points", "7", "--json"})).json()["curve"];
  ASSERT_EQ(curve.size(), 7U);
  EXPECT_NEAR(curve.front()[0].get<double>(), 20, 1e-9);
  EXPECT_NEAR(curve.back()[0].get<double>(), 500, 1e-9);
}

TEST_F(fit_options, may_give_one_end_of_the_range_alone) {
  const json lower = done(fit({"--min", "20", "--json"})).json()["curve"];
  EXPECT_NEAR(lower.front()[0].get<double>(), 20, 1e-9);
  EXPECT_NEAR(lower.back()[0].get<double>(), 1000, 1e-3);
  const json upper = done(fit({"--max", "500", "--json"})).json()["curve"];
  EXPECT_NEAR(upper.front()[0].get<double>(), 10, 1e-5);
  EXPECT_NEAR(upper.back()[0].get<double>(), 500, 1e-9);
}

TEST_F(fit_options, refuse_a_range_outside_the_raw_points_and_change_nothing) {
  done(fit({}));
  const json before = stored();
  const std::string line = trouble(7, fit({"--min", "1", "--max", "5000"}));
  EXPECT_THAT(line, AllOf(HasSubstr("from 1 to 5000"), HasSubstr("from 10 to 1000"),
                          HasSubstr("--on-range retry")));
  EXPECT_EQ(stored(), before);
}

TEST_F(fit_options, take_the_raw_range_on_retry_and_extrapolate_on_ignore) {
  const json raw =
      done(fit({"--min", "1", "--max", "5000", "--on-range", "retry", "--json"})).json();
  EXPECT_NEAR(raw["range"]["min"].get<double>(), 10, 1e-5);
  EXPECT_NEAR(raw["curve"].back()[0].get<double>(), 1000, 1e-3);
  const json wide =
      done(fit({"--min", "5", "--max", "1100", "--on-range", "ignore", "--json"})).json();
  EXPECT_NEAR(wide["curve"].front()[0].get<double>(), 5, 1e-9);
  EXPECT_NEAR(wide["curve"].back()[0].get<double>(), 1100, 1e-6);
}

TEST_F(fit_options, ask_an_operator_about_a_range_outside_the_raw_points) {
  const PseudoTerminal terminal;
  terminal.type("r\n");
  const CommandResult raw = runAt(terminal, fit({"--min", "1", "--max", "5000", "--json"}));
  EXPECT_EQ(raw.exitCode, 0);
  EXPECT_THAT(raw.error, AllOf(HasSubstr("from 1 to 5000"), HasSubstr("from 10 to 1000"),
                               HasSubstr("[A]bort, [R]etry, [I]gnore (Enter: Abort)? ")));
  EXPECT_NEAR(raw.json()["range"]["min"].get<double>(), 10, 1e-5);
  const json before = stored();
  terminal.type("\n");
  const CommandResult refused = runAt(terminal, fit({"--min", "1", "--max", "5000"}));
  EXPECT_EQ(refused.exitCode, 7);
  EXPECT_THAT(refused.error, HasSubstr("from 10 to 1000"));
  EXPECT_EQ(stored(), before);
}

TEST_F(fit_options, ask_nobody_about_a_range_that_is_empty) {
  const PseudoTerminal terminal;
  for (const Arguments& range :
       {Arguments{"--min", "50", "--max", "20"}, {"--min", "2000"}, {"--max", "5"}}) {
    const CommandResult refused = runAt(terminal, fit(range));
    EXPECT_EQ(refused.exitCode, 2) << refused.error;
    EXPECT_THAT(refused.error, AllOf(HasSubstr("is not below --max"), Not(HasSubstr("[R]etry"))));
  }
}

TEST_F(fit_options, ask_nobody_where_told_so_or_answered_before) {
  const PseudoTerminal terminal;
  const CommandResult refused = runAt(terminal, fit({"--min", "1", "--max", "5000", "--no-input"}));
  EXPECT_EQ(refused.exitCode, 7);
  EXPECT_THAT(refused.error, Not(HasSubstr("[R]etry")));
  const CommandResult answered =
      runAt(terminal, fit({"--min", "1", "--max", "5000", "--on-range", "retry"}));
  EXPECT_EQ(answered.exitCode, 0);
  EXPECT_THAT(answered.error, Not(HasSubstr("[R]etry")));
}

TEST_F(fit_options, say_once_why_no_equation_passes_and_name_the_bad_point) {
  done(fit({}));
  const json before = stored();
  const CommandResult result = run(fit({"--band", "0.001", "--choose", "adjusted-r2"}));
  EXPECT_EQ(result.exitCode, 6);
  const std::string reason = "Band test failed";
  EXPECT_THAT(result.output,
              AllOf(HasSubstr(reason), HasSubstr("70.7946"), HasSubstr("fail in the same way"),
                    Not(testing::ContainsRegex("--band 0\\.[1-9]"))));
  EXPECT_EQ(result.output.find(reason), result.output.rfind(reason));
  EXPECT_THAT(result.output, HasSubstr("pelmora exclude " + shownCurves() +
                                       " --meter P --series S --part 1 --point 18 --reason "));
  EXPECT_THAT(result.error, AllOf(HasSubstr("no equation passed"),
                                  HasSubstr("check point 18 of part 1 (Roshko 70.795)"),
                                  HasSubstr("no curve was stored"), Not(HasSubstr("--band"))));
  EXPECT_EQ(stored(), before);
}

TEST_F(fit_options, pass_with_the_band_that_was_advised) {
  std::string noisy = "x,y\n";
  for (int i = 0; i <= 40; ++i) {
    const double x = std::pow(10, 1 + i * 0.05);
    const double y = (100 + 10 * std::log10(x)) * (i % 2 == 0 ? 1.002 : 0.998);
    noisy += std::to_string(x) + "," + std::to_string(y) + "\n";
  }
  done({"raw", curves, write("noisy.csv", noisy), "--meter", "P", "--series", "Noisy"});
  const Arguments narrow{"fit",   curves,   "--meter", "P",        "--series",
                         "Noisy", "--band", "0.15",    "--choose", "adjusted-r2"};
  const CommandResult refused = run(narrow);
  EXPECT_EQ(refused.exitCode, 6);
  const std::size_t at = refused.output.rfind("--series Noisy --band ");
  ASSERT_NE(at, std::string::npos) << refused.output;
  const std::size_t begin = at + std::string("--series Noisy --band ").size();
  Arguments wider = narrow;
  wider[7] = refused.output.substr(begin, refused.output.find(' ', begin) - begin);
  done(wider);
}

TEST_F(fit_options, take_equations_from_a_file_or_a_folder_and_leave_no_log_there) {
  const std::string folder = scratch.file("equations");
  std::filesystem::create_directory(folder);
  std::ofstream(folder + "/equations.txt") << "; a comment\nStraight line\ta+b*log(x)\n";
  for (const std::string& place : {folder, folder + "/equations.txt"}) {
    const json value =
        done(fit({"--equations", place, "--without", "Reference curve", "--json"})).json();
    ASSERT_EQ(value["equations"].size(), 1U);
    EXPECT_EQ(value["chosen"], "Straight line");
    EXPECT_NEAR(value["equations"][0]["parameters"][1]["value"].get<double>(), 10, 1e-3);
  }
  std::ofstream(folder + "/equations.txt") << "Broken\ta+b*(\n";
  EXPECT_THAT(trouble(6, fit({"--equations", folder, "--choose", "adjusted-r2"})),
              HasSubstr("Broken"));
  EXPECT_FALSE(std::filesystem::exists(folder + "/log.txt"));
  EXPECT_FALSE(std::filesystem::exists(scratch.file("log.txt")));
}

TEST_F(fit_options, refuse_equation_files_that_hold_none) {
  const std::string folder = scratch.file("equations");
  std::filesystem::create_directory(folder);
  EXPECT_THAT(trouble(5, fit({"--equations", folder})), HasSubstr("has no file 'equations.txt'"));
  EXPECT_THAT(trouble(5, fit({"--equations", folder, "--ratio"})),
              HasSubstr("'ratio equations.txt'"));
  EXPECT_THAT(trouble(5, fit({"--equations", write("e.txt", "; nothing\n")})),
              HasSubstr("holds no equation"));
  EXPECT_THAT(trouble(5, fit({"--equations", scratch.file("none.txt")})),
              HasSubstr("there is no file"));
}

TEST_F(fit_options, count_parameters_as_the_equation_is_read) {
  const std::string few = write("few.csv", "1.5,10\n2,11\n");
  done({"raw", curves, few, "--meter", "P", "--series", "Few"});
  // Of the letters, e belongs to a number and X is the variable.
  const std::string equations = write("e.txt", "Steep\ta+2e3*b*X\n");
  const CommandResult result = run({"fit", curves, "--meter", "P", "--series", "Few", "--equations",
                                    equations, "--choose", "adjusted-r2"});
  EXPECT_EQ(result.exitCode, 6);
  EXPECT_THAT(result.error, HasSubstr("it has 2 parameters, the series 2 points"));
}

TEST_F(fit_options, ask_a_ratio_to_fall) {
  EXPECT_THAT(trouble(6, fit({"--ratio"})), HasSubstr("the ratio rises with Roshko"));
  EXPECT_THAT(trouble(6, fit({"--ratio", "--choose", "adjusted-r2"})),
              HasSubstr("no equation passed"));
}

TEST_F(fit_options, explain_fewer_points_than_parameters) {
  const std::string file = write("few.csv", "1.5,10\n2,11\n3,12\n4,12.5\n");
  done({"raw", curves, file, "--meter", "P", "--series", "Few"});
  const CommandResult result =
      run({"fit", curves, "--meter", "P", "--series", "Few", "--choose", "adjusted-r2"});
  EXPECT_EQ(result.exitCode, 6);
  EXPECT_THAT(result.output, HasSubstr("no solution"));
  EXPECT_THAT(result.output, testing::ContainsRegex("needed\\.[[:space:]]+What would help"));
  EXPECT_THAT(result.error, AllOf(HasSubstr("4 for 7 parameters"), HasSubstr("--choose trusted")));
}

TEST_F(fit_options, need_four_flows_for_a_curve_that_can_be_trusted) {
  const std::string file = write("few.csv", "1.5,10\n2,11\n3,12\n");
  done({"raw", curves, file, "--meter", "P", "--series", "Few"});
  EXPECT_THAT(trouble(6, {"fit", curves, "--meter", "P", "--series", "Few"}),
              AllOf(HasSubstr("no curve for series 'Few'"), HasSubstr("3 distinct flows"),
                    HasSubstr("measure at 4 or more")));
}

}  // namespace
}  // namespace pelmora::test
