// What every database must do that fills the roles of store/connection.h.
//
// A database takes part with a type that has
//   static constexpr bool isWritable;     whether table `Sample` can be changed
//   ConnectionPtr connection();           unopened, onto table Sample(ID, Label, Amount) with the
//                                         rows (1, 'one', 1.5), (2, 'TWO', null), (3, 'drei', -3);
//                                         null where what the tests need is not installed
// and INSTANTIATE_TYPED_TEST_SUITE_P(name, ConnectionContract, Type).
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"

#include <pelmora/error.h>

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <string_view>

namespace pelmora::test {

template <typename Database>
class ConnectionContract : public ::testing::Test {
 protected:
  ConnectionContract() : connection_(database_.connection()) {}
  void SetUp() override {
    if (!connection_) GTEST_SKIP() << "what this database needs is not installed";
  }

  std::unique_ptr<Recordset> select(const std::string& statement,
                                    LockType lock = LockType::optimistic) {
    return connection_->openRecordset(statement, CursorType::dynamic, lock);
  }
  template <typename Action>
  static std::int32_t errorOf(Action&& action) {
    try {
      action();
    } catch (const Error& error) {
      return error.number();
    }
    return 0;
  }

  Database database_;
  ConnectionPtr connection_;
};

TYPED_TEST_SUITE_P(ConnectionContract);

TYPED_TEST_P(ConnectionContract, it_is_closed_until_it_is_opened) {
  EXPECT_FALSE(this->connection_->isOpen());
  EXPECT_NE(this->errorOf([&] { (void)this->select("Select * from Sample"); }), 0);
  this->connection_->open();
  EXPECT_TRUE(this->connection_->isOpen());
  this->connection_->close();
  EXPECT_FALSE(this->connection_->isOpen());
}

TYPED_TEST_P(ConnectionContract, rows_are_counted_and_read_in_order) {
  this->connection_->open();
  const auto rows = this->select("Select * from sample where ID > 1 ORDER BY ID DESC");
  ASSERT_EQ(rows->recordCount(), 2);
  EXPECT_EQ(rows->fieldCount(), 3U);
  EXPECT_EQ(rows->value("label"), Value("drei"));
  EXPECT_EQ(rows->value("AMOUNT"), Value(-3.0));
  rows->moveNext();
  EXPECT_EQ(rows->value(rows->fieldIndex("Label")), Value("TWO"));
  EXPECT_EQ(rows->value("Amount"), Value());
  EXPECT_FALSE(rows->atEnd());
  rows->moveNext();
  EXPECT_TRUE(rows->atEnd());
}

TYPED_TEST_P(ConnectionContract, rows_stay_when_the_connection_is_closed) {
  this->connection_->open();
  const auto rows = this->select("Select Label from Sample");
  this->connection_->close();
  EXPECT_EQ(rows->value(0), Value("one"));
}

TYPED_TEST_P(ConnectionContract, fields_and_rows_that_are_not_there) {
  this->connection_->open();
  const auto rows = this->select("Select Label from Sample where ID=9");
  EXPECT_EQ(rows->recordCount(), 0);
  EXPECT_TRUE(rows->atEnd());
  EXPECT_EQ(this->errorOf([&] { (void)rows->value(0); }), 3021);
  EXPECT_EQ(this->errorOf([&] { (void)rows->fieldIndex("nothing"); }), 3265);
}

TYPED_TEST_P(ConnectionContract, texts_compare_without_regard_to_case) {
  this->connection_->open();
  EXPECT_EQ(this->select("Select * from Sample where label='two'")->recordCount(), 1);
}

TYPED_TEST_P(ConnectionContract, one_call_runs_one_statement) {
  this->connection_->open();
  EXPECT_NE(
      this->errorOf([&] { this->connection_->execute("Delete from Sample; Delete from Sample"); }),
      0);
  EXPECT_NE(this->errorOf([&] { this->connection_->execute("Delte from Sample"); }), 0);
  EXPECT_EQ(this->select("Select * from Sample")->recordCount(), 3);
}

TYPED_TEST_P(ConnectionContract, errors_of_statements_are_no_lock) {
  this->connection_->open();
  constexpr auto locked = static_cast<std::int32_t>(0x80004005U);
  for (const char* statement :
       {"Select * from nowhere", "Select nothing from Sample", "Select", "Select 1/0 as x"}) {
    const auto number = this->errorOf([&] { (void)this->select(statement); });
    EXPECT_NE(number, 0) << statement;
    EXPECT_NE(number, locked) << statement;
  }
}

TYPED_TEST_P(ConnectionContract, statements_change_the_table_or_are_refused) {
  this->connection_->open();
  const auto number =
      this->errorOf([&] { this->connection_->execute("Delete * from Sample where Sample.ID=2;"); });
  EXPECT_EQ(number == 0, TypeParam::isWritable);
  EXPECT_EQ(this->select("Select * from Sample")->recordCount(), TypeParam::isWritable ? 2 : 3);
}

TYPED_TEST_P(ConnectionContract, an_added_row_is_stored_and_current) {
  this->connection_->open();
  const auto rows = this->select("Select * from Sample where ID=1");
  constexpr std::array<std::string_view, 2> fields{"label", "AMOUNT"};
  const std::array<Value, 2> values{Value("vier"), Value(4.25)};
  const auto number = this->errorOf([&] { rows->addRow(fields, values); });
  EXPECT_EQ(number == 0, TypeParam::isWritable);
  if (!TypeParam::isWritable) return;
  EXPECT_EQ(rows->value("Label"), Value("vier"));
  EXPECT_EQ(rows->value("id"), Value(std::int64_t{4}));
  EXPECT_EQ(this->select("Select Amount from Sample where ID=4")->value(0), Value(4.25));
}

TYPED_TEST_P(ConnectionContract, a_batch_is_stored_when_it_is_sent) {
  this->connection_->open();
  const auto rows = this->select("Select * from Sample", LockType::batchOptimistic);
  constexpr std::array<std::string_view, 1> fields{"Amount"};
  const auto addTwo = [&] {
    rows->addRow(fields, std::array{Value(1.0)});
    rows->addRow(fields, std::array{Value()});
  };
  if (!TypeParam::isWritable) {
    EXPECT_NE(this->errorOf([&] {
      addTwo();
      rows->updateBatch();
    }),
              0);
    return;
  }
  addTwo();
  EXPECT_EQ(this->select("Select * from Sample")->recordCount(), 3);
  rows->updateBatch();
  EXPECT_EQ(this->select("Select * from Sample")->recordCount(), 5);
  rows->requery();
  EXPECT_EQ(rows->recordCount(), 5);
}

REGISTER_TYPED_TEST_SUITE_P(ConnectionContract, it_is_closed_until_it_is_opened,
                            rows_are_counted_and_read_in_order,
                            rows_stay_when_the_connection_is_closed,
                            fields_and_rows_that_are_not_there,
                            texts_compare_without_regard_to_case, one_call_runs_one_statement,
                            errors_of_statements_are_no_lock,
                            statements_change_the_table_or_are_refused,
                            an_added_row_is_stored_and_current, a_batch_is_stored_when_it_is_sent);

}  // namespace pelmora::test
