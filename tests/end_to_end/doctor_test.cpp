// Checking a curve database and mending it.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"
#include "tests/end_to_end/running_command.h"
#include "tests/support/plain_database.h"

#include <algorithm>

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class doctor : public CommandTest {
 protected:
  doctor() {
    initCalibrated();
    done({"raw", curves, write("p.csv", "1,2\n3,4\n5,6\n"), "--meter", "P", "--register",
          "--series", "S"});
  }
  void execute(const std::string& sql) const { PlainDatabase(curves).run(sql); }
  [[nodiscard]] std::int64_t count(const std::string& from) const {
    return PlainDatabase(curves).count(from);
  }
  nlohmann::json examined(int exitCode, const Arguments& more = {}) const {
    Arguments arguments{"doctor", curves, "--json"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const CommandResult result = run(arguments);
    EXPECT_EQ(result.exitCode, exitCode) << result.error << result.output;
    return result.json();
  }
  // The one thing that is wrong.
  nlohmann::json finding(const std::string& id, const std::string& severity) const {
    const auto value = examined(severity == "note" ? 0 : 5);
    EXPECT_EQ(value["findings"].size(), 1U) << value;
    if (value["findings"].empty()) return {};
    const auto found = value["findings"][0];
    EXPECT_EQ(found["id"], id);
    EXPECT_EQ(found["severity"], severity);
    return found;
  }
};

TEST_F(doctor, finds_nothing_wrong_after_the_commands_of_a_calibration) {
  EXPECT_THAT(done({"doctor", curves}).output, HasSubstr("Nothing is wrong"));
  done({"fit", curves, "--meter", "M1", "--series", "Rotor A", "--min", "2", "--max", "1000",
        "--band", "0.5"});
  done({"delete", curves, "--meter", "M1", "--series", "Ratio", "--yes"});
  done({"restore", curves, "2"});
  EXPECT_EQ(examined(0)["findings"].size(), 0U);
}

TEST_F(doctor, finds_points_that_are_no_finite_numbers) {
  execute(R"(UPDATE raw1 SET "Strouhal" = NULL WHERE "seriesID" = 5 AND "Roshko" = 3;)"
          R"(UPDATE raw1 SET "Roshko" = )" +
          PlainDatabase(curves).infinity() +
          R"( WHERE "seriesID" = 5 AND "Roshko" = 5;)"
          // The server has columns of numbers alone, but it knows one that is none.
          R"(UPDATE curve SET "Strouhal" = 'NaN' WHERE "seriesID" = 1 AND "Roshko" = )"
          R"((SELECT min("Roshko") FROM curve WHERE "seriesID" = 1))");
  const auto found = finding("unusable-numbers", "error");
  EXPECT_EQ(found["count"], 3);
  EXPECT_EQ(found["repairable"], false);
  EXPECT_EQ(found["example"], "table raw1, series 'S' of meter 'P', calibration 0");
  EXPECT_EQ(run({"doctor", curves, "--repair"}).exitCode, 5);
  EXPECT_EQ(finding("unusable-numbers", "error")["count"], 3);
}

TEST_F(doctor, finds_series_and_calibrations_of_the_same_name) {
  execute(
      "INSERT INTO series (name, meterid) VALUES ('rotor a', 1);"
      R"(INSERT INTO raw1 ("seriesID", "Roshko", "Strouhal") VALUES (6, 1, 2))");
  EXPECT_EQ(finding("duplicate-series", "error")["example"],
            "series 'Rotor A' of meter 'M1', calibration 0");
  execute(R"(DELETE FROM series WHERE "ID" = 6; DELETE FROM raw1 WHERE "seriesID" = 6;)"
          R"(INSERT INTO meter ("SerialNumber", "ReCalID") VALUES ('m1', 0))");
  EXPECT_EQ(finding("duplicate-calibrations", "error")["count"], 1);
}

TEST_F(doctor, finds_series_without_a_name) {
  execute(R"(INSERT INTO series ("ID", name, meterid) VALUES (8, NULL, 1), (9, '', 2);)"
          R"(INSERT INTO raw1 ("seriesID", "Roshko", "Strouhal") VALUES (8, 1, 2), (9, 1, 2))");
  const auto found = finding("unnamed-series", "error");
  EXPECT_EQ(found["count"], 2);
  EXPECT_EQ(found["example"], "series 8");
}

TEST_F(doctor, finds_calibration_numbers_that_are_none) {
  // The server's column holds whole numbers alone.
  if (!isRunOnServer()) {
    execute("UPDATE meter SET ReCalID = 'first' WHERE SerialNumber = 'P'");
    EXPECT_EQ(finding("unusable-calibration-numbers", "error")["count"], 1);
  }
  execute(R"(UPDATE meter SET "ReCalID" = NULL WHERE "SerialNumber" = 'P')");
  const auto found = finding("unusable-calibration-numbers", "error");
  EXPECT_EQ(found["count"], 1);
  EXPECT_EQ(found["example"], "meter 'P', ID 2");
}

TEST_F(doctor, finds_the_same_without_an_index_of_the_points) {
  execute("INSERT INTO series (name, meterid) VALUES ('Empty', 2)");
  done({"raw", curves, write("q.csv", "1,3\n2,5\n"), "--meter", "M1", "--series", "Rotor A",
        "--part", "2"});
  const nlohmann::json with = examined(5)["findings"];
  PlainDatabase(curves).alter("DROP INDEX raw1_series; DROP INDEX curve_series");
  const nlohmann::json without = examined(5)["findings"];
  for (const nlohmann::json& found : without) {
    if (found["id"] == "missing-indexes") continue;
    EXPECT_NE(std::find(with.begin(), with.end(), found), with.end()) << found;
  }
}

TEST_F(doctor, finds_series_without_points) {
  execute("INSERT INTO series (name, meterid) VALUES ('Empty', 2)");
  EXPECT_EQ(finding("series-without-points", "warning")["example"],
            "series 'Empty' of meter 'P', calibration 0");
}

TEST_F(doctor, finds_curves_whose_raw_points_have_changed) {
  done({"raw", curves, write("q.csv", "1,3\n2,5\n"), "--meter", "M1", "--series", "Rotor A",
        "--part", "2"});
  const auto found = finding("outdated-curves", "warning");
  EXPECT_EQ(found["count"], 1);
  EXPECT_EQ(found["example"], "series 'Rotor A' of meter 'M1', calibration 0");
  done({"restore", curves, "1"});
  EXPECT_EQ(examined(0)["findings"].size(), 0U);
}

TEST_F(doctor, finds_curves_that_do_not_know_a_raw_part) {
  done({"raw", curves, write("q.csv", "1,3\n2,5\n"), "--meter", "M1", "--series", "Rotor B",
        "--part", "3"});
  EXPECT_EQ(finding("outdated-curves", "warning")["example"],
            "series 'Rotor B' of meter 'M1', calibration 0");
}

TEST_F(doctor, finds_points_that_another_program_brought_back) {
  done({"exclude", curves, "--meter", "P", "--series", "S", "--part", "1", "--point", "2",
        "--reason", "air in the line"});
  examined(0);
  execute(R"(INSERT INTO raw1 ("seriesID", "Roshko", "Strouhal") )"
          R"(SELECT "ID", 3, 4 FROM series WHERE name = 'S')");
  const auto found = finding("exclusions-not-in-force", "warning");
  EXPECT_EQ(found["count"], 1);
  EXPECT_THAT(found["example"].get<std::string>(), HasSubstr("raw part 1 of series 'S'"));
  EXPECT_THAT(found["remedy"].get<std::string>(), HasSubstr("pelmora exclude"));
}

TEST_F(doctor, removes_orphaned_rows_and_keeps_them) {
  execute(R"(DELETE FROM series WHERE "ID" = 1)");  // what the component's own DeleteSeries leaves
  const auto found = finding("orphaned-rows", "warning");
  EXPECT_EQ(found["repairable"], true);
  EXPECT_EQ(found["example"], "series 1");
  const std::int64_t rows = count("raw1");
  const auto dry = examined(0, {"--repair", "--dry-run"});
  EXPECT_EQ(dry["findings"][0]["repaired"], true);
  EXPECT_EQ(count("raw1"), rows);
  const auto mended = examined(0, {"--repair"});
  EXPECT_EQ(mended["findings"][0]["repaired"], true);
  EXPECT_EQ(mended["historyEntries"].size(), 1U);
  EXPECT_EQ(count("raw1"), rows - 24);
  EXPECT_EQ(examined(0)["findings"].size(), 0U);
  done({"restore", curves, mended["historyEntries"][0].dump()});
  EXPECT_EQ(count("raw1"), rows);
}

TEST_F(doctor, removes_everything_of_a_missing_calibration) {
  execute(R"(DELETE FROM meter WHERE "ID" = 1)");
  EXPECT_EQ(finding("orphaned-rows", "warning")["example"], "meter 1");
  EXPECT_EQ(examined(0, {"--repair"})["findings"][0]["repaired"], true);
  EXPECT_EQ(count("series"), 1);
  EXPECT_EQ(count(R"("CalDataPoint")"), 0);
  EXPECT_EQ(count("curve"), 0);
  EXPECT_EQ(examined(0)["findings"].size(), 0U);
}

TEST_F(doctor, tells_rows_that_belong_to_nothing) {
  execute(R"(INSERT INTO raw3 ("seriesID", "Roshko", "Strouhal") VALUES (NULL, 1, 2);)"
          R"(INSERT INTO "CalDataPoint" ("CalSetupID") VALUES (77))");
  EXPECT_EQ(finding("stray-rows", "warning")["count"], 2);
}

TEST_F(doctor, makes_missing_indexes_and_history_tables) {
  PlainDatabase(curves).alter(
      "DROP INDEX raw1_series; DROP INDEX series_meter; "
      "DROP TABLE pelmora_history_curve");
  const auto value = examined(0);
  ASSERT_EQ(value["findings"].size(), 2U);
  EXPECT_EQ(value["findings"][0]["id"], "missing-indexes");
  EXPECT_EQ(value["findings"][0]["count"], 2);
  EXPECT_EQ(value["findings"][1]["id"], "missing-history-tables");
  EXPECT_EQ(value["problemsRemain"], false);
  examined(0, {"--repair"});
  EXPECT_EQ(examined(0)["findings"].size(), 0U);
}

TEST_F(doctor, needs_no_more_memory_for_more_series) {
  if (std::string(PELMORA_FAILING_MEMORY).empty())
    GTEST_SKIP() << "a sanitizer keeps what is freed";
  const auto memory = [&] {
    RunningCommand command({"doctor", curves}, {});
    EXPECT_EQ(command.end(), 0);
    return command.mostMemory();
  };
  const long before = memory();
  execute(
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 50000) "
      "INSERT INTO series (name, meterid) SELECT 'N' || i, 2 FROM n;"
      R"(INSERT INTO raw1 ("seriesID", "Roshko", "Strouhal") )"
      R"(SELECT "ID", 1, 2 FROM series WHERE "ID" > 5)");
  constexpr long mostGrowth = 50'000 / 2;  // half a KiB a series; a list of their names takes more
  EXPECT_LT(memory() - before, mostGrowth);
}

TEST_F(doctor, shows_a_table_of_80_columns_and_one_line_of_trouble) {
  execute(R"(DELETE FROM series WHERE "ID" = 1; )"
          R"(UPDATE raw1 SET "Roshko" = NULL WHERE "seriesID" = 5)");
  const CommandResult result = run({"doctor", curves});
  EXPECT_EQ(result.exitCode, 5);
  EXPECT_THAT(result.error, HasSubstr("has problems"));
  EXPECT_THAT(result.output,
              AllOf(HasSubstr("unusable-numbers"), HasSubstr("--repair"), HasSubstr("Remedy:")));
  std::istringstream lines(result.output);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
  EXPECT_THAT(trouble(2, {"doctor", curves, "--dry-run"}), HasSubstr("--repair"));
}

}  // namespace
}  // namespace pelmora::test
