// The report as a command: where it goes, what it refuses, curves without their settings.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"
#include "tests/support/plain_database.h"

#include <sys/stat.h>

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class report_command : public CommandTest {
 protected:
  void SetUp() override { initCalibrated(); }
  Arguments report(const std::string& file, const Arguments& more = {}) const {
    Arguments arguments{"report", curves, "--meter", "M1", "-o", file};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  [[nodiscard]] nlohmann::json model(const Arguments& more = {}) const {
    Arguments arguments = report("-", {"--json"});
    arguments.insert(arguments.end(), more.begin(), more.end());
    return done(arguments).json();
  }
  void change(const std::string& sql) const { PlainDatabase(curves).run(sql); }
  static std::vector<std::string> kinds(const nlohmann::json& series) {
    std::vector<std::string> list;
    for (const auto& warning : series["warnings"]) list.push_back(warning["kind"]);
    return list;
  }
};

TEST_F(report_command, writes_the_format_of_the_extension) {
  EXPECT_THAT(done(report(scratch.file("r.HTML"))).output, HasSubstr("4 series"));
  EXPECT_TRUE(bytesOf(scratch.file("r.HTML")).starts_with("<!DOCTYPE html>"));
  done(report(scratch.file("r.json")));
  EXPECT_EQ(nlohmann::json::parse(bytesOf(scratch.file("r.json")))["schema"], "pelmora-report/1");
  done(report(scratch.file("r.csv")));
  EXPECT_TRUE(bytesOf(scratch.file("r.csv")).starts_with("table,"));
  done(report(scratch.file("r.xlsx")));
  EXPECT_TRUE(bytesOf(scratch.file("r.xlsx")).starts_with("PK"));
  done(report(scratch.file("r.svg")));
  EXPECT_TRUE(bytesOf(scratch.file("r.svg")).starts_with("<?xml"));
}

TEST_F(report_command, writes_to_standard_output) {
  EXPECT_TRUE(done(report("-")).output.starts_with("<!DOCTYPE html>"));
  EXPECT_TRUE(done(report("-", {"--csv"})).output.starts_with("table,"));
}

TEST_F(report_command, takes_the_series_that_are_named) {
  const auto series = model({"--series", "Ratio", "--series", "Rotor B"})["series"];
  ASSERT_EQ(series.size(), 2U);
  EXPECT_EQ(series[0]["name"], "Ratio");
  EXPECT_EQ(series[1]["name"], "Rotor B");
}

TEST_F(report_command, refuses_what_is_no_file_to_write) {
  EXPECT_THAT(trouble(2, report(scratch.file(""), {"--json"})), HasSubstr("is a folder"));
  EXPECT_THAT(trouble(2, report(scratch.file("none/r.html"))),
              HasSubstr("folder that is not there"));
  EXPECT_THAT(trouble(2, report("/dev/null", {"--json"})), HasSubstr("is not a regular file"));
  EXPECT_THAT(trouble(2, report(scratch.file("r.doc"))), HasSubstr("has no ending of a report"));
  EXPECT_THAT(trouble(2, report(scratch.file("r"), {"--json", "--csv"})),
              HasSubstr("exclude each other"));
}

TEST_F(report_command, never_writes_over_its_database) {
  const std::string before = bytesOf(curves);
  EXPECT_THAT(trouble(2, report(curves, {"--json"})), HasSubstr("is the curve database"));
  EXPECT_EQ(bytesOf(curves), before);
}

TEST_F(report_command, knows_the_names_that_there_are) {
  EXPECT_THAT(trouble(4, {"report", curves, "--meter", "M2", "-o", "-"}), HasSubstr("M2"));
  EXPECT_THAT(trouble(4, report("-", {"--series", "Rotor a b"})), HasSubstr("Rotor A"));
}

TEST_F(report_command, replaces_a_file_as_a_whole_and_keeps_its_rights) {
  const std::string file = write("r.json", "old");
  ASSERT_EQ(chmod(file.c_str(), 0640), 0);
  done(report(file));
  EXPECT_TRUE(nlohmann::json::accept(bytesOf(file)));
  struct stat state {};
  ASSERT_EQ(stat(file.c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 0777U, 0640U);
  for (const auto& entry :
       std::filesystem::directory_iterator(std::filesystem::path(file).parent_path()))
    EXPECT_EQ(entry.path().string().find(".new-"), std::string::npos) << entry.path();
}

TEST_F(report_command, writes_the_file_that_a_link_names) {
  const std::string file = scratch.file("r.json");
  const std::string link = scratch.file("link.json");
  std::filesystem::create_symlink("r.json", link);
  for (const char* state : {"new", "old"}) {
    done(report(link));
    EXPECT_TRUE(std::filesystem::is_symlink(link)) << state;
    EXPECT_TRUE(nlohmann::json::accept(bytesOf(file))) << state;
  }
}

TEST_F(report_command, leaves_the_old_file_where_the_report_fails) {
  const std::string file = write("r.json", "old");
  trouble(4, report(file, {"--series", "none"}));
  EXPECT_EQ(bytesOf(file), "old");
}

TEST_F(report_command, repeats_a_fit_by_the_settings_that_were_kept) {
  const std::string equations = write("own.txt", "Third order\ta+b*ln(x)+c*ln(x)^2+d*ln(x)^3\n");
  done({"fit", curves, "--meter", "M1", "--series", "Rotor A", "--min", "60", "--max", "900",
        "--band", "1", "--points", "17", "--equations", equations, "--choose", "adjusted-r2"});
  std::filesystem::remove(equations);
  const auto series = model({"--series", "Rotor A"})["series"][0];
  EXPECT_EQ(series["chosen"], "Third order");
  EXPECT_EQ(series["settings"]["kept"], true);
  EXPECT_EQ(series["curve"].size(), 17U);
  EXPECT_FALSE(series["curve"][0]["confidenceHalfWidth"].is_null());
  EXPECT_THAT(kinds(series), testing::Not(testing::Contains("notRepeated")));
}

TEST_F(report_command, reads_settings_that_were_not_kept_from_report_and_curve) {
  done({"fit", curves, "--meter", "M1", "--series", "Rotor A", "--min", "60", "--max", "900",
        "--band", "1", "--points", "30", "--choose", "adjusted-r2"});
  // A file of an older version has no such table; on a server, the table is always there.
  change(isRunOnServer() ? "DELETE FROM pelmora_fit_settings" : "DROP TABLE pelmora_fit_settings");
  const auto series = model({"--series", "Rotor A"})["series"][0];
  EXPECT_EQ(series["settings"]["kept"], false);
  EXPECT_EQ(series["settings"]["bandPercent"], 1);
  EXPECT_EQ(series["settings"]["points"], 30);
  EXPECT_NEAR(series["settings"]["min"], 60, 1e-9);
  EXPECT_THAT(kinds(series), testing::Not(testing::Contains("notRepeated")));
}

TEST_F(report_command, says_that_the_stored_curve_is_not_repeated) {
  change(R"(update curve set "Strouhal" = "Strouhal" * 1.001 )"
         R"(where "seriesID" = (select "ID" from series where name = 'Rotor A'))");
  const auto series = model({"--series", "Rotor A"})["series"][0];
  EXPECT_THAT(kinds(series), testing::Contains("notRepeated"));
  EXPECT_TRUE(series["curve"][0]["confidenceHalfWidth"].is_null());
}

TEST_F(report_command, shows_a_series_without_points_or_curve) {
  done({"raw", curves, data("real-vortex-shedding-strouhal.csv"), "--meter", "M1", "--series",
        "Shedding", "--where", "set=2"});
  change(
      R"(delete from raw1 where "seriesID" = (select "ID" from series where name = 'Shedding'))");
  const auto series = model({"--series", "Shedding"})["series"][0];
  EXPECT_THAT(kinds(series), ElementsAre("noCurve", "notFitted"));
  EXPECT_THAT(series["raw"], IsEmpty());
  done(report(scratch.file("r.html"), {"--series", "Shedding"}));
  done(report(scratch.file("r.svg"), {"--series", "Shedding"}));
}

}  // namespace
}  // namespace pelmora::test
