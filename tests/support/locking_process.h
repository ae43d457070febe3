// Another user of a database file: a second process that locks it on demand.
// SPDX-License-Identifier: MIT
#pragma once

#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <string>

namespace pelmora::test {

// The process starts before this one opens a database: open ones do not survive a fork.
class LockingProcess {
 public:
  LockingProcess() {
    if (pipe(commands_.data()) != 0 || pipe(answers_.data()) != 0) {
      throw std::runtime_error("no pipe");
    }
    process_ = fork();
    if (process_ < 0) throw std::runtime_error("no second process");
    if (process_ == 0) {
      close(commands_[1]);
      serve();
      _exit(0);
    }
    close(commands_[0]);
    close(answers_[1]);
  }
  ~LockingProcess() {
    close(commands_[1]);  // the process ends when nothing more can come
    close(answers_[0]);
    waitpid(process_, nullptr, 0);
  }
  LockingProcess(const LockingProcess&) = delete;
  LockingProcess& operator=(const LockingProcess&) = delete;

  // Returns when nobody else can read or write the file any more.
  void lock(const std::string& file) { ask(file + "\n"); }
  void unlock() { ask("\n"); }

 private:
  void ask(const std::string& command) {
    char done = 0;
    if (write(commands_[1], command.data(), command.size()) < 0 ||
        read(answers_[0], &done, 1) != 1 || done != 'y') {
      throw std::runtime_error("the second process did not obey");
    }
  }

  void serve() {
    sqlite3* database = nullptr;
    std::string command;
    for (char c = 0; read(commands_[0], &c, 1) == 1;) {
      if (c != '\n') {
        command += c;
        continue;
      }
      bool done = true;
      if (command.empty()) {
        sqlite3_close(database);
        database = nullptr;
      } else {
        done = sqlite3_open(command.c_str(), &database) == SQLITE_OK &&
               sqlite3_exec(database, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr) == SQLITE_OK;
      }
      command.clear();
      const char answer = done ? 'y' : 'n';
      if (write(answers_[1], &answer, 1) != 1) return;
    }
  }

  std::array<int, 2> commands_{}, answers_{};
  pid_t process_ = -1;
};

}  // namespace pelmora::test
