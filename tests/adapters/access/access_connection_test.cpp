// An Access file as a database.
// SPDX-License-Identifier: MIT
#include "base/file_text.h"
#include "tests/adapters/access/collected_tables.h"
#include "tests/support/curve_file.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <limits>

namespace pelmora::test {
namespace {

ConnectionPtr opened(const std::string& path) {
  ConnectionPtr connection = accessFileConnection(path, builtProgram());
  connection->open();
  return connection;
}

std::unique_ptr<Recordset> select(const ConnectionPtr& connection, const std::string& statement) {
  return connection->openRecordset(statement, CursorType::forwardOnly, LockType::optimistic);
}

TEST(access_connection, statements_of_the_dialect_read_it) {
  const ConnectionPtr curves = opened(accessData("curves.mdb"));
  EXPECT_EQ(
      select(curves, "Select * from [series] where NAME = 'tf-10021 FIRST cal'")->recordCount(), 1);
  EXPECT_EQ(select(curves,
                   "SELECT CalSetup.* FROM Fluids RIGHT JOIN CalSetup ON Fluids.ID = "
                   "CalSetup.FluidID WHERE ((CalSetup.MeterID)=1);")
                ->recordCount(),
            1);
  const auto rows = select(curves, "Select TOP 1 Roshko, Strouhal from curve where seriesID=2");
  EXPECT_EQ(rows->value("Roshko"), Value(50.0));
  EXPECT_EQ(rows->value("Strouhal"), Value(1.1137835));
}

TEST(access_connection, dates_read_like_those_that_are_stored_here) {
  const ConnectionPtr curves = opened(accessData("curves.mdb"));
  EXPECT_EQ(select(curves, "Select ID from CalSetup where DateTaken = #06/07/2021#")->recordCount(),
            1);
}

TEST(access_connection, changes_are_refused_with_what_to_do) {
  const ConnectionPtr curves = opened(accessData("curves.mdb"));
  for (const char* statement : {"Delete * from raw1", "Insert into Fluids (Name) VALUES ('x')",
                                "Update series set name='x'"}) {
    const Failure failure = failureOf([&] { curves->execute(statement); });
    EXPECT_EQ(failure.number, static_cast<std::int32_t>(0x80040E09U)) << statement;
    EXPECT_NE(failure.description.find("Change it in Access"), std::string::npos)
        << failure.description;
  }
  const auto rows = select(curves, "Select * from meter");
  EXPECT_NE(failureOf([&] {
              rows->addRow(std::array<std::string_view, 1>{"SerialNumber"},
                           std::array<Value, 1>{Value("M9")});
            }).number,
            0);
  EXPECT_EQ(select(curves, "Select * from meter")->recordCount(), 5);
}

TEST(access_connection, stand_rows_are_copied_into_a_curve_database) {
  const CurveFile curves;
  const ConnectionPtr stand = opened(accessData("stand-nasty.mdb"));
  stand->execute("INSERT INTO CalDataPoint ( CalSetupID, JobRecordID, V1, V2, V36 ) IN '" +
                 curves.path +
                 "' SELECT 7 as CalSetupID, JobRecordID, V1, V2, V36 FROM DataPoint WHERE "
                 "(((JobRecordID)=7001));");
  EXPECT_EQ(curves.count("CalDataPoint"), 11);
  const auto largest = curves.select("Select MAX(V36) as Most from CalDataPoint");
  EXPECT_EQ(largest->value("Most"), Value(std::numeric_limits<double>::max()));
}

TEST(access_connection, damaged_file_is_refused_when_it_is_opened) {
  const ScratchFolder folder;
  const std::string bytes = readWholeFile(accessData("curves.mdb"));
  const std::string path = folder.file("cut.mdb");
  std::ofstream(path, std::ios::binary) << bytes.substr(0, bytes.size() - 100);
  const Failure failure = failureOf([&] { opened(path); });
  EXPECT_EQ(failure.number, 321);
  EXPECT_NE(failure.description.find("cut.mdb' is damaged"), std::string::npos)
      << failure.description;
  EXPECT_NE(failure.description.find("Repair it in Access"), std::string::npos);
}

TEST(access_connection, table_that_is_not_there_is_an_error_of_the_statement) {
  const ConnectionPtr stand = opened(accessData("stand.mdb"));
  const Failure failure = failureOf([&] { (void)select(stand, "Select * from meter"); });
  EXPECT_NE(failure.description.find("meter"), std::string::npos) << failure.description;
}

TEST(access_file, is_known_by_its_first_bytes) {
  const ScratchFolder folder;
  EXPECT_TRUE(isAccessFile(accessData("curves.mdb")));
  std::ofstream(folder.file("text.mdb")) << "no database, whatever its name says";
  EXPECT_FALSE(isAccessFile(folder.file("text.mdb")));
  EXPECT_FALSE(isAccessFile(folder.file("missing.mdb")));
  const Failure failure = failureOf([&] { opened(folder.file("text.mdb")); });
  EXPECT_EQ(failure.number, 321);
  EXPECT_EQ(failureOf([&] { opened(folder.file("missing.mdb")); }).number, 53);
}

TEST(access_file, of_1997_is_refused_with_what_to_do) {
  const ScratchFolder folder;
  std::string bytes = readWholeFile(accessData("stand.mdb"));
  bytes[0x14] = 0;  // the version of the format
  const std::string path = folder.file("old.mdb");
  std::ofstream(path, std::ios::binary) << bytes;
  const Failure failure = failureOf([&] { opened(path); });
  EXPECT_EQ(failure.number, 321);
  EXPECT_NE(failure.description.find("save it in the format of Access 2000"), std::string::npos)
      << failure.description;
}

}  // namespace
}  // namespace pelmora::test
