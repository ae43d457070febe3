// Databases that bring along views and triggers.
// SPDX-License-Identifier: MIT
#include "tests/support/curve_file.h"
#include "tests/support/plain_sqlite.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace pelmora {
namespace {

using test::CurveFile;
using test::failureOf;
using testing::Test;

// A curve database after `statements` of somebody else.
class hostile_schema : public Test {
 protected:
  void change(const std::string& statements) {
    file_.connection->close();
    test::PlainSqlite(file_.path).run(statements);
    file_.connection->open();
  }
  [[nodiscard]] std::string selecting(const std::string& statement) const {
    return failureOf([&] { (void)file_.select(statement); }).description;
  }
  [[nodiscard]] std::string executing(const std::string& statement) const {
    return failureOf([&] { file_.execute(statement); }).description;
  }
  static void expectPart(const std::string& text, const std::string& part) {
    EXPECT_NE(text.find(part), std::string::npos) << text;
  }

  const CurveFile file_;
};

constexpr const char* endless =
    "WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c) SELECT x FROM c";

TEST_F(hostile_schema, names_a_view_in_the_place_of_a_table) {
  change(std::string("DROP TABLE meter; CREATE VIEW meter AS ") + endless);
  const std::string text = selecting("Select * from Meter");
  expectPart(text, "is a view, not a table");
  expectPart(text, file_.path);
  expectPart(executing("Insert into meter (SerialNumber) VALUES ('a')"), "is a view");
}

TEST_F(hostile_schema, names_a_virtual_table_in_the_place_of_a_table) {
  change("DROP TABLE Fluids; CREATE VIRTUAL TABLE Fluids USING rtree(ID, a, b)");
  expectPart(selecting("Select * from Fluids"), "is a virtual table, not a table");
}

TEST_F(hostile_schema, lets_a_stand_deliver_its_points_by_a_view) {
  change(
      "CREATE TABLE t (JobRecordID, V1); INSERT INTO t VALUES (1, 2.5);"
      "CREATE VIEW DataPoint AS SELECT JobRecordID, V1 FROM t");
  EXPECT_EQ(file_.select("Select * from DataPoint")->recordCount(), 1);
}

TEST_F(hostile_schema, refuses_views_of_views) {
  std::string views = "CREATE TABLE t (a); CREATE VIEW v0 AS SELECT a FROM t;";
  for (int i = 1; i <= 24; ++i) {
    const std::string before = "v" + std::to_string(i - 1);
    views += "CREATE VIEW v" + std::to_string(i) + " AS SELECT x.a FROM " + before + " AS x, " +
             before + " AS y;";
  }
  change(views + "CREATE VIEW DataPoint AS SELECT a FROM v24");
  expectPart(selecting("Select * from DataPoint"), "is a view of views, not a table");
}

TEST_F(hostile_schema, refuses_a_view_that_recurses) {
  change(std::string("CREATE VIEW DataPoint AS SELECT x AS JobRecordID FROM (") + endless + ")");
  expectPart(selecting("Select * from DataPoint"), "not a table");
}

TEST_F(hostile_schema, stops_a_view_that_does_not_end) {
  change(
      "CREATE TABLE t (a); INSERT INTO t VALUES (1),(2),(3),(4),(5),(6),(7),(8),(9),(10);"
      "CREATE VIEW DataPoint AS SELECT count(*) AS JobRecordID FROM t t0, t t1, t t2, t t3, "
      "t t4, t t5, t t6, t t7, t t8, t t9, t t10, t t11, t t12, t t13, t t14, t t15");
  const std::string text = selecting("Select * from DataPoint");
  expectPart(text, "'DataPoint'");
  expectPart(text, "ran too long");
  EXPECT_EQ(file_.count("meter"), 0);
}

TEST_F(hostile_schema, stops_a_trigger_that_recurses_and_keeps_what_there_was) {
  file_.execute("Insert into Fluids (Name) VALUES ('before')");
  change(std::string("CREATE TABLE t (a); CREATE TRIGGER bomb AFTER INSERT ON Fluids BEGIN INSERT "
                     "INTO t SELECT x FROM (") +
         endless + "); END");
  expectPart(executing("Insert into Fluids (Name) VALUES ('a')"), "'bomb'");
  EXPECT_EQ(file_.count("Fluids"), 1);
}

TEST_F(hostile_schema, stops_a_trigger_that_does_not_end_in_a_transaction_of_ours) {
  change(
      "CREATE TABLE t (a); INSERT INTO t VALUES (1),(2),(3),(4),(5),(6),(7),(8),(9),(10);"
      "CREATE TRIGGER bomb AFTER INSERT ON raw1 BEGIN INSERT INTO t SELECT 1 FROM t t0, t t1, "
      "t t2, t t3, t t4, t t5, t t6, t t7, t t8, t t9, t t10, t t11; END");
  const auto rows = file_.connection->openRecordset("Select * from raw1 where seriesID=1",
                                                    CursorType::dynamic, LockType::batchOptimistic);
  constexpr std::array<std::string_view, 3> fields{"seriesID", "Roshko", "Strouhal"};
  rows->addRow(fields, std::array{Value(1.0), Value(2.0), Value(3.0)});
  expectPart(failureOf([&] { rows->updateBatch(); }).description, "ran too long");
  EXPECT_EQ(file_.count("raw1"), 0);
}

TEST_F(hostile_schema, lets_a_trigger_that_keeps_a_record_work_for_ever) {
  change(
      "CREATE TABLE log (at, point); CREATE TRIGGER audit AFTER INSERT ON raw1 BEGIN "
      "INSERT INTO log VALUES (datetime('now'), new.Roshko); END");
  const auto rows = file_.connection->openRecordset("Select * from raw1 where seriesID=1",
                                                    CursorType::dynamic, LockType::batchOptimistic);
  constexpr std::array<std::string_view, 3> fields{"seriesID", "Roshko", "Strouhal"};
  constexpr int points = 32000;
  for (int i = 0; i < points; ++i)
    rows->addRow(fields, std::array{Value(1.0), Value(static_cast<double>(i)), Value(3.0)});
  rows->updateBatch();
  EXPECT_EQ(file_.count("log"), points);
  file_.execute("Insert into raw1 (seriesID, Roshko) SELECT seriesID, Roshko from raw1");
  EXPECT_EQ(file_.count("log"), 2 * points);
}

TEST_F(hostile_schema, may_not_write_what_a_virtual_table_keeps) {
  change(
      "CREATE VIRTUAL TABLE rt USING rtree(ID, a, b); INSERT INTO rt VALUES (1, 2, 3);"
      "CREATE TRIGGER bomb AFTER INSERT ON Fluids BEGIN DELETE FROM rt_node; END");
  expectPart(executing("Insert into Fluids (Name) VALUES ('a')"), "rt_node may not be modified");
  EXPECT_EQ(file_.count("Fluids"), 0);
}

TEST_F(hostile_schema, may_not_call_what_is_not_made_for_it) {
  change(
      "CREATE VIRTUAL TABLE rt USING rtree(ID, a, b);"
      "CREATE VIEW DataPoint AS SELECT rtreecheck('rt') AS JobRecordID");
  expectPart(selecting("Select * from DataPoint"), "unsafe use of rtreecheck()");
}

TEST_F(hostile_schema, may_not_allocate_at_will) {
  change("CREATE VIEW DataPoint AS SELECT hex(zeroblob(100000000)) AS JobRecordID");
  expectPart(selecting("Select * from DataPoint"), "is not allowed to do");
}

}  // namespace
}  // namespace pelmora
