// Rows that are read one by one, on each engine.
// SPDX-License-Identifier: MIT
#include "store/row_visits.h"

#include "store/transactions.h"
#include "tests/contract/engines.h"
#include "tests/support/recording_connection.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora {
namespace {

using test::failureOf;
using Rows = std::vector<std::vector<Value>>;

Rows visited(Connection& connection, const std::string& statement) {
  Rows list;
  visitRows(connection, statement,
            [&](std::span<const Value> row) { list.emplace_back(row.begin(), row.end()); });
  return list;
}

Rows recorded(Recordset& rows) {
  Rows list;
  for (; !rows.atEnd(); rows.moveNext()) {
    list.emplace_back();
    for (std::size_t i = 0; i < rows.fieldCount(); ++i) list.back().push_back(rows.value(i));
  }
  return list;
}

// `Rows` rows in meter: every third without a serial number, every other one without a number.
template <class Curves>
struct ManyMeters : Curves {
  explicit ManyMeters(int rows) {
    constexpr std::array<std::string_view, 2> fields{"SerialNumber", "ReCalID"};
    const auto batch = this->connection->openRecordset("Select * from meter", CursorType::dynamic,
                                                       LockType::batchOptimistic);
    for (int i = 0; i < rows; ++i) {
      const Value serial =
          i % 3 == 0 ? Value() : Value("M" + std::string(static_cast<std::size_t>(i % 7), 'x'));
      batch->addRow(fields, std::array{serial, i % 2 == 0 ? Value() : Value(std::int64_t{i})});
    }
    batch->updateBatch();
  }
};

constexpr const char* everyMeter =
    "Select ID, SerialNumber, ReCalID, SerialNumberAdjusted from meter ORDER BY SerialNumber, "
    "ReCalID DESC, ID";

template <class Curves>
class row_visits : public test::CurveContract<Curves> {};
TYPED_TEST_SUITE(row_visits, test::Engines);

// 4,000 is a portion of a server's rows.
TYPED_TEST(row_visits, deliver_what_a_record_set_does) {
  for (const int rows : {0, 1, 3999, 4000, 4001, 8000}) {
    const ManyMeters<TypeParam> curves(rows);
    const Rows list = visited(*curves.connection, everyMeter);
    EXPECT_EQ(list.size(), static_cast<std::size_t>(rows));
    EXPECT_EQ(list, recorded(*curves.select(everyMeter)));
    test::RecordingConnection withoutRole(curves.connection);
    EXPECT_EQ(list, visited(withoutRole, everyMeter));
  }
}

TYPED_TEST(row_visits, may_read_more_about_each_row) {
  const ManyMeters<TypeParam> curves(3);
  std::vector<std::size_t> found;
  visitRows(*curves.connection, "Select ID from meter", [&](std::span<const Value> row) {
    const std::int64_t id = std::get<std::int64_t>(row[0]);
    found.push_back(
        visited(*curves.connection, "Select ID from meter where ID >= " + std::to_string(id))
            .size());
  });
  EXPECT_EQ(found, (std::vector<std::size_t>{3, 2, 1}));
}

TYPED_TEST(row_visits, go_on_after_a_reading_that_fails_meanwhile) {
  const ManyMeters<TypeParam> curves(4001);
  int seen = 0;
  visitRows(*curves.connection, everyMeter, [&](std::span<const Value>) {
    if (++seen > 1) return;
    const auto divide = [&] { (void)curves.select("Select 1/(ID-ID) as x from meter"); };
    EXPECT_NE(failureOf(divide).number, 0);
  });
  EXPECT_EQ(seen, 4001);
}

TYPED_TEST(row_visits, leave_the_database_free_when_they_are_broken_off) {
  const ManyMeters<TypeParam> curves(5000);
  int seen = 0;
  const auto breakOff = [&](std::span<const Value>) {
    if (++seen == 4500) throw std::runtime_error("enough");
  };
  EXPECT_THROW(visitRows(*curves.connection, everyMeter, breakOff), std::runtime_error);
  curves.another()->execute("Delete from meter where ID > 10");
  curves.execute("Delete from meter where ID > 4");
  EXPECT_EQ(curves.count("meter"), 4);
}

TYPED_TEST(row_visits, belong_to_the_transaction_that_is_open) {
  const ManyMeters<TypeParam> curves(2);
  auto& transactions = dynamic_cast<Transactions&>(*curves.connection);
  transactions.begin();
  curves.execute("Delete from meter where ID = 1");
  EXPECT_EQ(visited(*curves.connection, everyMeter).size(), 1U);
  EXPECT_EQ(visited(*curves.connection, everyMeter).size(), 1U);
  transactions.rollback();
  EXPECT_EQ(visited(*curves.connection, everyMeter).size(), 2U);
}

TYPED_TEST(row_visits, fail_as_record_sets_do) {
  const ManyMeters<TypeParam> curves(2);
  for (const char* statement : {"Select * from nowhere", "Select nothing from meter", "Select",
                                "Delete from meter", "Select 1/(ID-2) as x from meter"}) {
    const auto expected = failureOf([&] { (void)curves.select(statement); });
    const auto failure = failureOf([&] { (void)visited(*curves.connection, statement); });
    EXPECT_NE(failure.number, 0) << statement;
    EXPECT_EQ(failure.number, expected.number) << statement;
    EXPECT_EQ(failure.description, expected.description) << statement;
  }
  curves.connection->close();
  EXPECT_NE(failureOf([&] { (void)visited(*curves.connection, everyMeter); }).number, 0);
}

}  // namespace
}  // namespace pelmora
