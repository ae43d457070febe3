// Operations of the component inside a transaction of somebody else's connection.
// SPDX-License-Identifier: MIT
#include "history/shared_connection.h"
#include "tests/history/history_fixture.h"
#include "tests/support/plain_sqlite.h"

namespace pelmora::test {
namespace {

using namespace history;

class shared_connection : public HistoryTest {
 protected:
  [[nodiscard]] ConnectionPtr stand() const {
    const std::string path = curves.folder.file("stand.db");
    PlainSqlite(path).run(
        "CREATE TABLE DataPoint (JobRecordID, V1, V2, V3);"
        "INSERT INTO DataPoint VALUES (7, 0.1, 1e-300, 2), (7, 3, NULL, 'thick'), ('7', 4, 5, 6), "
        "(8, 1, 1, 1)");
    ConnectionPtr connection = sqliteConnection(path);
    connection->open();
    return connection;
  }
  [[nodiscard]] std::string copy(const std::string& path) const {
    return "INSERT INTO CalDataPoint ( CalSetupID, JobRecordID, V1, V2, V3 ) IN '" + path +
           "'SELECT 5 as CalSetupID, JobRecordID, V1, V2, V3 FROM DataPoint WHERE "
           "(((JobRecordID)=7));";
  }
};

TEST_F(shared_connection, stays_open_when_an_operation_closes_it) {
  const ConnectionPtr shared = sharedConnection(curves.connection);
  shared->open();
  shared->close();
  EXPECT_TRUE(shared->isOpen());
  EXPECT_TRUE(curves.connection->isOpen());
  shared->execute("Delete * from raw1");
  EXPECT_EQ(curves.count("raw1"), 0);
}

TEST_F(shared_connection, adds_a_stands_rows_inside_the_transaction) {
  const ConnectionPtr open = stand();
  {
    const KeptChange change(curves.connection, note("import"));
    standConnection(open, curves.connection, curves.path)->execute(copy(curves.path));
    EXPECT_EQ(rows("CalDataPoint where CalSetupID=5").size(), 3U);
  }
  EXPECT_TRUE(rows("CalDataPoint where CalSetupID=5").empty());
}

TEST_F(shared_connection, adds_the_rows_that_the_statement_would_have_inserted) {
  const ConnectionPtr open = stand();
  open->execute(copy(curves.path));
  const Rows expected = rows("CalDataPoint where CalSetupID=5");
  ASSERT_EQ(expected.size(), 3U);
  curves.execute("Delete * from CalDataPoint where CalSetupID=5");
  standConnection(open, curves.connection, curves.path)->execute(copy(curves.path));
  EXPECT_EQ(rows("CalDataPoint where CalSetupID=5"), expected);
}

TEST_F(shared_connection, hands_other_statements_to_the_stand) {
  const ConnectionPtr open = stand();
  const ConnectionPtr wrapped = standConnection(open, curves.connection, curves.path);
  const std::string second = "INSERT INTO CalDataPoint IN '" + curves.path +
                             "' 5, (Select * from DataPoint Where ((DataPoint.JobRecordID=7)));";
  EXPECT_EQ(failureOf([&] { wrapped->execute(second); }).description,
            failureOf([&] { open->execute(second); }).description);
  wrapped->close();
  EXPECT_FALSE(open->isOpen());
}

}  // namespace
}  // namespace pelmora::test
