// Which curve a fit chooses, from which points and equations, and what it refuses to store.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace pelmora::test {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

double truth(double x) { return 100 + 10 * std::log10(x); }

// Series "S" of meter "P": 41 points of y = 100 + 10 log10(x) with a noise of 0.03 %; number 18 of
// series "Spoiled" is 2 % too high.
class fit_choice : public CommandTest {
 protected:
  fit_choice() {
    init();
    for (const std::string series : {"S", "Spoiled"}) {
      std::mt19937 random(20);
      std::normal_distribution<double> noise(0, 3e-4);
      std::string text = "x,y\n";
      for (int i = 0; i <= 40; ++i) {
        const double x = std::pow(10, 1 + i * 0.05);
        const bool isBad = series == "Spoiled" && i == 17;
        text += std::to_string(x) + "," +
                std::to_string(truth(x) * (1 + noise(random)) * (isBad ? 1.02 : 1)) + "\n";
      }
      done({"raw", curves, write(series + ".csv", text), "--meter", "P", "--register", "--series",
            series});
    }
  }
  Arguments command(const std::string& name, const Arguments& more,
                    const std::string& series = "S") const {
    Arguments arguments{name, curves, "--meter", "P", "--series", series};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  json fitted(Arguments more, const std::string& series = "S") const {
    more.emplace_back("--json");
    return done(command("fit", more, series)).json();
  }
  json refitted(const Arguments& more = {}) const {
    Arguments arguments{"refit", curves, "--meter", "P", "--series", "S", "--json"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return done(arguments).json()["series"][0];
  }
  // The settings that are kept with the curve.
  json kept(const std::string& series = "S") const {
    return done({"report", curves, "--meter", "P", "--series", series, "-o", "-", "--json"})
        .json()["series"][0]["settings"];
  }
  json stored(const std::string& series = "S") const {
    return done(command("show", {"--json"}, series)).json();
  }
  static std::vector<std::string> names(const json& equations) {
    std::vector<std::string> list;
    for (const json& equation : equations) list.push_back(equation["name"]);
    return list;
  }
};

double worstPercent(const json& curve) {
  double worst = 0;
  for (const json& point : curve) {
    const double wanted = truth(point[0].get<double>());
    worst = std::max(worst, std::abs(100 * (point[1].get<double>() / wanted - 1)));
  }
  return worst;
}

TEST_F(fit_choice, is_by_trust_unless_another_rule_is_asked_for) {
  const json fit = fitted({});
  EXPECT_EQ(fit["choose"], "trusted");
  EXPECT_FALSE(fit["reference"].is_null());
  EXPECT_EQ(fit["chosen"], "Polynomial 1st Order");  // the points were made with it
  EXPECT_LT(worstPercent(fit["curve"]), 0.03);
  EXPECT_EQ(kept()["choose"], "trusted");
  const json byR2 = fitted({"--choose", "adjusted-r2"});
  EXPECT_EQ(byR2["choose"], "adjusted-r2");
  EXPECT_TRUE(byR2["reference"].is_null());
  EXPECT_EQ(names(byR2["equations"]).front(), "TC eq6405");
  EXPECT_EQ(kept()["choose"], "adjusted-r2");
}

TEST_F(fit_choice, of_a_stored_curve_stays_in_a_refit_until_it_is_changed) {
  const json before = fitted({"--choose", "adjusted-r2", "--band", "1"});
  EXPECT_EQ(refitted()["equation"], before["chosen"]);
  EXPECT_EQ(kept()["choose"], "adjusted-r2");
  const json changed = refitted({"--choose", "trusted"});
  EXPECT_EQ(changed["equation"], "Polynomial 1st Order");
  EXPECT_EQ(changed["stored"], true);
  EXPECT_EQ(kept()["choose"], "trusted");
  EXPECT_EQ(kept()["bandPercent"], 1.0);
  EXPECT_EQ(refitted({"--choose", "trusted"})["stored"], false);  // nothing is left to change
  EXPECT_EQ(refitted()["equation"], "Polynomial 1st Order");
}

TEST_F(fit_choice, is_limited_to_the_equations_that_are_named) {
  const json only = fitted({"--only", "Polynomial 2nd Order", "--only", "Polynomial 3rd Order"});
  EXPECT_THAT(names(only["equations"]),
              testing::UnorderedElementsAre("Polynomial 2nd Order", "Polynomial 3rd Order"));
  EXPECT_EQ(only["chosen"], "Polynomial 2nd Order");
  const json without = fitted({"--without", "Polynomial 1st Order"});
  EXPECT_THAT(names(without["equations"]), Not(Contains("Polynomial 1st Order")));
  EXPECT_EQ(without["without"], json{"Polynomial 1st Order"});
  EXPECT_EQ(kept()["without"], json{"Polynomial 1st Order"});
  EXPECT_NE(refitted()["equation"], "Polynomial 1st Order");
}

TEST_F(fit_choice, may_be_the_reference_curve_alone) {
  const json fit = fitted({"--only", "Reference curve"});
  EXPECT_EQ(fit["chosen"], "Reference curve");
  EXPECT_LT(worstPercent(fit["curve"]), 0.05);
}

TEST_F(fit_choice, refuses_equations_that_are_not_there_and_suggests_the_nearest) {
  EXPECT_THAT(trouble(2, command("fit", {"--without", "Polynomial 6 Order"})),
              AllOf(HasSubstr("--without: there is no equation 'Polynomial 6 Order'"),
                    HasSubstr("'Polynomial 6th Order'")));
  EXPECT_THAT(trouble(2, command("fit", {"--choose", "adjusted-r2", "--only", "Reference curve"})),
              HasSubstr("there is no equation 'Reference curve'"));
  const std::string own = write("own.txt", "Line\ta+b*log(x)\n");
  EXPECT_THAT(trouble(2, command("fit", {"--equations", own, "--choose", "adjusted-r2", "--without",
                                         "Line"})),
              HasSubstr("leave no equation to try"));
}

TEST_F(fit_choice, has_a_highest_order_of_polynomials) {
  const auto tried = names(fitted({"--max-order", "3"})["equations"]);
  EXPECT_THAT(tried, Contains("Polynomial 3rd Order"));
  EXPECT_THAT(tried, Not(Contains("Polynomial 4th Order")));
  EXPECT_THAT(tried, Contains("Torque balance, laminar"));
  EXPECT_EQ(kept()["maxOrder"], 3);
}

TEST_F(fit_choice, of_a_curve_with_a_warning_is_stored_unless_it_must_not_be) {
  const json fit = fitted({}, "Spoiled");
  ASSERT_THAT(fit["warnings"], SizeIs(1));
  EXPECT_EQ(fit["warnings"][0]["kind"], "distrustedPoint");
  EXPECT_LT(worstPercent(fit["curve"]), 0.03);
  const json before = stored("Spoiled");
  const std::string line = trouble(6, command("fit", {"--strict", "--band", "0.4"}, "Spoiled"));
  EXPECT_THAT(line, AllOf(HasSubstr("1 warning"), HasSubstr("Point 18 of part 1"),
                          HasSubstr("--strict"), HasSubstr("no curve was stored")));
  EXPECT_EQ(stored("Spoiled"), before);
  const CommandResult refit =
      run({"refit", curves, "--meter", "P", "--strict", "--json", "--choose", "trusted"});
  EXPECT_EQ(refit.exitCode, 6);
  const json answer = refit.json();
  ASSERT_THAT(answer["series"], SizeIs(2));
  for (const json& series : answer["series"]) {
    const bool isBad = series["series"] == "Spoiled";
    EXPECT_EQ(series["outcome"], isBad ? "notFitted" : "added") << series;
  }
  EXPECT_EQ(stored("Spoiled"), before);
  EXPECT_EQ(done(command("fit", {"--strict"})).exitCode, 0);
}

TEST_F(fit_choice, is_of_the_points_in_the_range_to_fit) {
  const json fit = fitted({"--fit-min", "20", "--fit-max", "500"});
  EXPECT_EQ(fit["fittedPoints"], 27);  // 10^1.35 = 22.4 to 10^2.65 = 447
  EXPECT_THAT(fit["merged"], SizeIs(41));
  EXPECT_NEAR(fit["curve"].front()[0].get<double>(), std::pow(10, 1.35), 1e-5);
  EXPECT_NEAR(fit["curve"].back()[0].get<double>(), std::pow(10, 2.65), 1e-3);
  EXPECT_EQ(kept()["fitMin"], 20.0);
  EXPECT_EQ(refitted()["outcome"], "kept");
  EXPECT_EQ(refitted({"--fit-min", "50"})["stored"], true);
  EXPECT_NEAR(stored()["curve"].front()[0].get<double>(), std::pow(10, 1.7), 1e-4);
  EXPECT_EQ(kept()["fitMax"], 500.0);
}

TEST_F(fit_choice, says_that_the_range_crops_the_table_alone) {
  const Arguments range{"--min", "20", "--max", "500"};
  EXPECT_EQ(fitted(range)["fittedPoints"], 41);
  const std::string text = done(command("fit", range)).output;
  EXPECT_THAT(text, HasSubstr("cropped: 14 points beyond it are fitted anyway"));
  EXPECT_THAT(done(command("fit", {"--fit-min", "20"})).output, Not(HasSubstr("cropped")));
}

TEST_F(fit_choice, refuses_a_range_to_fit_without_points) {
  EXPECT_THAT(trouble(7, command("fit", {"--fit-min", "5000"})), HasSubstr("range to fit"));
}

TEST_F(fit_choice, shows_what_the_merge_cut_and_sets_it) {
  // The three lowest points of part 2 lie 0.5 % below part 1; the merge scans from the far end and
  // tolerates the first of them.
  std::string first = "x,y\n", second = "x,y\n";
  for (int i = 0; i <= 20; ++i) {
    const double low = std::pow(10, 1 + i * 0.05), high = std::pow(10, 1.525 + i * 0.05);
    first += std::to_string(low) + "," + std::to_string(truth(low)) + "\n";
    second += std::to_string(high) + "," + std::to_string(truth(high) * (i < 3 ? 0.995 : 1)) + "\n";
  }
  const std::string series = "Two";
  done({"raw", curves, write("1.csv", first), "--meter", "P", "--series", series});
  done({"raw", curves, write("2.csv", second), "--meter", "P", "--series", series, "--part", "2"});
  const json fit = fitted({}, series);
  ASSERT_THAT(fit["cut"], SizeIs(2));
  for (const json& cut : fit["cut"]) {
    EXPECT_EQ(cut["part"], 2);
    EXPECT_NEAR(cut["offPercent"].get<double>(), -0.5, 0.02);
  }
  EXPECT_THAT(fit["merged"], SizeIs(40));
  EXPECT_THAT(done(command("fit", {}, series)).output,
              AllOf(HasSubstr("The merge cut 2 points"), HasSubstr("Off %")));
  EXPECT_THAT(fitted({"--merge-band", "2"}, series)["cut"], IsEmpty());
  EXPECT_EQ(kept(series)["mergeBand"], 2.0);
  EXPECT_THAT(fitted({"--no-cut"}, series)["merged"], SizeIs(42));
  EXPECT_EQ(kept(series)["cutsOverlap"], false);
  done({"refit", curves, "--meter", "P", "--series", series});
  EXPECT_THAT(stored(series)["merged"], SizeIs(42));
  done({"refit", curves, "--meter", "P", "--series", series, "--merge-band", "0.1"});
  EXPECT_THAT(stored(series)["merged"], SizeIs(40));
  EXPECT_THAT(trouble(2, command("fit", {"--no-cut", "--merge-band", "1"}, series)),
              HasSubstr("exclude each other"));
}

TEST_F(fit_choice, draws_the_fit_on_request) {
  EXPECT_THAT(done(command("fit", {"--plot", "--ascii", "--dry-run"})).output,
              AllOf(HasSubstr("Off the curve, %, band 0.3 %"), HasSubstr("Dry run")));
  EXPECT_THAT(done(command("fit", {"--plot"})).output, HasSubstr("Off the curve, %, band 0.3 %"));
  EXPECT_THAT(trouble(2, command("fit", {"--plot", "--json"})), HasSubstr("exclude each other"));
}

TEST_F(fit_choice, is_among_the_equations_that_are_listed) {
  const json listed = done({"equations", "--json"}).json();
  EXPECT_EQ(listed["choose"], "trusted");
  EXPECT_EQ(names(listed["equations"]),
            names(fitted({"--without", "Reference curve"})["equations"]));
  const json own = done({"equations", "--choose", "adjusted-r2", "--json"}).json()["equations"];
  EXPECT_EQ(names(own), names(fitted({"--choose", "adjusted-r2"})["equations"]));
  EXPECT_EQ(own[0]["parameters"], 9);
  EXPECT_TRUE(own[0]["order"].is_null());
  EXPECT_EQ(own[1]["order"], 10);
  EXPECT_THAT(done({"equations"}).output,
              AllOf(HasSubstr("Polynomial 2nd Order (3 parameters)\n    a+b*log(x)+c*log(x)^2\n"),
                    HasSubstr("'Reference curve'")));
}

TEST_F(fit_choice, starts_a_list_of_your_own_equations) {
  const std::string file = scratch.file("own.txt");
  done({"equations", "--write", file});
  const json fit = fitted({"--equations", file, "--without", "Reference curve"});
  EXPECT_EQ(names(fit["equations"]), names(done({"equations", "--json"}).json()["equations"]));
  EXPECT_THAT(trouble(2, {"equations", "--write", file}), HasSubstr("already"));
  EXPECT_EQ(done({"equations", "--equations", file, "--json"}).json()["equations"],
            done({"equations", "--json"}).json()["equations"]);
}

}  // namespace
}  // namespace pelmora::test
