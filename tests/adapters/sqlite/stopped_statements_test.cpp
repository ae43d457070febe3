// Statements that end because their caller has asked for that.
// SPDX-License-Identifier: MIT
#include "store/transactions.h"
#include "tests/support/curve_file.h"
#include "tests/support/plain_sqlite.h"

#include <pelmora/patience.h>

#include <gmock/gmock.h>

namespace pelmora {
namespace {

using testing::HasSubstr;
constexpr auto stopped = static_cast<std::int32_t>(0x80004004U);

class stopped_statements : public testing::Test {
 protected:
  stopped_statements() {
    test::PlainSqlite(file_.path)
        .run(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 20000) "
            "INSERT INTO raw1 SELECT 1, i, i FROM n");
    patience_.stopRequested = [this] { return ++asked_, isStopRequested_; };
    connection_ = openDatabase(file_.path, patience_);
  }
  [[nodiscard]] std::int32_t countRaw() const {
    return connection_
        ->openRecordset("Select * from raw1 where Strouhal<0 or Roshko>0 ORDER BY Strouhal",
                        CursorType::forwardOnly, LockType::optimistic)
        ->recordCount();
  }

  test::CurveFile file_;
  Patience patience_;
  int asked_ = 0;
  bool isStopRequested_ = false;
  ConnectionPtr connection_;
};

TEST_F(stopped_statements, end_with_an_error_of_their_own_while_they_read) {
  EXPECT_EQ(countRaw(), 20000);
  EXPECT_GT(asked_, 5);
  isStopRequested_ = true;
  const test::Failure failure = test::failureOf([&] { (void)countRaw(); });
  EXPECT_EQ(failure.number, stopped);
  EXPECT_THAT(failure.description, HasSubstr("was stopped"));
  EXPECT_THAT(failure.description, HasSubstr(file_.path));
  isStopRequested_ = false;
  EXPECT_EQ(countRaw(), 20000) << "the connection can be used on";
}

TEST_F(stopped_statements, store_all_once_they_have_begun_to_write) {
  isStopRequested_ = true;
  auto& transactions = dynamic_cast<Transactions&>(*connection_);
  transactions.begin();
  connection_->execute("Update raw1 set Strouhal=Strouhal+1");
  transactions.commit();
  isStopRequested_ = false;
  EXPECT_EQ(file_.select("Select * from raw1 where Strouhal=Roshko+1")->recordCount(), 20000);
}

}  // namespace
}  // namespace pelmora
