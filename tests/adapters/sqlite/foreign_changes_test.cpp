// What a connection notices of the changes of others.
// SPDX-License-Identifier: MIT
#include "store/foreign_changes.h"
#include "tests/support/curve_file.h"

#include <pelmora/own_tables.h>

#include <gtest/gtest.h>

namespace pelmora {
namespace {

using test::CurveFile;

class foreign_changes : public testing::Test {
 protected:
  foreign_changes() { other_->open(); }
  [[nodiscard]] std::int64_t now() const {
    return dynamic_cast<ForeignChanges&>(*file_.connection).foreignChanges();
  }

  const CurveFile file_;
  const ConnectionPtr other_ = sqliteConnection(file_.path);
};

TEST_F(foreign_changes, are_none_while_only_the_connection_itself_stores) {
  const std::int64_t before = now();
  file_.execute("Insert into Fluids (Name) VALUES ('a')");
  {
    Transaction transaction(file_.connection);
    file_.execute("Insert into Fluids (Name) VALUES ('b')");
    EXPECT_EQ(now(), before);
    transaction.commit();
  }
  { const Transaction undone(file_.connection); }
  EXPECT_EQ(
      other_->openRecordset("Select * from Fluids", CursorType::forwardOnly, LockType::optimistic)
          ->recordCount(),
      2);
  EXPECT_EQ(now(), before);
}

TEST_F(foreign_changes, are_noticed_between_transactions) {
  const std::int64_t before = now();
  other_->execute("Insert into Fluids (Name) VALUES ('a')");
  const Transaction transaction(file_.connection);
  const std::int64_t after = now();
  EXPECT_NE(after, before);
  file_.execute("Insert into Fluids (Name) VALUES ('b')");
  EXPECT_EQ(now(), after);
}

}  // namespace
}  // namespace pelmora
