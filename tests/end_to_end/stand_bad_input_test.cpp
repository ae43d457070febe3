// A stand's data that cannot be imported: refused before anything is changed.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class bad_stand : public CommandTest {
 protected:
  bad_stand() {
    initCalibrated();
    before = show();
  }
  ~bad_stand() override { EXPECT_EQ(show(), before) << "what was stored has changed"; }
  nlohmann::json show() const {
    return done({"show", curves, "--meter", "M1", "--series", "Rotor A", "--json"}).json();
  }

  // The example stand with one field of one line (from 1, the header) in place of another.
  std::string standWith(std::size_t line, std::size_t field, const std::string& value) const {
    auto rows = rowsOf(data("stand-dual-rotor.csv"));
    rows[line - 1][field] = value;
    std::string text;
    for (const auto& row : rows) {
      for (std::size_t i = 0; i < row.size(); ++i) text += (i == 0 ? "" : ",") + row[i];
      text += "\n";
    }
    return write("stand.csv", text);
  }
  std::string refusal(int exitCode, const std::string& stand, const std::string& job = "1001",
                      const std::string& fluid = "spirit") const {
    return trouble(exitCode, {"import", curves, "--meter", "M1", "--stand", stand, "--job", job,
                              "--fluid", fluid});
  }

  nlohmann::json before;
};

TEST_F(bad_stand, job_that_does_not_exist) {
  EXPECT_THAT(refusal(4, data("stand-dual-rotor.csv"), "4711"),
              AllOf(HasSubstr("no job 4711"), HasSubstr("1001, 1002")));
  EXPECT_THAT(refusal(4, data("stand-dual-rotor.csv"), "1001:4711"), HasSubstr("no job 4711"));
}

TEST_F(bad_stand, zero_reading) {
  EXPECT_THAT(refusal(5, standWith(4, 5, "0")),
              AllOf(HasSubstr("job 1001, point 3: V5 (viscosity) is 0"), HasSubstr("stand.csv")));
  EXPECT_THAT(refusal(5, standWith(2, 20, "0")), HasSubstr("point 1: V20 (time of rotor B) is 0"));
}

TEST_F(bad_stand, negative_reading) {
  EXPECT_THAT(refusal(5, standWith(4, 5, "-1.5")),
              HasSubstr("point 3: V5 (viscosity) is negative (line 4 of the file)"));
}

TEST_F(bad_stand, workbook) {
  EXPECT_THAT(refusal(5, write("stand.xlsx", "PK\3\4........xl/workbook.xml")),
              AllOf(HasSubstr("stand.xlsx"), HasSubstr("Excel workbook"), HasSubstr("as CSV")));
}

TEST_F(bad_stand, empty_reading) {
  EXPECT_THAT(refusal(5, standWith(3, 12, "")), HasSubstr("point 2: V12 (temperature) is empty"));
}

TEST_F(bad_stand, text_for_a_number) {
  EXPECT_THAT(refusal(5, standWith(3, 4, "many")),
              AllOf(HasSubstr("line 3"), HasSubstr("V4"), HasSubstr("'many'")));
}

TEST_F(bad_stand, not_a_number) {
  EXPECT_THAT(refusal(5, standWith(3, 4, "nan")), AllOf(HasSubstr("line 3"), HasSubstr("V4")));
}

TEST_F(bad_stand, decimal_comma) {
  EXPECT_THAT(refusal(5, standWith(3, 4, "617,5")),
              AllOf(HasSubstr("line 3"), HasSubstr("decimal point")));
}

TEST_F(bad_stand, wrong_header) {
  EXPECT_THAT(refusal(5, standWith(1, 7, "Volume")), HasSubstr("Volume"));
}

TEST_F(bad_stand, header_without_jobs) {
  EXPECT_THAT(refusal(5, standWith(1, 0, "Job")),
              AllOf(HasSubstr("names the column JobRecordID"), HasSubstr("V1 to V5 and V12")));
}

TEST_F(bad_stand, missing_column) {
  std::string text;
  for (auto row : rowsOf(data("stand-dual-rotor.csv"))) {
    row.erase(row.begin() + 12);
    for (std::size_t i = 0; i < row.size(); ++i) text += (i == 0 ? "" : ",") + row[i];
    text += "\n";
  }
  EXPECT_THAT(refusal(5, write("stand.csv", text)), AllOf(HasSubstr("V12"), HasSubstr("missing")));
}

TEST_F(bad_stand, missing_empty_or_foreign_file) {
  EXPECT_THAT(refusal(3, scratch.file("none.db")), HasSubstr("none.db"));
  EXPECT_THAT(refusal(5, write("stand.csv", "")), HasSubstr("empty"));
  EXPECT_THAT(refusal(3, write("stand.db", "no database")), HasSubstr("stand.db"));
  EXPECT_THAT(refusal(3, curves), HasSubstr("DataPoint"));
}

TEST_F(bad_stand, same_fluid_twice) {
  EXPECT_THAT(
      trouble(2, {"import", curves, "--meter", "M1", "--stand", data("stand-dual-rotor.csv"),
                  "--job", "1001", "--fluid", "oil", "--job", "1007", "--fluid", "OIL"}),
      HasSubstr("appears twice"));
}

TEST_F(bad_stand, fifth_fluid) {
  const std::string stand = data("stand-dual-rotor.csv");
  EXPECT_THAT(
      trouble(5, {"import", curves, "--meter", "M1", "--stand", stand, "--job", "1001", "--fluid",
                  "c", "--job", "1002", "--fluid", "d", "--job", "1007", "--fluid", "e"}),
      AllOf(HasSubstr("5 fluids"), HasSubstr("into a new calibration")));
}

class second_job : public CommandTest {};

TEST_F(second_job, is_not_copied_and_the_line_says_what_to_do_instead) {
  init();
  const CommandResult result =
      run({"import", curves, "--meter", "M2", "--stand", data("stand-dual-rotor.csv"), "--job",
           "1003:1004", "--fluid", "spirit"});
  EXPECT_EQ(result.exitCode, 5);
  EXPECT_THAT(result.error, AllOf(HasSubstr("second job 1004"), HasSubstr("not copied"),
                                  HasSubstr("import job 1004 under")));
  const auto raw =
      done({"show", curves, "--meter", "M2", "--series", "Rotor A", "--json"}).json()["raw"];
  EXPECT_EQ(raw[0].size(), 20U);
}

TEST_F(second_job, brings_rotor_b_under_a_serial_number_of_its_own) {
  init();
  const std::string stand = data("stand-dual-rotor.csv");
  done({"calibrate", curves, "--meter", "M2-B", "--stand", stand, "--job", "1004", "--fluid",
        "spirit", "--job", "1006", "--fluid", "glycol", "--band", "1"});
  const auto raw =
      done({"show", curves, "--meter", "M2-B", "--series", "Rotor A", "--json"}).json()["raw"];
  EXPECT_EQ(raw[0].size(), 20U);
  EXPECT_EQ(raw[1].size(), 20U);
}

}  // namespace
}  // namespace pelmora::test
