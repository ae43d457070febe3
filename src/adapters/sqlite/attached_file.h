// A second database file that one statement writes to.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/plain_reading.h"

#include <string>
#include <string_view>

namespace pelmora::sqlite {

class SqliteSession;

class AttachedFile {
 public:
  static constexpr std::string_view name = "output";

  // `file`: absolute path. Errors: Error, genericFailure if the file is locked.
  AttachedFile(SqliteSession& session, const std::string& file);
  ~AttachedFile();
  AttachedFile(const AttachedFile&) = delete;
  AttachedFile& operator=(const AttachedFile&) = delete;

 private:
  SqliteSession& session_;
  DatabaseInUse file_;
};

}  // namespace pelmora::sqlite
