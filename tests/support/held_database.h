// A curve database that another process has locked until it is told to go.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/plain_database.h"

#include <signal.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>

namespace pelmora::test {

enum class Held {
  againstAll,     // nobody reads or writes
  againstWriters  // everybody may read
};

class HeldDatabase {
 public:
  // Errors: std::runtime_error.
  HeldDatabase(const std::string& location, Held held) {
    try {
      if (location.starts_with("postgresql://")) {
        lockTables(location, held);
      } else {
        lockFile(location, held);
      }
    } catch (...) {
      letGo();
      throw;
    }
  }
  ~HeldDatabase() { letGo(); }
  HeldDatabase(const HeldDatabase&) = delete;
  HeldDatabase& operator=(const HeldDatabase&) = delete;

  // Who a waiting command names.
  [[nodiscard]] std::string holder() const {
    return child_ > 0 ? "process " + std::to_string(child_) : "another program";
  }

 private:
  void letGo() const {
    if (client_ != nullptr) pclose(client_);  // the end of its input ends the transaction
    if (child_ <= 0) return;
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
  }

  void lockFile(const std::string& path, Held held) {
    int ready[2];
    if (pipe(ready) != 0) std::abort();
    child_ = fork();
    if (child_ == 0) {
      const char* begin = held == Held::againstAll ? "BEGIN EXCLUSIVE" : "BEGIN IMMEDIATE";
      sqlite3* database = nullptr;
      const bool isHeld = sqlite3_open(path.c_str(), &database) == SQLITE_OK &&
                          sqlite3_exec(database, begin, nullptr, nullptr, nullptr) == SQLITE_OK;
      const char answer = isHeld ? 'y' : 'n';
      if (write(ready[1], &answer, 1) != 1) _exit(1);
      for (;;) pause();
    }
    char answer = 'n';
    const bool isTold = read(ready[0], &answer, 1) == 1;
    close(ready[0]);
    close(ready[1]);
    if (!isTold || answer != 'y') throw std::runtime_error("cannot lock " + path);
  }

  void lockTables(const std::string& address, Held held) {
    const std::string mode = held == Held::againstAll ? "ACCESS EXCLUSIVE" : "EXCLUSIVE";
    client_ = popen((PostgresServer::client(address) + " >/dev/null").c_str(), "we");
    if (client_ == nullptr) throw std::runtime_error("psql cannot be run");
    std::fputs(("BEGIN; DO $f$ DECLARE t text; BEGIN "
                "FOR t IN SELECT tablename FROM pg_tables WHERE schemaname = 'public' LOOP "
                "EXECUTE format('LOCK TABLE %I IN " +
                mode + " MODE', t); END LOOP; END $f$; SELECT pg_advisory_xact_lock(1, 1);\n")
                   .c_str(),
               client_);
    std::fflush(client_);
    // The last of the locks tells that all are held.
    const PlainDatabase database(address);
    for (int i = 0; i < 1000; ++i) {
      if (database.count("pg_locks WHERE locktype = 'advisory' AND classid = 1 AND objid = 1 AND "
                         "granted") == 1)
        return;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    throw std::runtime_error("cannot lock the tables");
  }

  pid_t child_ = -1;
  FILE* client_ = nullptr;
};

}  // namespace pelmora::test
