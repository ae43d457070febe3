// What the server keeps otherwise than a file, and what it cannot keep.
// SPDX-License-Identifier: MIT
#include "tests/adapters/postgresql/server_test.h"

#include <pelmora/own_tables.h>

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace pelmora {
namespace {

using test::failureOf;
using test::ServerCurves;

class stored_values : public test::ServerTest {
 protected:
  static void addName(const ServerCurves& curves, const std::string& name) {
    const auto rows = curves.select("Select * from Fluids");
    constexpr std::array<std::string_view, 1> fields{"Name"};
    rows->addRow(fields, std::array{Value(name)});
  }
};

TEST_F(stored_values, of_a_column_of_whole_numbers_are_whole) {
  const ServerCurves curves;
  EXPECT_NE(failureOf([&] { curves.execute("Insert into raw1 (seriesID) VALUES (1.5)"); }).number,
            0);
  curves.execute("Insert into raw1 (seriesID) VALUES (2.0)");
  const auto rows = curves.select("Select * from raw1");
  constexpr std::array<std::string_view, 1> fields{"seriesID"};
  EXPECT_EQ(failureOf([&] { rows->addRow(fields, std::array{Value(1.5)}); }).number, 13);
  rows->addRow(fields, std::array{Value(3.0)});
  EXPECT_EQ(rows->value("seriesID"), Value(std::int64_t{3}));
}

TEST_F(stored_values, are_texts_that_the_server_can_hold) {
  const ServerCurves curves;
  for (const std::string& name :
       {std::string("a\0b", 3), std::string("caf\xE9"), std::string("\xC3")})
    EXPECT_EQ(failureOf([&] { addName(curves, name); }).number, 13);
  EXPECT_NE(failureOf([&] {
              curves.execute("Insert into Fluids (Name) VALUES ('" + std::string("a\0b", 3) + "')");
            }).number,
            0);
  EXPECT_EQ(curves.count("Fluids"), 0);
  addName(curves, "Öl \\ 'x' \t\n€ 𝄞");
  EXPECT_EQ(curves.select("Select Name from Fluids")->value(0), Value("Öl \\ 'x' \t\n€ 𝄞"));
}

TEST_F(stored_values, keep_numbers_and_texts_apart_in_a_loose_column) {
  const ServerCurves curves;
  const auto rows = curves.connection->openRecordset(
      "Select JobRecordID from CalDataPoint", CursorType::dynamic, LockType::batchOptimistic);
  const std::array values{Value(std::int64_t{5}),
                          Value(5.0),
                          Value("5"),
                          Value("\"\\\n\x01"),
                          Value(1e16),
                          Value(1e300),
                          Value(0.1),
                          Value(""),
                          Value()};
  constexpr std::array<std::string_view, 1> fields{"JobRecordID"};
  for (const Value& value : values) rows->addRow(fields, std::array{value});
  rows->updateBatch();
  rows->requery();
  for (const Value& value : values) {
    EXPECT_EQ(rows->value(0), value);
    rows->moveNext();
  }
}

TEST_F(stored_values, come_in_the_order_in_which_they_were_stored) {
  const ServerCurves curves;
  for (const int roshko : {5, 3, 9, 1})
    curves.execute("Insert into raw1 (seriesID, Roshko) VALUES (1, " + std::to_string(roshko) +
                   ")");
  // The server moves a changed row to another place.
  curves.execute("Update raw1 set Strouhal = 1 where Roshko = 5");
  const auto rows = curves.select("Select Roshko from raw1 where seriesID = 1");
  for (const double roshko : {5.0, 3.0, 9.0, 1.0}) {
    EXPECT_EQ(rows->value(0), Value(roshko));
    rows->moveNext();
  }
}

}  // namespace
}  // namespace pelmora
