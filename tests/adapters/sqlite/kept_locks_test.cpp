// Locks that survive everything else that the process does with the file.
// SPDX-License-Identifier: MIT
#include "adapters/stand_csv/stand_csv.h"
#include "base/file_text.h"
#include "base/run_time_error.h"
#include "tests/support/curve_file.h"
#include "tests/support/held_locks.h"

#include <pelmora/database.h>
#include <pelmora/own_tables.h>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <future>
#include <optional>
#include <thread>
#include <utility>

namespace pelmora {
namespace {

using test::CurveFile;
using test::failureOf;
using test::holdsWriteLock;

class kept_locks : public testing::Test {
 protected:
  kept_locks() {
    std::filesystem::create_hard_link(file_.path, hardLink_);
    std::filesystem::create_symlink(file_.path, symbolicLink_);
  }
  // Does it inside a transaction, with every name that the file has.
  void expectKept(const std::function<void(const std::string&)>& action) const {
    const Transaction transaction(file_.connection);
    file_.execute("Insert into Fluids (Name) VALUES ('a')");
    ASSERT_TRUE(holdsWriteLock(file_.path));
    for (const std::string& name : {file_.path, hardLink_, symbolicLink_}) {
      action(name);
      EXPECT_TRUE(holdsWriteLock(file_.path)) << name;
    }
  }

  const CurveFile file_;
  const std::string hardLink_ = file_.folder.file("hard.db");
  const std::string symbolicLink_ = file_.folder.file("symbolic.db");
};

TEST_F(kept_locks, while_the_database_is_opened_again_and_closed) {
  expectKept([](const std::string& name) { openDatabase(name)->close(); });
}

TEST_F(kept_locks, while_another_thread_opens_it) {
  expectKept([](const std::string& name) { std::jthread([&] { openDatabase(name); }).join(); });
}

TEST_F(kept_locks, while_the_file_is_looked_at) {
  expectKept([](const std::string& name) {
    EXPECT_TRUE(isSqliteFile(name));
    EXPECT_FALSE(isStandCsv(name));
  });
}

TEST_F(kept_locks, while_rows_are_inserted_into_the_file_by_name) {
  expectKept([&](const std::string& name) {
    file_.execute("INSERT INTO Fluids ( Name ) IN '" + name + "'SELECT Name FROM Operator");
  });
}

TEST_F(kept_locks, while_a_database_is_to_be_made_in_its_place) {
  expectKept([](const std::string& name) {
    EXPECT_NE(failureOf([&] { createCurveDatabase(name); }).number, 0);
  });
}

TEST_F(kept_locks, because_it_is_not_read_as_an_ordinary_file) {
  expectKept([](const std::string& name) {
    const auto failure = failureOf([&] { (void)readWholeFile(filePath(name)); });
    EXPECT_EQ(failure.number, static_cast<int>(RunTimeError::permissionDenied));
    EXPECT_NE(failure.description.find("is open as a database"), std::string::npos);
    EXPECT_EQ(failureOf([&] { standCsvConnection(name)->open(); }).number, failure.number);
  });
}

// Puts an action in front of SQLite's next closing of a file.
class BeforeClosing {
 public:
  explicit BeforeClosing(std::function<void()> action) {
    next = std::move(action);
    system = vfs()->xGetSystemCall(vfs(), "close");
    vfs()->xSetSystemCall(vfs(), "close", reinterpret_cast<sqlite3_syscall_ptr>(closing));
  }
  ~BeforeClosing() {
    vfs()->xSetSystemCall(vfs(), "close", system);
    next = {};
  }
  BeforeClosing(const BeforeClosing&) = delete;
  BeforeClosing& operator=(const BeforeClosing&) = delete;

 private:
  static sqlite3_vfs* vfs() { return sqlite3_vfs_find(nullptr); }
  static int closing(int file) {
    if (const auto action = std::exchange(next, {})) action();
    return reinterpret_cast<int (*)(int)>(system)(file);
  }

  static inline std::function<void()> next;
  static inline sqlite3_syscall_ptr system = nullptr;
};

// SQLite has looked for locks already when it closes a file that has none.
TEST_F(kept_locks, that_are_taken_while_another_thread_closes_the_file) {
  const ConnectionPtr other = openDatabase(file_.path);
  std::promise<void> taken;
  std::jthread writer;
  std::optional<Transaction> transaction;
  {
    const BeforeClosing closing([&] {
      writer = std::jthread([&] {
        transaction.emplace(file_.connection);
        file_.execute("Insert into Fluids (Name) VALUES ('a')");
        taken.set_value();
      });
      // Long enough for a lock that nobody keeps from being taken.
      (void)taken.get_future().wait_for(std::chrono::seconds(1));
    });
    other->close();
  }
  writer.join();
  EXPECT_TRUE(holdsWriteLock(file_.path));
}

TEST_F(kept_locks, and_the_file_can_be_read_when_no_connection_is_open) {
  file_.connection->close();
  EXPECT_TRUE(readWholeFile(filePath(file_.path)).starts_with("SQLite format 3"));
}

}  // namespace
}  // namespace pelmora
