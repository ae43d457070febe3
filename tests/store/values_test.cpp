// Field values as the types that operations work with, and rows as texts.
// SPDX-License-Identifier: MIT
#include "store/field_value.h"
#include "store/row_text.h"
#include "tests/support/scripted_connection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <class Body>
std::int32_t numberOfErrorIn(Body&& body) {
  try {
    body();
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

TEST(field_value, null_is_no_number) {
  EXPECT_TRUE(isNull(Value()));
  EXPECT_EQ(numberOfErrorIn([] { (void)toDouble(Value()); }), 94);
  EXPECT_EQ(numberOfErrorIn([] { (void)toInt32(Value()); }), 94);
  EXPECT_EQ(numberOfErrorIn([] { (void)toInt16(Value()); }), 94);
}

TEST(field_value, null_is_an_empty_text) { EXPECT_EQ(toText(Value()), ""); }

TEST(field_value, an_empty_text_is_not_null) { EXPECT_FALSE(isNull(Value(std::string()))); }

TEST(field_value, a_text_is_read_as_a_number) {
  EXPECT_EQ(toDouble(Value(std::string("2.5E-03"))), 0.0025);
  EXPECT_EQ(toInt32(Value(std::string(" 1001 "))), 1001);
}

TEST(field_value, a_text_that_is_no_number_is_a_type_mismatch) {
  EXPECT_EQ(numberOfErrorIn([] { (void)toDouble(Value(std::string("12x"))); }), 13);
  EXPECT_EQ(numberOfErrorIn([] { (void)toDouble(Value(std::string())); }), 13);
}

TEST(field_value, halves_are_rounded_to_even) {
  EXPECT_EQ(toInt32(Value(2.5)), 2);
  EXPECT_EQ(toInt32(Value(3.5)), 4);
  EXPECT_EQ(toInt16(Value(-0.5)), 0);
  EXPECT_EQ(toInt16(Value(-1.5)), -2);
}

TEST(field_value, the_ends_of_a_type_fit_in_it) {
  EXPECT_EQ(toInt16(Value(std::int64_t{32767})), 32767);
  EXPECT_EQ(toInt16(Value(std::int64_t{-32768})), -32768);
  EXPECT_EQ(toInt32(Value(std::int64_t{2147483647})), 2147483647);
  EXPECT_EQ(toInt32(Value(2147483647.4)), 2147483647);
}

TEST(field_value, what_does_not_fit_is_an_overflow) {
  EXPECT_EQ(numberOfErrorIn([] { (void)toInt16(Value(std::int64_t{32768})); }), 6);
  EXPECT_EQ(numberOfErrorIn([] { (void)toInt32(Value(std::int64_t{2147483648})); }), 6);
  EXPECT_EQ(numberOfErrorIn([] { (void)toInt32(Value(-2147483648.6)); }), 6);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(numberOfErrorIn([nan] { (void)toInt32(Value(nan)); }), 6);
}

TEST(field_value, numbers_are_written_as_texts) {
  EXPECT_EQ(toText(Value(std::int64_t{-7})), "-7");
  EXPECT_EQ(toText(Value(1001.0)), "1001");
  EXPECT_EQ(toText(Value(0.0000192)), "1.92E-05");
  EXPECT_EQ(toText(Value(std::string("x\r\n"))), "x\r\n");
}

std::vector<std::string> texts(Rows rows) {
  auto script = std::make_shared<Script>();
  script->answer("rows", std::move(rows));
  ScriptedRecordset recordset(script, "rows");
  return rowsAsTexts(recordset);
}

TEST(rows_as_texts, one_row_is_one_text) {
  EXPECT_THAT(texts({{"a"}, {{std::string("M1")}}}), ElementsAre("M1"));
}

TEST(rows_as_texts, rows_are_texts_in_their_order) {
  EXPECT_THAT(texts({{"a"}, {{std::int64_t{12}}, {std::int64_t{3}}, {std::string("x")}}}),
              ElementsAre("12", "3", "x"));
}

TEST(rows_as_texts, columns_are_joined_by_nothing) {
  EXPECT_THAT(texts({{"a", "b"}, {{std::string("M"), std::int64_t{1}}, {Value(), 2.5}}}),
              ElementsAre("M1", "2.5"));
}

TEST(rows_as_texts, null_is_an_empty_text) {
  EXPECT_THAT(texts({{"a"}, {{std::string("x")}, {Value()}, {std::string("y")}}}),
              ElementsAre("x", "", "y"));
}

TEST(rows_as_texts, a_lone_empty_text_leaves_nothing_to_split) {
  EXPECT_THAT(texts({{"a"}, {{Value()}}}), IsEmpty());
  EXPECT_THAT(texts({{"a"}, {{std::string()}}}), IsEmpty());
}

TEST(rows_as_texts, a_line_break_in_a_value_splits_it) {
  EXPECT_THAT(texts({{"a"}, {{std::string("x\r\ny")}, {std::string("z\n")}}}),
              ElementsAre("x", "y", "z\n"));
}

TEST(rows_as_texts, no_rows_are_no_texts) { EXPECT_THAT(texts({{"a"}, {}}), IsEmpty()); }

}  // namespace
}  // namespace pelmora::test
