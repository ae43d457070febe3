// Changes that end before they are finished: by a killed process, a full disk, a rule of the
// database. SPDX-License-Identifier: MIT
#include "tests/history/history_fixture.h"
#include "tests/support/plain_sqlite.h"

#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pelmora::test {
namespace {

using namespace history;

class interrupted_change : public HistoryTest {
 protected:
  interrupted_change() {
    std::string points;
    for (int i = 0; i < 300; ++i) points += std::string(i == 0 ? "" : ", ") + "(1, 1, 2)";
    PlainSqlite(curves.path).run("Insert into raw3 (seriesID, Roshko, Strouhal) VALUES " + points);
    createHistoryTables(curves.connection);
    before = everything();
    curves.connection->close();
  }
  // Runs `body` on a connection of its own in another process, which kills itself when the body
  // ends.
  template <class Body>
  void inKilledProcess(Body&& body) const {
    const pid_t process = fork();
    if (process == 0) {
      const ConnectionPtr own = sqliteConnection(curves.path);
      own->open();
      body(own);
      raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(process, &status, 0), process);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the process ended before its body did";
  }
  void expectNothingChanged() {
    curves.connection->open();
    EXPECT_EQ(everything(), before);
    EXPECT_TRUE(entries(curves.connection).empty());
  }
  std::map<std::string, Rows> before;
};

TEST_F(interrupted_change, by_a_kill_between_copy_and_change_is_undone) {
  inKilledProcess([](const ConnectionPtr& own) {
    KeptChange change(own, note("delete"));
    (void)change.keep(wholeSeries(1, 1));
    raise(SIGKILL);
  });
  expectNothingChanged();
}

TEST_F(interrupted_change, by_a_kill_between_change_and_commit_is_undone) {
  inKilledProcess([](const ConnectionPtr& own) {
    KeptChange change(own, note("delete"));
    (void)removeKept(own, change, wholeCalibration(1));
    raise(SIGKILL);
  });
  expectNothingChanged();
}

TEST_F(interrupted_change, by_a_full_disk_is_undone) {
  // A file that may not grow stands for a disk without room.
  const pid_t process = fork();
  if (process == 0) {
    signal(SIGXFSZ, SIG_IGN);
    const ConnectionPtr own = sqliteConnection(curves.path);
    own->open();
    const rlimit full{1024, 1024};
    setrlimit(RLIMIT_FSIZE, &full);
    bool hasFailed = false;
    try {
      KeptChange change(own, note("delete"));
      (void)removeKept(own, change, wholeCalibration(1));
      change.commit();
    } catch (const Error&) {
      hasFailed = true;
    }
    _exit(hasFailed ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(process, &status, 0), process);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the disk was not full";
  expectNothingChanged();
}

TEST_F(interrupted_change, by_a_failing_copy_changes_nothing) {
  PlainSqlite(curves.path)
      .run(
          "CREATE TRIGGER fails BEFORE INSERT ON pelmora_history_raw3 BEGIN SELECT RAISE(FAIL, "
          "'no'); END");
  curves.connection->open();
  EXPECT_NE(failureOf([&] { (void)removed(wholeSeries(1, 1)); }).number, 0);
  curves.connection->close();
  expectNothingChanged();
}

TEST_F(interrupted_change, by_a_failing_restore_leaves_all_as_it_was) {
  curves.connection->open();
  const auto id = removed(wholeSeries(1, 1));
  const auto after = everything();
  PlainSqlite(curves.path)
      .run("CREATE TRIGGER fails BEFORE INSERT ON curve BEGIN SELECT RAISE(ROLLBACK, 'no'); END");
  EXPECT_NE(failureOf([&] { (void)restored(id); }).number, 0);
  EXPECT_EQ(everything(), after);
  EXPECT_EQ(entries(curves.connection).size(), 1U);
}

}  // namespace
}  // namespace pelmora::test
