// Fitting stored series again, on several threads, and what is told and kept of it.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <cmath>

namespace pelmora::test {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;

// Meters "G0" to "G4" with series "S" and "T", y = 100 + 10 log10(x) and a small wave.
class refit : public CommandTest {
 protected:
  refit() {
    init();
    for (int meter = 0; meter < 5; ++meter) {
      bring(meter, "S", 1);
      bring(meter, "T", 1);
    }
  }
  void bring(int meter, const std::string& series, double factor) const {
    std::string text = "x,y\n";
    for (int i = 0; i <= 40; ++i) {
      const double x = std::pow(10, 1 + i * 0.05);
      const double y = factor * (100 + 10 * std::log10(x) + 0.01 * std::sin(i + meter));
      text += std::to_string(x) + "," + std::to_string(y) + "\n";
    }
    done({"raw", curves, write("s.csv", text), "--meter", "G" + std::to_string(meter), "--register",
          "--series", series});
  }
  json all(const Arguments& more = {}) const {
    Arguments arguments{"refit", curves, "--all", "--json"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return done(arguments).json();
  }
  json stored(const std::string& meter, const std::string& series) const {
    // Not done(), which allows no note about a curve that is older than its points.
    return run({"show", curves, "--meter", meter, "--series", series, "--json"}).json();
  }
  static std::size_t countOf(const json& result, const std::string& outcome) {
    std::size_t count = 0;
    for (const json& series : result["series"]) count += series["outcome"] == outcome ? 1 : 0;
    return count;
  }
};

TEST_F(refit, gives_every_series_its_curve) {
  const json result = all({"--jobs", "3"});
  EXPECT_EQ(result["series"].size(), 10U);
  EXPECT_EQ(countOf(result, "added"), 10U);
  EXPECT_EQ(stored("G3", "T")["curve"].size(), 40U);
}

TEST_F(refit, of_several_threads_stores_what_one_stores) {
  all({"--jobs", "1"});
  std::vector<json> alone;
  for (int meter = 0; meter < 5; ++meter) alone.push_back(stored("G" + std::to_string(meter), "S"));
  for (int meter = 0; meter < 5; ++meter) {
    done({"delete", curves, "--meter", "G" + std::to_string(meter), "--series", "S", "--yes"});
    bring(meter, "S", 1);
  }
  all({"--jobs", "4"});
  for (int meter = 0; meter < 5; ++meter) {
    EXPECT_EQ(stored("G" + std::to_string(meter), "S")["curve"],
              alone[static_cast<std::size_t>(meter)]["curve"]);
  }
}

TEST_F(refit, stores_nothing_where_nothing_changed) {
  all();
  const json again = all();
  EXPECT_EQ(countOf(again, "kept"), 10U);
  for (const json& series : again["series"]) {
    EXPECT_FALSE(series["stored"].get<bool>());
    EXPECT_EQ(series["largestShift"]["percent"].get<double>(), 0);
  }
  EXPECT_THAT(done({"history", curves}).output, HasSubstr("Nothing that was replaced"));
}

TEST_F(refit, tells_what_moved_and_keeps_what_was_there) {
  all();
  const json before = stored("G2", "T");
  bring(2, "T", 1.001);
  const json result = all();
  EXPECT_EQ(countOf(result, "changed"), 1U);
  for (const json& series : result["series"]) {
    if (series["outcome"] != "changed") continue;
    EXPECT_EQ(series["meter"], "G2");
    EXPECT_NEAR(series["largestShift"]["percent"].get<double>(), 0.1, 0.001);
  }
  const json history = done({"history", curves, "--meter", "G2", "--series", "T", "--json"}).json();
  const std::string entry = std::to_string(history["entries"][0]["entry"].get<int>());
  done({"restore", curves, entry});
  EXPECT_EQ(stored("G2", "T")["curve"], before["curve"]);
}

TEST_F(refit, counts_a_small_move_as_kept_but_stores_it) {
  all();
  bring(1, "S", 1.00005);
  const json result = all({"--changed", "0.02"});
  EXPECT_EQ(countOf(result, "changed"), 0U);
  for (const json& series : result["series"]) {
    EXPECT_EQ(series["stored"].get<bool>(), series["meter"] == "G1" && series["series"] == "S");
  }
}

TEST_F(refit, keeps_the_settings_of_a_curve) {
  done({"fit", curves, "--meter", "G0", "--series", "S", "--points", "12", "--min", "20", "--max",
        "500"});
  const json before = stored("G0", "S")["curve"];
  done({"refit", curves, "--meter", "G0", "--series", "S"});
  EXPECT_EQ(stored("G0", "S")["curve"], before);
}

TEST_F(refit, uses_the_equations_of_a_curve_for_no_other_series) {
  const std::string own = write("own.txt", "Own line\ta+b*log(x)\n");
  const auto refitted = [&](int meter, const std::string& kept, const std::string& other) {
    bring(meter, kept, -1);  // falling, as ratios must
    bring(meter, other, -1);
    const std::string serialNumber = "G" + std::to_string(meter);
    done({"fit", curves, "--meter", serialNumber, "--series", kept, "--equations", own, "--band",
          "2"});
    return done({"refit", curves, "--meter", serialNumber, "--series", kept, "--series", other,
                 "--series", kept, "--jobs", "1", "--json"})
        .json()["series"];
  };
  for (const json& series :
       {refitted(0, "A", "Ratio"), refitted(1, "Ratio", "A"), refitted(2, "A", "B")}) {
    EXPECT_EQ(series[0]["equation"], "Own line");
    EXPECT_EQ(series[1]["outcome"], "added") << series;
    EXPECT_NE(series[1]["equation"], "Own line");
    EXPECT_EQ(series[2]["equation"], "Own line");
  }
}

TEST_F(refit, of_a_dry_run_changes_nothing) {
  all();
  bring(2, "T", 1.001);
  const json before = stored("G2", "T");
  const json result = all({"--dry-run"});
  EXPECT_EQ(countOf(result, "changed"), 1U);
  EXPECT_EQ(stored("G2", "T"), before);
}

// The refit keeps the rule of the curve. This one has no reference curve to fall back on.
TEST_F(refit, leaves_the_curve_where_no_equation_passes) {
  done({"fit", curves, "--meter", "G4", "--series", "S", "--choose", "adjusted-r2"});
  all();
  const json before = stored("G4", "S")["curve"];
  std::string text = "x,y\n";
  for (int i = 1; i < 40; ++i)
    text += std::to_string(i * 10) + "," + (i % 2 == 0 ? "100" : "150") + "\n";
  done({"raw", curves, write("w.csv", text), "--meter", "G4", "--series", "S"});
  const CommandResult result = run({"refit", curves, "--all"});
  EXPECT_EQ(result.exitCode, 6);
  EXPECT_THAT(result.error, AllOf(HasSubstr("series 'S'"), HasSubstr("'G4'")));
  EXPECT_THAT(result.output, HasSubstr("1 not fitted"));
  EXPECT_EQ(stored("G4", "S")["curve"], before);
}

TEST_F(refit, wants_all_or_names) {
  EXPECT_THAT(trouble(2, {"refit", curves}), HasSubstr("--all"));
  EXPECT_THAT(trouble(2, {"refit", curves, "--all", "--meter", "G1"}), HasSubstr("--all"));
  EXPECT_THAT(trouble(2, {"refit", curves, "--all", "--jobs", "0"}), HasSubstr("--jobs"));
  EXPECT_THAT(trouble(4, {"refit", curves, "--meter", "G1", "--series", "s1"}),
              HasSubstr("no series 's1'"));
}

TEST_F(refit, shows_a_table_of_80_columns) {
  all();
  bring(2, "T", 1.001);
  std::istringstream lines(done({"refit", curves, "--all"}).output);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
}

}  // namespace
}  // namespace pelmora::test
