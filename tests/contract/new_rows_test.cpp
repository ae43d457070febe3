// Rows that two users would add at the same time, each after a look that did not find them.
// SPDX-License-Identifier: MIT
#include "store/meter_registry.h"
#include "tests/contract/engines.h"

#include <gtest/gtest.h>

#include <array>
#include <string_view>

namespace pelmora {
namespace {

template <class Curves>
class new_rows : public test::CurveContract<Curves> {
 protected:
  static bool addSeries(Recordset& rows, const std::string& name) {
    constexpr std::array<std::string_view, 2> fields{"name", "meterid"};
    const std::array<Value, 2> values{name, std::int64_t{1}};
    return rows.addNewRow("name", fields, values);
  }
  static std::int32_t seriesOf(Connection& connection, const std::string& name) {
    return findOrAddSeriesRow(connection, NameText::quoted(name), 1);
  }
};
TYPED_TEST_SUITE(new_rows, test::Engines);

TYPED_TEST(new_rows, are_added_where_there_are_none) {
  const TypeParam file;
  const auto rows = file.select("select * from series where name = 'a' and meterid=1");
  EXPECT_TRUE(this->addSeries(*rows, "a"));
  EXPECT_EQ(rows->value("id"), Value(std::int64_t{1}));
  EXPECT_EQ(file.count("series"), 1);
}

TYPED_TEST(new_rows, are_not_added_beside_those_of_another_user) {
  const TypeParam file;
  const ConnectionPtr other = file.another();
  const auto rows = file.select("select * from series where name = 'A' and meterid=1");
  ASSERT_EQ(rows->recordCount(), 0);
  const std::int32_t theirs = this->seriesOf(*other, "a");
  EXPECT_FALSE(this->addSeries(*rows, "A"));
  EXPECT_EQ(file.count("series"), 1);
  rows->requery();
  EXPECT_EQ(rows->value("id"), Value(std::int64_t{theirs}));
  EXPECT_EQ(this->seriesOf(*file.connection, "A"), theirs);
}

TYPED_TEST(new_rows, are_looked_for_with_the_statement_that_was_read) {
  const TypeParam file;
  // A host's name that reads as another one in the statement is not found there, and is added.
  const auto rows = file.select("select * from series where name = 'O''Brien' and meterid=1");
  EXPECT_TRUE(this->addSeries(*rows, "O''Brien"));
  EXPECT_TRUE(this->addSeries(*rows, "O''Brien"));
  EXPECT_EQ(file.count("series"), 2);
}

TYPED_TEST(new_rows, of_a_meter_are_told_apart_by_their_number) {
  const TypeParam file;
  const ConnectionPtr other = file.another();
  const NameText meter = NameText::quoted("M1");
  EXPECT_EQ(addNewCalibration(*file.connection, meter, "M1", 0), 1);
  EXPECT_EQ(addNewCalibration(*other, meter, "M1", 0), std::nullopt);
  EXPECT_EQ(addNewCalibration(*other, NameText::quoted("m1"), "m1", 0), std::nullopt);
  EXPECT_EQ(addNewCalibration(*other, meter, "M1", 1), 2);
  EXPECT_EQ(file.count("meter"), 2);
}

TYPED_TEST(new_rows, need_a_field_that_is_filled) {
  const TypeParam file;
  const auto rows = file.select("select * from series where name = 'a' and meterid=1");
  constexpr std::array<std::string_view, 1> fields{"name"};
  const std::array<Value, 1> values{Value("a")};
  EXPECT_EQ(test::failureOf([&] { (void)rows->addNewRow("meterid", fields, values); }).number, 5);
  EXPECT_EQ(file.count("series"), 0);
}

}  // namespace
}  // namespace pelmora
