// The copy of stand data while another process holds the curve database.
// SPDX-License-Identifier: MIT
#include "component/stand_copy.h"
#include "tests/support/curve_database.h"
#include "tests/support/locking_process.h"

namespace pelmora::test {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

struct OtherUser {
  LockingProcess process;  // a base, so that it starts before any database is opened
};

class copy_into_a_locked_database : protected OtherUser, public CurveDatabaseTest {
 protected:
  // Copies; the other user lets go after the second waiting text.
  bool copy(const ConnectionPtr& curveConnection) {
    const OperationContext waiting(shared, platform(), [this](const std::string& message) {
      events.push_back(message);
      if (statusTexts().size() == 2) process.unlock();
    });
    return copyCaldb(waiting, 5, "1001", "", stand({{.job = "1001", .v4 = 10}}), curveConnection);
  }
  void expectCopiedAfterTwoTexts() {
    EXPECT_THAT(boxes, IsEmpty());
    EXPECT_THAT(statusTexts(), SizeIs(2));
    EXPECT_THAT(statusTexts(),
                testing::Each("Waiting for database to unlock for copy of caldata (" +
                              shared.location.FileName + ")"));
    EXPECT_THAT(lines("select CalSetupID, V4 from CalDataPoint"), testing::ElementsAre("5|10"));
  }
};

TEST_F(copy_into_a_locked_database, waits_to_open_it) {
  process.lock(path);
  EXPECT_TRUE(copy(databaseConnection(path)));
  expectCopiedAfterTwoTexts();
}

TEST_F(copy_into_a_locked_database, waits_to_remove_the_old_points) {
  const ConnectionPtr connection = curves();
  process.lock(path);
  EXPECT_TRUE(copy(connection));
  expectCopiedAfterTwoTexts();
}

TEST_F(copy_into_a_locked_database, waits_to_insert_the_new_points) {
  int pumps = 0;
  platform().pumpMessages = [&] {
    if (++pumps == 2) process.lock(path);  // the pump behind the delete
  };
  EXPECT_TRUE(copy(curves()));
  expectCopiedAfterTwoTexts();
}

}  // namespace
}  // namespace pelmora::test
