// Comparing stored curves and writing stored points for other programs.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

namespace pelmora::test {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;

// Meter "P", series "S": a straight line that a later calibration finds 0.2 % higher.
class compare : public CommandTest {
 protected:
  compare() {
    init();
    bring(curves, 1);
  }
  void bring(const std::string& database, double factor) const {
    std::string text = "x,y\n";
    for (int i = 1; i <= 40; ++i)
      text += std::to_string(i * 10) + "," + std::to_string(factor * (100 + i)) + "\n";
    done({"raw", database, write("s.csv", text), "--meter", "P", "--register", "--series", "S"});
    done({"fit", database, "--meter", "P", "--series", "S"});
  }
  Arguments of(const Arguments& more) const {
    Arguments arguments{"compare", curves, "--meter", "P", "--series", "S"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  const std::string later = scratch.file("later.db");
};

TEST_F(compare, tells_the_shift_between_two_databases) {
  done({"init", later});
  bring(later, 1.002);
  Arguments arguments = of({"--with", curves, "--json"});
  arguments[1] = later;
  const json result = done(arguments).json();
  EXPECT_NEAR(result["meanPercent"].get<double>(), 0.2, 1e-4);
  EXPECT_NEAR(result["lowest"]["percent"].get<double>(), 0.2, 1e-3);
  EXPECT_NEAR(result["highest"]["percent"].get<double>(), 0.2, 1e-3);
}

TEST_F(compare, ends_with_its_own_code_beyond_the_tolerance) {
  done({"init", later});
  bring(later, 1.002);
  done(of({"--with", later, "--tolerance", "0.21"}));
  const CommandResult result = run(of({"--with", later, "--tolerance", "0.1"}));
  EXPECT_EQ(result.exitCode, 9);
  EXPECT_THAT(result.error, AllOf(HasSubstr("0.1 %"), HasSubstr("series 'S'")));
  EXPECT_THAT(result.output, HasSubstr("mean"));
}

TEST_F(compare, takes_the_calibration_before) {
  done(twoFluids());
  done(twoFluids({"--new-calibration"}));
  const json result =
      done({"compare", curves, "--meter", "M1", "--series", "Ratio", "--json"}).json();
  EXPECT_EQ(result["earlier"]["calibration"], 0);
  EXPECT_EQ(result["now"]["calibration"], 1);
  EXPECT_EQ(result["highest"]["percent"].get<double>(), 0);
}

TEST_F(compare, names_what_is_missing) {
  EXPECT_THAT(trouble(4, of({})), AllOf(HasSubstr("no calibration before 0"), HasSubstr("--with")));
  EXPECT_THAT(trouble(2, of({"--with", curves, "--tolerance", "-1"})), HasSubstr("negative"));
  done(
      {"raw", curves, write("p.csv", "1,2\n3,4\n"), "--meter", "Q", "--register", "--series", "S"});
  EXPECT_THAT(trouble(5, {"compare", curves, "--meter", "Q", "--series", "S", "--with", curves}),
              HasSubstr("no stored curve"));
}

TEST_F(compare, has_a_table_of_80_columns) {
  std::istringstream lines(done(of({"--with", curves})).output);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
}

class export_points : public CommandTest {
 protected:
  export_points() { initCalibrated(); }
};

TEST_F(export_points, writes_every_digit_and_brings_it_back) {
  const std::string file = scratch.file("points.csv");
  EXPECT_EQ(done({"export", curves, "--meter", "M1", "--series", "Rotor A", "--points", "raw", "-o",
                  file})
                .output,
            "");
  done({"raw", curves, file, "--meter", "Copy", "--register", "--series", "Rotor A", "--x",
        "roshko", "--y", "strouhal", "--where", "points=raw1"});
  const auto points = [&](const std::string& meter) {
    return done({"export", curves, "--meter", meter, "--series", "Rotor A", "--points", "raw",
                 "--json"})
        .json()["tables"][0]["values"];
  };
  EXPECT_EQ(points("Copy"), points("M1"));
}

TEST_F(export_points, writes_all_tables_of_all_series) {
  const json tables = done({"export", curves, "--meter", "M1", "--json"}).json()["tables"];
  EXPECT_EQ(tables.size(), 4U * 4U);  // two raw parts, merged points and curve of four series
  const std::string csv = done({"export", curves, "--meter", "M1"}).output;
  EXPECT_TRUE(csv.starts_with("series,points,roshko,strouhal\n"));
  EXPECT_THAT(csv, HasSubstr("\nRotor Sum,merged,"));
}

TEST_F(export_points, refuses_to_write_over_the_database) {
  EXPECT_THAT(trouble(2, {"export", curves, "--meter", "M1", "-o", curves}), HasSubstr("curve"));
}

TEST_F(export_points, refuses_points_of_no_known_kind) {
  EXPECT_THAT(trouble(2, {"export", curves, "--meter", "M1", "--points", "some"}),
              HasSubstr("--points"));
}

}  // namespace
}  // namespace pelmora::test
