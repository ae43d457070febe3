// SPDX-License-Identifier: MIT
#include "adapters/sqlite/attached_file.h"

#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/sqlite_error.h"
#include "adapters/sqlite/sqlite_session.h"
#include "base/file_text.h"

#include <sqlite3.h>

namespace pelmora::sqlite {

AttachedFile::AttachedFile(SqliteSession& session, const std::string& file)
    : session_(session), file_(filePath(file)) {
  PreparedStatement attach(session_.database(), "ATTACH ?1 AS \"output\"");
  attach.bind(1, std::string_view(file));
  const int code = sqlite3_step(attach.get());
  if (code != SQLITE_DONE) throw sqliteError(code, session_.database(), file);
}

AttachedFile::~AttachedFile() {
  sqlite3_exec(session_.database(), "DETACH \"output\"", nullptr, nullptr, nullptr);
}

}  // namespace pelmora::sqlite
