// What happens while another program holds the database.
// SPDX-License-Identifier: MIT
#include "base/run_time_error.h"
#include "tests/support/curve_file.h"
#include "tests/support/plain_sqlite.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <string>
#include <string_view>

namespace pelmora {
namespace {

using test::CurveFile;
using test::failureOf;

// A second process that runs `statements` on a database and keeps it open until it is let go.
class OtherProcess {
 public:
  OtherProcess(const std::string& path, const std::string& statements) {
    if (pipe(ready_.data()) != 0 || pipe(letGo_.data()) != 0) throw std::runtime_error("pipe");
    process_ = fork();
    if (process_ == 0) {
      hold(path, statements);
    }
    close(ready_[1]);
    close(letGo_[0]);
    char state = 0;
    if (read(ready_[0], &state, 1) != 1 || state != 'y')
      ADD_FAILURE() << "the other process has no lock";
  }
  ~OtherProcess() { release(); }
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;

  void release() {
    if (process_ < 0) return;
    close(letGo_[1]);
    waitpid(process_, nullptr, 0);
    close(ready_[0]);
    process_ = -1;
  }

 private:
  [[noreturn]] void hold(const std::string& path, const std::string& statements) {
    close(letGo_[1]);
    try {
      test::PlainSqlite database(path);
      database.run(statements);
      char unused = 0;
      if (write(ready_[1], "y", 1) == 1 && read(letGo_[0], &unused, 1) == 0)
        database.run("ROLLBACK");
    } catch (const std::exception&) {
      close(ready_[1]);
    }
    _exit(0);
  }

  std::array<int, 2> ready_{};
  std::array<int, 2> letGo_{};
  pid_t process_ = -1;
};

void expectLocked(const test::Failure& failure) {
  EXPECT_EQ(failure.number, genericFailure) << failure.description;
  EXPECT_NE(failure.description.find("locked by another user"), std::string::npos)
      << failure.description;
}

TEST(sqlite_lock, an_exclusive_lock_stops_reading_writing_and_opening) {
  const CurveFile file;
  OtherProcess other(file.path, "BEGIN EXCLUSIVE");
  expectLocked(failureOf([&] { (void)file.select("Select * from meter"); }));
  expectLocked(failureOf([&] { file.execute("Insert into Fluids (Name) VALUES ('a')"); }));
  expectLocked(failureOf([&] { sqliteConnection(file.path)->open(); }));
  other.release();
  EXPECT_EQ(file.count("Fluids"), 0);
  file.execute("Insert into Fluids (Name) VALUES ('a')");
  EXPECT_EQ(file.count("Fluids"), 1);
}

TEST(sqlite_lock, a_lock_that_stays_is_waited_for_and_given_up) {
  const CurveFile file;
  const OtherProcess other(file.path, "BEGIN EXCLUSIVE");
  const auto start = std::chrono::steady_clock::now();
  expectLocked(failureOf([&] { file.execute("Delete from meter"); }));
  const auto waited = std::chrono::steady_clock::now() - start;
  EXPECT_GE(waited, std::chrono::milliseconds(100));
}

TEST(sqlite_lock, a_writer_elsewhere_lets_us_read) {
  const CurveFile file;
  const OtherProcess other(file.path, "BEGIN IMMEDIATE");
  EXPECT_EQ(file.count("meter"), 0);
  expectLocked(failureOf([&] { file.execute("Insert into Fluids (Name) VALUES ('a')"); }));
}

TEST(sqlite_lock, a_batch_that_cannot_be_committed_leaves_nothing_and_can_be_tried_again) {
  const CurveFile file;
  const auto rows = file.connection->openRecordset("Select * from raw1 where seriesID=1",
                                                   CursorType::dynamic, LockType::batchOptimistic);
  constexpr std::array<std::string_view, 3> fields{"seriesID", "Roshko", "Strouhal"};
  const std::array<Value, 3> values{Value(1.0), Value(2.0), Value(3.0)};
  rows->addRow(fields, values);
  // A reader in the middle of its rows: we may write, but not commit.
  OtherProcess reader(file.path, "BEGIN; SELECT * FROM sqlite_master");
  expectLocked(failureOf([&] { rows->updateBatch(); }));
  expectLocked(failureOf([&] { file.execute("Insert into Fluids (Name) VALUES ('a')"); }));
  reader.release();
  EXPECT_EQ(file.count("raw1"), 0);
  EXPECT_EQ(file.count("Fluids"), 0);
  rows->updateBatch();
  EXPECT_EQ(file.count("raw1"), 1);
}

TEST(sqlite_lock, a_row_that_cannot_be_stored_does_not_become_current) {
  const CurveFile file;
  const auto rows = file.select("Select * from series where meterid=1");
  constexpr std::array<std::string_view, 1> fields{"name"};
  OtherProcess reader(file.path, "BEGIN; SELECT * FROM sqlite_master");
  expectLocked(failureOf([&] { rows->addRow(fields, std::array{Value("a")}); }));
  EXPECT_EQ(rows->recordCount(), 0);
  EXPECT_TRUE(rows->atEnd());
  reader.release();
  rows->addRow(fields, std::array{Value("a")});
  EXPECT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(file.count("series"), 1);
}

TEST(sqlite_lock, a_locked_output_file_is_the_generic_failure_and_named) {
  const CurveFile stand;
  const CurveFile curves;
  const std::string copy =
      "INSERT INTO Fluids ( Name ) IN '" + curves.path + "'SELECT Name FROM Operator";
  stand.execute("Insert into Operator (Name) VALUES ('a')");
  OtherProcess other(curves.path, "BEGIN EXCLUSIVE");
  const auto failure = failureOf([&] { stand.execute(copy); });
  expectLocked(failure);
  EXPECT_NE(failure.description.find(curves.path), std::string::npos) << failure.description;
  other.release();
  stand.execute(copy);
  EXPECT_EQ(curves.count("Fluids"), 1);
}

}  // namespace
}  // namespace pelmora
