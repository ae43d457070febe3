// One open SQLite database.
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

struct sqlite3;

namespace pelmora::sqlite {

enum class OpenMode { existing, create, memory };

class DatabaseHandle {
 public:
  // `file` is an absolute path, unused for OpenMode::memory. A lock of another user is waited for
  // only shortly. Errors: Error.
  DatabaseHandle(const std::string& file, OpenMode mode);

  [[nodiscard]] sqlite3* get() const { return database_.get(); }
  // Runs statements in SQLite's own SQL. Errors: Error.
  void run(const char* statements) const;

 private:
  struct Close {
    void operator()(sqlite3* database) const noexcept;
  };
  std::unique_ptr<sqlite3, Close> database_;
};

}  // namespace pelmora::sqlite
