// Tables of a host's own, on each engine.
// SPDX-License-Identifier: MIT
#include "tests/contract/engines.h"

#include <pelmora/own_tables.h>

#include <gtest/gtest.h>

namespace pelmora {
namespace {

using test::failureOf;

const OwnTable notes{"own_notes",
                     {{"ID", OwnColumnType::key},
                      {"SeriesID", OwnColumnType::whole},
                      {"Weight", OwnColumnType::real},
                      {"Words", OwnColumnType::text},
                      {"Job", OwnColumnType::anything}}};

template <class Curves>
class own_tables : public test::CurveContract<Curves> {};
TYPED_TEST_SUITE(own_tables, test::Engines);

TYPED_TEST(own_tables, are_made_once_and_take_statements) {
  const TypeParam curves;
  EXPECT_FALSE(hasTable(curves.connection, "own_notes"));
  createTable(curves.connection, notes);
  curves.execute(
      "Insert into own_notes (SeriesID, Weight, Words, Job) VALUES (3, 1.5, 'Ab', '07')");
  createTable(curves.connection, notes);
  EXPECT_TRUE(hasTable(curves.connection, "OWN_NOTES"));
  const auto rows = curves.select("Select * from own_notes where words='aB'");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(rows->value("ID"), Value(std::int64_t{1}));
  EXPECT_EQ(rows->value("SeriesID"), Value(std::int64_t{3}));
  EXPECT_EQ(rows->value("Weight"), Value(1.5));
  EXPECT_EQ(rows->value("Job"), Value("07"));
}

TYPED_TEST(own_tables, are_found_when_another_connection_has_made_them) {
  const TypeParam curves;
  const ConnectionPtr other = curves.another();
  EXPECT_FALSE(hasTable(curves.connection, "own_notes"));
  createTable(other, notes);
  EXPECT_TRUE(hasTable(curves.connection, "own_notes"));
}

TYPED_TEST(own_tables, are_missing_again_when_making_them_was_undone) {
  const TypeParam curves;
  EXPECT_FALSE(hasTable(curves.connection, "own_notes"));
  {
    const Transaction transaction(curves.connection);
    createTable(curves.connection, notes);
    EXPECT_TRUE(hasTable(curves.connection, "own_notes"));
  }
  EXPECT_FALSE(hasTable(curves.connection, "own_notes"));
  createTable(curves.connection, notes);
  EXPECT_TRUE(hasTable(curves.connection, "own_notes"));
}

TYPED_TEST(own_tables, take_the_columns_that_a_later_version_adds) {
  const TypeParam curves;
  createTable(curves.connection, notes);
  curves.execute("Insert into own_notes (Weight) VALUES (1.5)");
  OwnTable later = notes;
  later.Columns.push_back({"Added \"here\"", OwnColumnType::text});
  for (int i = 0; i < 2; ++i) createTable(curves.connection, later);
  const auto rows = curves.select("Select * from own_notes");
  EXPECT_EQ(rows->value("Weight"), Value(1.5));
  EXPECT_EQ(rows->value("Added \"here\""), Value());
  curves.execute("Insert into own_notes ([Added \"here\"]) VALUES ('x')");
  createTable(curves.connection, notes);  // the earlier version once more
  EXPECT_EQ(curves.count("own_notes"), 2);
}

TYPED_TEST(own_tables, never_use_a_key_twice) {
  const TypeParam curves;
  createTable(curves.connection, notes);
  curves.execute("Insert into own_notes (SeriesID) VALUES (1)");
  curves.execute("Delete * from own_notes");
  curves.execute("Insert into own_notes (SeriesID) VALUES (2)");
  EXPECT_EQ(curves.select("Select ID from own_notes")->value(0), Value(std::int64_t{2}));
}

TYPED_TEST(own_tables, know_their_indexes_and_keys) {
  const TypeParam curves;
  createTable(curves.connection, notes);
  const auto& connection = curves.connection;
  EXPECT_TRUE(hasIndex(connection, "Own_Notes", {"id"}));
  EXPECT_FALSE(hasIndex(connection, "own_notes", {"SeriesID"}));
  createIndex(connection, {"own_notes_series", "own_notes", {"SeriesID", "Words"}});
  createIndex(connection, {"own_notes_series", "own_notes", {"SeriesID", "Words"}});
  EXPECT_TRUE(hasIndex(connection, "own_notes", {"seriesid"}));
  EXPECT_TRUE(hasIndex(connection, "own_notes", {"SeriesID", "Words"}));
  EXPECT_FALSE(hasIndex(connection, "own_notes", {"Words"}));
}

TYPED_TEST(own_tables, may_have_any_name) {
  const TypeParam curves;
  createTable(curves.connection, {"odd\"; name", {{"a \"b\"", OwnColumnType::whole}}});
  EXPECT_TRUE(hasTable(curves.connection, "odd\"; name"));
}

TYPED_TEST(own_tables, count_on_from_keys_that_rows_have_brought_along) {
  const TypeParam curves;
  createTable(curves.connection, notes);
  curves.execute("Insert into own_notes (ID, SeriesID) VALUES (7, 1)");
  curves.execute("Insert into own_notes (SeriesID) VALUES (2)");
  EXPECT_EQ(curves.select("Select ID from own_notes where SeriesID = 2")->value(0),
            Value(std::int64_t{8}));
}

}  // namespace
}  // namespace pelmora
