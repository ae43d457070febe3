// SPDX-License-Identifier: MIT
#include "adapters/stand_csv/stand_csv.h"

#include "tests/support/comma_locale.h"
#include "tests/support/curve_file.h"
#include "tests/support/stand_export.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace pelmora {
namespace {

using test::CommaLocale;
using test::CurveFile;
using test::exportLine;
using test::failureOf;
using test::ScratchFolder;
using test::standHeader;

struct StandExport {
  explicit StandExport(const std::string& text) : path(folder.file("stand.csv")) {
    std::ofstream(path, std::ios::binary) << text;
  }
  [[nodiscard]] std::unique_ptr<Recordset> select(const std::string& statement) const {
    const auto connection = standCsvConnection(path);
    connection->open();
    return connection->openRecordset(statement, CursorType::forwardOnly, LockType::optimistic);
  }
  [[nodiscard]] test::Failure openFailure() const {
    return failureOf([&] { standCsvConnection(path)->open(); });
  }

  ScratchFolder folder;
  std::string path;
};

TEST(stand_csv, rows_are_those_of_the_file) {
  const StandExport file(standHeader() + "\n" + exportLine("1001", {{2, "-2.5E-03"}, {37, ""}}) +
                         "\n" + exportLine("1002") + "\n");
  const auto rows = file.select("Select * from DataPoint where JobRecordID=1001");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(rows->fieldCount(), 38U);
  EXPECT_EQ(rows->value("JobRecordID"), Value(std::int64_t{1001}));
  EXPECT_EQ(rows->value("v2"), Value(-0.0025));
  EXPECT_EQ(rows->value("V37"), Value());
  EXPECT_EQ(rows->value("V36"), Value(36.0));
}

TEST(stand_csv, columns_may_stand_in_any_order_and_case) {
  std::string header;
  std::string line;
  for (int i = 37; i >= 1; --i) {
    header += "v" + std::to_string(i) + ",";
    line += std::to_string(i * 10) + ",";
  }
  const StandExport file(header + "jobrecordid\r\n" + line + "7\r\n");
  const auto rows = file.select("Select v1, v37 from DataPoint where JobRecordID=7");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(rows->value(0), Value(10.0));
  EXPECT_EQ(rows->value(1), Value(370.0));
}

TEST(stand_csv, job_identities_may_be_texts) {
  const StandExport file(standHeader() + "\n" + exportLine("\"A-17\"") + "\n" + exportLine("B 2") +
                         "\n");
  EXPECT_EQ(file.select("Select * from DataPoint where JobRecordID='a-17'")->recordCount(), 1);
  EXPECT_EQ(file.select("Select JobRecordID from DataPoint where JobRecordID='B 2'")->value(0),
            Value("B 2"));
}

TEST(stand_csv, a_job_is_copied_into_a_curve_database) {
  const StandExport file(standHeader() + "\n" + exportLine("1001") + "\n" + exportLine("1002") +
                         "\n");
  const CurveFile curves;
  const auto connection = standCsvConnection(file.path);
  connection->open();
  std::string columns = "JobRecordID";
  for (int i = 1; i <= 37; ++i) columns += ", V" + std::to_string(i);
  connection->execute("INSERT INTO CalDataPoint ( CalSetupID, " + columns + " ) IN '" +
                      curves.path + "'SELECT 5 as CalSetupID, " + columns +
                      " FROM DataPoint WHERE (((JobRecordID)=1002));");
  const auto rows = curves.select("Select * from CalDataPoint where CalSetupID=5");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(rows->value("JobRecordID"), Value(std::int64_t{1002}));
  EXPECT_EQ(rows->value("V21"), Value(21.0));
}

TEST(stand_csv, its_rows_cannot_be_changed) {
  const StandExport file(standHeader() + "\n" + exportLine("1001") + "\n");
  const auto connection = standCsvConnection(file.path);
  connection->open();
  for (const char* statement : {"Delete from DataPoint", "Insert into DataPoint (V1) VALUES (1)",
                                "UPDATE DataPoint SET V1=1"}) {
    EXPECT_EQ(failureOf([&] {
                connection->execute(statement);
              }).description.find("Operation must use an updateable query."),
              0U)
        << statement;
  }
}

TEST(stand_csv, numbers_have_a_decimal_point_whatever_the_locale) {
  const CommaLocale comma;
  if (!comma.isSet()) GTEST_SKIP() << CommaLocale::missing;
  const StandExport file(standHeader() + "\n" + exportLine("1", {{1, "1.5"}}) + "\n");
  EXPECT_EQ(file.select("Select V1 from DataPoint")->value(0), Value(1.5));
}

TEST(stand_csv, it_is_known_by_the_column_of_jobs) {
  EXPECT_TRUE(isStandCsv(StandExport(standHeader() + "\n").path));
  EXPECT_TRUE(isStandCsv(StandExport("\xEF\xBB\xBF" + standHeader() + "\r\n").path));
  EXPECT_TRUE(isStandCsv(StandExport("\"jobrecordid\",V1\r\n").path));
  EXPECT_TRUE(isStandCsv(StandExport("JobRecordID").path));
  EXPECT_FALSE(isStandCsv(StandExport("JobRecordIDs,V1\n").path));
  EXPECT_TRUE(isStandCsv(StandExport("V1,JobRecordID\n").path));
  EXPECT_TRUE(isStandCsv(StandExport("Stand 3;;\r\nV1;\"JobRecordID\";V2\r\n").path));
  EXPECT_FALSE(isStandCsv(StandExport("").path));
  EXPECT_FALSE(isStandCsv("no such file"));
  EXPECT_FALSE(isStandCsv(ScratchFolder().path().string()));
  EXPECT_FALSE(isStandCsv(CurveFile().path));
}

// The failure names the file and all of `parts`.
void expectSaid(const StandExport& file, std::int32_t number,
                std::initializer_list<const char*> parts) {
  const auto failure = file.openFailure();
  EXPECT_EQ(failure.number, number) << failure.description;
  EXPECT_NE(failure.description.find(file.path), std::string::npos) << failure.description;
  for (const char* part : parts) {
    EXPECT_NE(failure.description.find(part), std::string::npos)
        << part << ": " << failure.description;
  }
}

TEST(stand_csv, a_wrong_header_says_what_is_wrong) {
  expectSaid(StandExport(""), 321, {"is empty", "JobRecordID and the columns V1 to V5"});
  expectSaid(StandExport("JobRecordID,V1,V2\n"), 321, {"line 1", "missing column V3, V4"});
  expectSaid(StandExport(standHeader() + ",V5\n"), 321, {"line 1", "V5 appears twice"});
  expectSaid(StandExport(standHeader() + ",V38\n"), 321, {"line 1", "'V38' is not a column"});
}

TEST(stand_csv, a_row_of_another_length_is_told_by_its_line) {
  const std::string start = standHeader() + "\n" + exportLine("1") + "\n";
  expectSaid(StandExport(start + "2,1,2,3\n"), 13, {"line 3", "4 fields instead of 38"});
  expectSaid(StandExport(start + exportLine("2", {{4, "1,5"}})), 13,
             {"line 3", "39 fields instead of 38", "decimal point"});
}

TEST(stand_csv, a_text_for_a_number_is_told_by_line_and_column) {
  const std::string start = standHeader() + "\r\n";
  for (const char* text : {"n/a", "1.5x", "1 2", "0x10", "nan", "inf", "1e999", "--1", "+-1"}) {
    expectSaid(StandExport(start + exportLine("2", {{4, text}})), 13,
               {"line 2", "column V4", "is not a"});
  }
}

TEST(stand_csv, blanks_quotes_and_signs_around_numbers_are_fine) {
  const StandExport file(
      standHeader() + "\n" +
      exportLine("1",
                 {{1, " 1.5 "}, {2, "\"2.5\""}, {3, "+3"}, {4, "\"\""}, {5, ".5"}, {6, "6."}}));
  const auto rows = file.select("Select * from DataPoint");
  EXPECT_EQ(rows->value("V1"), Value(1.5));
  EXPECT_EQ(rows->value("V2"), Value(2.5));
  EXPECT_EQ(rows->value("V3"), Value(3.0));
  EXPECT_EQ(rows->value("V4"), Value());
  EXPECT_EQ(rows->value("V5"), Value(0.5));
  EXPECT_EQ(rows->value("V6"), Value(6.0));
}

TEST(stand_csv, it_may_have_titles_semicolons_decimal_commas_and_units) {
  std::string header = standHeader();
  std::ranges::replace(header, ',', ';');
  std::string row = exportLine("1001", {{1, "10.25"}, {5, "1.5"}});
  std::ranges::replace(row, ',', ';');
  std::ranges::replace(row, '.', ',');
  std::string units = "-;s;gal";
  for (int i = 3; i <= 37; ++i) units += ";-";
  const StandExport file("Stand 3" + std::string(37, ';') + "\r\n" + header + "\r\n" + units +
                         "\r\n" + row + "\r\n" + std::string(37, ';') + "\r\n");
  const auto rows = file.select("Select * from DataPoint where JobRecordID=1001");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(rows->value("V1"), Value(10.25));
  EXPECT_EQ(rows->value("V37"), Value(37.0));
}

TEST(stand_csv, only_the_columns_that_are_used_are_needed) {
  const StandExport file("JobRecordID,V1,V2,V3,V4,V5,V12\n7,1,2,3,4,5,12\n");
  const auto rows = file.select("Select * from DataPoint where JobRecordID=7");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(rows->value("V12"), Value(12.0));
  EXPECT_EQ(rows->value("V20"), Value());
  expectSaid(StandExport("JobRecordID,V1,V2,V3,V4,V5\n7,1,2,3,4,5\n"), 321,
             {"line 1", "missing column V12"});
}

TEST(stand_csv, viscosity_and_temperature_may_have_other_units) {
  const StandExport file("JobRecordID,V1,V2,V3,V4,V5 [m2/s],V12 [C]\n7,1,2,3,4,0.00000125,20\n");
  const auto rows = file.select("Select * from DataPoint where JobRecordID=7");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_NEAR(std::get<double>(rows->value("V5")), 1.25, 1e-12);
  EXPECT_NEAR(std::get<double>(rows->value("V12")), 68, 1e-12);
}

TEST(stand_csv, times_in_another_unit_are_refused) {
  expectSaid(StandExport("JobRecordID,V1 [ms],V2,V3,V4,V5,V12\n7,1,2,3,4,5,12\n"), 321,
             {"line 1", "column V1 is in ms", "in seconds"});
  const StandExport file("JobRecordID,V1 [s],V2,V3 (s),V4,V5,V12\n7,1,2,3,4,5,12\n");
  EXPECT_EQ(file.select("Select * from DataPoint")->recordCount(), 1);
}

TEST(stand_csv, its_reading_names_the_lines_of_each_job) {
  const StandExport file("# stand 3\n" + standHeader() + "\n" + exportLine("1") + "\n\n" +
                         exportLine("2") + "\n" + exportLine("1") + "\n");
  const auto reading = std::make_shared<StandReading>();
  standCsvConnection(file.path, {}, reading)->open();
  EXPECT_EQ(reading->lines["1"], (std::vector<std::size_t>{3, 6}));
  EXPECT_EQ(reading->lines["2"], (std::vector<std::size_t>{5}));
  EXPECT_EQ(reading->recognised.words(), "1 comment line, the header in line 2");
}

TEST(stand_csv, a_quote_that_is_never_closed_is_told_by_its_line) {
  expectSaid(StandExport(standHeader() + "\n" + exportLine("\"1")), 13,
             {"line 2, field 1", "a quote is not closed"});
}

TEST(stand_csv, text_behind_a_quote_is_told_by_file_line_and_field) {
  const StandExport file(standHeader() + "\n" + exportLine("\"1\"x"));
  expectSaid(file, 13, {"stand.csv", "line 2, field 1", "'x' follows a closing quote"});
}

TEST(stand_csv, a_long_field_is_quoted_in_part) {
  const std::string start = standHeader() + "\n", field(100'000, 'q');
  const std::string quoted = "'" + field.substr(0, 60) + "...'";
  expectSaid(StandExport(start + exportLine("2", {{4, field.c_str()}})), 13,
             {"column V4", quoted.c_str()});
  expectSaid(StandExport(standHeader() + "," + field + "\n"), 321, {"line 1", quoted.c_str()});
}

TEST(stand_csv, a_missing_file_is_named) {
  const auto failure = failureOf([] { standCsvConnection("/no/such/stand.csv")->open(); });
  EXPECT_EQ(failure.number, 53);
  EXPECT_EQ(failure.description.find("Could not find file '/no/such/stand.csv'"), 0U);
}

}  // namespace
}  // namespace pelmora
